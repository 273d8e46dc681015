"""Pages of the manuals with a part that a program writes, between two markers."""
import re

END = "<!-- to here -->"


def marker(command):
    return f"<!-- What stands from here is written by {command} -->"


def _part(page, command):
    text = page.read_text(encoding="utf-8")
    found = re.search(f"(?<={re.escape(marker(command))}\n).*?(?={re.escape(END)})", text, re.S)
    if not found:
        raise ValueError(f"{page} has no markers for what {command} writes")
    return text, found


def written(page, command):
    """The current content of the part."""
    return _part(page, command)[1][0].strip()


def write(page, command, content):
    text, found = _part(page, command)
    page.write_text(f"{text[:found.start()]}\n{content}\n\n{text[found.end():]}", encoding="utf-8")

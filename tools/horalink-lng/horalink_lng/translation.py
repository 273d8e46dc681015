"""A language: LANG.po, and beside it LANG.sql if the language needs its own fonts."""
import os
import re
import subprocess

from horalink_lng.sources import Fault, read


def library():
    try:
        import polib
    except ImportError as error:
        raise Fault("the package python3-polib is missing") from error
    return polib


# Messages of msgfmt, reworded for translators.
DUPLICATE_WORDS = {"duplicate message definition...": "this text is in the file a second time; the last one counts",
                   "...this is the location of the first definition": "this text comes again further down"}


def tags(text):
    return " ".join(re.findall(r"</?\w[^>]*>", text))


class Translation:
    def __init__(self, file):
        self.file = file
        self.fonts = file.with_suffix(".sql")
        content = read(file)
        try:
            entries = library().pofile(content)
        except OSError as error:  # raised by the parser
            wrong = re.search(r"\(line (\d+)\)(: .*)?", str(error))
            raise Fault(f"{file}:{wrong[1] if wrong else 1}: this is not the syntax of a PO file"
                        f"{wrong[2] or '' if wrong else ''}") from error
        self.charset = entries.metadata.get("Content-Type", "").lower().partition("charset=")[2]
        self.entries = [entry for entry in entries if not entry.obsolete and entry.msgctxt]
        self.useless = [entry for entry in entries if not entry.obsolete and not entry.msgctxt]
        # The parser gives the line of an entry's first comment instead.
        lines = [number for number, line in enumerate(content.splitlines(), 1) if line.startswith("msgctxt")]
        self.lines = dict(zip((entry.msgctxt for entry in self.entries), lines))
        self.by_context = {entry.msgctxt: entry for entry in self.entries}

    def line(self, context):
        return self.lines.get(context)

    def text(self, context, english):
        """The translation; empty if there is none, or if it is fuzzy or belongs to another English text."""
        entry = self.by_context.get(context)
        return entry.msgstr if entry and entry.msgid == english and not entry.fuzzy else ""

    def faults(self, english):
        """Errors found by gettext, and useless entries, as (line, words). `english` has the texts by context."""
        yield from self._format_faults()
        if self.charset not in ("", "utf-8"):
            yield 1, "the Content-Type of the header has to say charset=UTF-8"
        for entry in self.useless:
            yield entry.linenum, "the line msgctxt is missing, which says where this text is shown"
        for entry in self.entries:
            for words in self._entry_faults(entry, english):
                yield self.lines[entry.msgctxt], f"{entry.msgctxt}: {words}"

    def _format_faults(self):
        try:
            ended = subprocess.run(["msgfmt", "--check", "--output-file=/dev/null", self.file], check=False,
                                   env={**os.environ, "LC_ALL": "C"}, capture_output=True, text=True)
        except FileNotFoundError as error:
            raise Fault("the package gettext is missing") from error
        if ended.returncode:
            for wrong in re.finditer(r"^.*\.po:(\d+):(?:\d+:)? (?!warning:)(.*)$", ended.stderr, re.MULTILINE):
                yield int(wrong[1]), DUPLICATE_WORDS.get(wrong[2], wrong[2])

    def _entry_faults(self, entry, english):
        if entry.msgctxt not in english:
            yield "there is no text of this context; msgmerge brings the file up to date"
        elif entry.msgid != english[entry.msgctxt]:
            yield "the English text has changed; msgmerge brings the file up to date"
        elif entry.msgctxt.endswith(":Body") and self.text(entry.msgctxt, entry.msgid) and \
                tags(entry.msgstr) != tags(entry.msgid):
            yield f"the tags have to be those of the English text: {tags(entry.msgid)}"
        if entry.msgid_plural:
            yield "no text here has a plural form"

    def summary(self, english):
        fuzzy = [str(self.lines[entry.msgctxt]) for entry in self.entries if entry.fuzzy]
        places = f" (in line {', '.join(fuzzy)})" if fuzzy else ""
        done = sum(1 for context, text in english.items() if self.text(context, text))
        return (f"{done} of {len(english)} texts are translated, {len(fuzzy)} are fuzzy{places}; "
                "the others show in English")

"""A language: LANG.po, and beside it LANG.sql where the language needs fonts of its own."""
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


class Translation:
    def __init__(self, file):
        self.file = file
        self.fonts = file.with_suffix(".sql")
        content = read(file)
        try:
            entries = library().pofile(content)
        except OSError as error:  # of the parser
            wrong = re.search(r"\(line (\d+)\)(: .*)?", str(error))
            raise Fault(f"{file}:{wrong[1] if wrong else 1}: this is not the syntax of a PO file"
                        f"{wrong[2] or '' if wrong else ''}") from error
        self.entries = [entry for entry in entries if not entry.obsolete and entry.msgctxt]
        # The parser counts from the first comment of an entry.
        lines = [number for number, line in enumerate(content.splitlines(), 1) if line.startswith("msgctxt")]
        self.lines = dict(zip((entry.msgctxt for entry in self.entries), lines))
        self.by_context = {entry.msgctxt: entry for entry in self.entries}

    def line(self, context):
        return self.lines.get(context)

    def text(self, context, english):
        """The translation; nothing where there is none, or one that is fuzzy or of another English text."""
        entry = self.by_context.get(context)
        return entry.msgstr if entry and entry.msgid == english and not entry.fuzzy else ""

    def faults(self, english):
        """What gettext says of the file, and entries without use, as (line, words); `english` is texts by context."""
        yield from self._format_faults()
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
            for wrong in re.finditer(r"^.*\.po:(\d+):(?:\d+:)? (.*)$", ended.stderr, re.MULTILINE):
                yield int(wrong[1]), wrong[2]

    @staticmethod
    def _entry_faults(entry, english):
        if entry.msgctxt not in english:
            yield "there is no text of this context; msgmerge brings the file up to date"
        elif entry.msgid != english[entry.msgctxt]:
            yield "the English text has changed; msgmerge brings the file up to date"
        if entry.msgid_plural:
            yield "no text here has a plural form"

    def summary(self, english):
        fuzzy = sum(1 for entry in self.entries if entry.fuzzy)
        done = sum(1 for context, text in english.items() if self.text(context, text))
        return f"{done} of {len(english)} texts are translated, {fuzzy} are fuzzy; the others show in English"

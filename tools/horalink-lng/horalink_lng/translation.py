"""A language: LANG.po, and beside it LANG.sql where the language needs fonts of its own."""
import re

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
        try:
            entries = library().pofile(read(file))
        except OSError as error:  # of the parser
            wrong = re.search(r"\(line (\d+)\)(: .*)?", str(error))
            raise Fault(f"{file}:{wrong[1] if wrong else 1}: this is not the syntax of a PO file"
                        f"{wrong[2] or '' if wrong else ''}") from error
        self.entries = [entry for entry in entries if not entry.obsolete]
        self.by_context = {entry.msgctxt: entry for entry in self.entries}

    def line(self, context):
        entry = self.by_context.get(context)
        return entry and entry.linenum

    def text(self, context, english):
        """The translation; nothing where there is none, or one that is fuzzy or of another English text."""
        entry = self.by_context.get(context)
        usable = entry and entry.msgid == english and not entry.fuzzy and not entry.msgid_plural
        return entry.msgstr if usable else ""

    def faults(self, english):
        """Entries that have no use, each as (line, context, words); `english` is the texts by their contexts."""
        seen = set()
        for entry in self.entries:
            for words in self._faults_of(entry, english, seen):
                yield entry.linenum, entry.msgctxt or entry.msgid, words
            seen.add(entry.msgctxt)

    @staticmethod
    def _faults_of(entry, english, seen):
        if entry.msgctxt in seen:
            yield "another entry has the same context"
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

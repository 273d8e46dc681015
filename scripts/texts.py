"""The texts by which the windows and controls of an installation are found, in its language."""
import sqlite3
from pathlib import Path


class Texts:
    def __init__(self, sandbox):
        self.language = sandbox.language
        self.file = sandbox.root / "ADDINS/DATABASE" / sandbox.language / "Horalink.lng"

    def _text(self, query, *values):
        database = sqlite3.connect(self.file)
        try:
            return database.execute(query, values).fetchone()[0]
        finally:
            database.close()

    def control(self, name, index=-1):
        """The accessible name of a control without a caption: its tool tip."""
        return self._text('SELECT ToolTipText FROM tControls WHERE ObjectName = ? AND "Index" = ?', name, index)

    def title(self, exchange):
        """The title of the dialog for an exchange."""
        return f"{self._text('SELECT Caption FROM tForms WHERE ObjectName = ?', 'dlgAddin')} ({exchange})"

    def host(self, english):
        """The accessible name of a control of the host."""
        text, translations = english, Path(__file__).parents[1] / f"host/po/{self.language}.po"
        if translations.exists():
            import polib
            text = next(entry.msgstr for entry in polib.pofile(translations) if entry.msgid == english)
        return text.replace("&", "")

    @property
    def hide(self):
        return self.control("cmdButton", 0)

    @property
    def update(self):
        return self.control("cmdButton", 1)

    @property
    def lookup(self):
        return self.control("cmdButton", 2)

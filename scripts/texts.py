"""The texts of an installation by which its dialog is found and clicked, in whatever language it has."""
import sqlite3


class Texts:
    def __init__(self, arrangement):
        self.file = arrangement.root / "ADDINS/DATABASE" / arrangement.language / "Horalink.lng"

    def _text(self, query, *values):
        database = sqlite3.connect(self.file)
        try:
            return database.execute(query, values).fetchone()[0]
        finally:
            database.close()

    def control(self, name, index=-1):
        """What a control without a text of its own is called: its tool tip."""
        return self._text('SELECT ToolTipText FROM tControls WHERE ObjectName = ? AND "Index" = ?', name, index)

    def caption(self, name):
        """The text of a control that has one."""
        return self._text("SELECT Caption FROM tControls WHERE ObjectName = ?", name)

    def title(self, exchange):
        """The title of the dialog for an exchange."""
        return f"{self._text('SELECT Caption FROM tForms WHERE ObjectName = ?', 'dlgAddin')} ({exchange})"

    @property
    def hide(self):
        return self.control("cmdButton", 0)

    @property
    def update(self):
        return self.control("cmdButton", 1)

    @property
    def lookup(self):
        return self.control("cmdButton", 2)

"""What must hold of the version register, whatever has happened."""
import contextlib
import sqlite3

OURS = "Horalink.mra"


def database_file(arrangement, name):
    return next(arrangement.root.glob(f"*/DATABASE/{name}"))


def add_others(file, count=60):
    """Rows of other add-ins, enough of them to lie on several pages on either side of ours."""
    database = sqlite3.connect(file)
    with database:
        for number in range(count):
            name = f"{'AZ'[number % 2]}{number:03}.mra"
            database.execute("INSERT INTO Registry VALUES (?, ?, ?, ?, -1)",
                             [name, f"Add-in {number} " * 6, f"{number}.0.0", f"Other{number}.cOLELayer"])
    database.close()


class Register:
    """A register as it was, against which it is held later. The row of `writer_of` is another's to write."""

    def __init__(self, file, *versions, writer_of=None):
        self.file, self.versions, self.writer_of = file, versions, writer_of
        self.others = self._rows(file)[1]

    def _rows(self, file):
        """Our own rows and those of others; checks all that holds them."""
        database = sqlite3.connect(f"file:{file}?mode=rw", uri=True, timeout=10)
        with contextlib.closing(database):
            checked = database.execute("PRAGMA integrity_check").fetchall()
            if checked != [("ok",)]:
                raise sqlite3.DatabaseError(f"damaged: {checked}")
            rows = database.execute("SELECT AppName, * FROM Registry ORDER BY rowid").fetchall()
        return ([row for row in rows if row[0] == OURS],
                [row for row in rows if row[0] not in (OURS, self.writer_of)])

    def version(self, name=OURS):
        with contextlib.closing(sqlite3.connect(self.file, timeout=10)) as database:
            rows = database.execute("SELECT Version FROM Registry WHERE AppName = ?", [name]).fetchall()
        return rows[0][0] if len(rows) == 1 else rows

    def damage(self, file=None):
        """What is wrong with it, or with a copy of it; nothing where nothing is."""
        try:
            ours, others = self._rows(file or self.file)
        except sqlite3.Error as error:
            return f"the register can't be read: {error}"
        if others != self.others:
            return f"rows of other add-ins have changed: {set(others) ^ set(self.others)}"
        if len(ours) != 1 or ours[0][3] not in self.versions:
            return f"our row is {ours}"
        return None

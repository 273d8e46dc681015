"""What must hold of the version register, whatever has happened."""
import contextlib
import sqlite3

from testbed import database_file

OURS, OLD, NEW = "Horalink.mra", "0.0.0", "13.0.1"


def rows_of(file, query="SELECT AppName, * FROM Registry ORDER BY rowid", *values):
    with contextlib.closing(sqlite3.connect(f"file:{file}?mode=rw", uri=True, timeout=10)) as database:
        return database.execute(query, values).fetchall()


class Register:
    """A register as it was, with rows of other add-ins on several pages around ours. The row of `written` is another's
    to write meanwhile."""

    def __init__(self, written=None):
        self.file, self.written = database_file("Register.mdb"), written
        with contextlib.closing(sqlite3.connect(self.file)) as database, database:
            database.executemany("INSERT INTO Registry VALUES (?, ?, ?, ?, -1)", [
                (f"{'AZ'[number % 2]}{number:03}.mra", f"Add-in {number} " * 6, f"{number}.0.0", "Other.cOLELayer")
                for number in range(60)])
        self.others = self.rows_of_others(self.file)

    def rows_of_others(self, file):
        return [row for row in rows_of(file) if row[0] not in (OURS, self.written)]

    def version(self, name=OURS, file=None):
        ((version,),) = rows_of(file or self.file, "SELECT Version FROM Registry WHERE AppName = ?", name)
        return version

    def check(self, test, file=None):
        """It is whole, the rows of others are as they were, and ours is either old or new."""
        test.assertEqual(rows_of(file or self.file, "PRAGMA integrity_check"), [("ok",)])
        test.assertEqual(self.rows_of_others(file or self.file), self.others)
        test.assertIn(self.version(OURS, file), (OLD, NEW))

"""The English texts: one SQL file, NAME.sql, for each database."""
import dataclasses
import sqlite3

from horalink_lng.tables import TABLES, fields


class Fault(Exception):
    """An error that ends a command. Its text is FILE[:LINE]: what is wrong."""


@dataclasses.dataclass
class Statement:
    text: str
    line: int
    note: str  # the comment above it


def statements(file):
    text, note, line = "", [], 0
    for number, content in enumerate(read(file).splitlines(keepends=True), 1):
        if not text and not content.strip():
            note = []
        elif not text and content.startswith("--"):
            note.append(content[2:].strip())
        else:
            line = line if text else number
            text += content
            if sqlite3.complete_statement(text):
                yield Statement(text, line, " ".join(note))
                text = ""
    if text:
        yield Statement(text, line, "")


def read(file):
    try:
        return file.read_text(encoding="utf-8")
    except OSError as error:
        raise Fault(f"{file}: it can't be read: {error.strerror}") from error
    except UnicodeDecodeError as error:
        line = error.object.count(b"\n", 0, error.start) + 1
        raise Fault(f"{file}:{line}: this is not in UTF-8; let the editor save the file so") from error


@dataclasses.dataclass
class Origin:
    """The statements that created the rows and tables of a database."""
    file: object
    rows: dict = dataclasses.field(default_factory=dict)    # by table and rowid
    tables: dict = dataclasses.field(default_factory=dict)  # by table

    def line(self, table, rowid=None):
        found = self.rows.get((table, rowid)) or self.tables.get(table)
        return found.line if found else None

    def notes(self, table, rowid):
        return [each.note for each in (self.tables.get(table), self.rows.get((table, rowid))) if each and each.note]


def stop(file, line, words):
    raise Fault(f"{file}:{line}: {words}")


def run(file, connection, report=stop):
    """Runs an SQL file. Calls `report` with file, line and words for each statement that fails, and continues."""
    origin = Origin(file)
    for statement in statements(file):
        try:
            connection.execute(statement.text)
        except sqlite3.Error as error:
            report(file, statement.line, f"the statement fails: {error}")
        for table in TABLES:
            if not fields(connection, table):
                continue
            origin.tables.setdefault(table, statement)
            for (rowid,) in connection.execute(f"SELECT rowid FROM {table}"):
                origin.rows.setdefault((table, rowid), statement)
    return origin

"""Checks databases: the rules for their rows here, and how the add-in itself reads them with `judge-texts`."""
import contextlib
import sqlite3
import subprocess
import tempfile
from pathlib import Path

from horalink_lng.making import english, fill
from horalink_lng.sources import Fault, Origin
from horalink_lng.tables import LANGUAGE_FILES, REGISTER_FILE, TABLES, fields, row_name

# The rows that break a rule: database, table, field, what is wrong, condition.
NUMBER = "(typeof({0}) <> 'integer' OR {0} NOT BETWEEN -32768 AND 32767)"
RULES = [
    *(("Horalink.lng", "tProject", field, "the text is missing", f"ifnull({field}, '') = ''")
      for field in TABLES["tProject"].texts),
    ("Horalink.lng", "tMessages", "Caption", "the text is missing", "ifnull(Caption, '') = ''"),
    ("Horalink.lng", "tMessages", "ID", "it has to be a whole number, 0 or greater",
     "typeof(ID) <> 'integer' OR ID < 0"),
    ("Horalink.lng", "tMessages", "ID", "there is a gap before it, so this text and all after it take wrong places",
     "ID > 0 AND ID - 1 NOT IN (SELECT ID FROM tMessages)"),
    ("Horalink.lng", "tForms", "ObjectName", "the add-in has no window of this name", "ObjectName <> 'dlgAddin'"),
    *(("Horalink.lng", "tForms", field, 'a window has to have one; "-1" has no meaning here',
       f"ifnull({field}, '') IN ('', '-1')") for field in ("Caption", "FontName")),
    *(("Horalink.lng", table, "FormName", "the add-in has no window of this name", "FormName <> 'dlgAddin'")
      for table in ("tControls", "tPicture")),
    *((file, "tMsgBox", "MsgNo", "it has to be a whole number of 16 bits", NUMBER.format("MsgNo"))
      for file in LANGUAGE_FILES[:2]),
    *((file, "tMsgBox", "Prompt", 'the box has no text; "-1" has no meaning here', "ifnull(Prompt, '') IN ('', '-1')")
      for file in LANGUAGE_FILES[:2]),
    ("Common.LNG", "PictureFileName", "ID", "it has to be a whole number of 16 bits", NUMBER.format("ID")),
    ("Common.LNG", "PictureFileName", "ID", "set 0 shows the default pictures, so this row is never used", "ID = 0"),
    *(("Common.LNG", "PictureFileName", field, "the name of the picture is missing", f"ifnull({field}, '') = ''")
      for field in ("DefaultName", "FileName")),
    ("Horalink.hlp", "tTopics", "Body", "the text is missing", "ifnull(Body, '') = ''"),
    ("Horalink.hlp", "tTopics", "Title", "the text is missing", "ifnull(Title, '') = '' AND ID > 0"),
]
PICTURES = [("Horalink.lng", "tPicture"), ("Common.LNG", "PictureFileName")]
PICTURE_STARTS = (b"\x89PNG", b"\xff\xd8\xff", b"GIF8", b"BM", b"\0\0\1\0")


class Findings:
    """Findings with their places: a line of the PO file, else of the SQL, else the database file."""

    def __init__(self, translation=None):
        self.translation = translation
        self.found = {}  # (file, line, words), each once

    def add(self, file, line, words):
        self.found.setdefault((str(file), line or 0, words))

    def add_of_row(self, database, table, rowid, field, words):
        row = row_name(database.connection, table, rowid) if rowid is not None else ""
        context = ":".join(part for part in (table, row, field) if part)
        self.add(*self._place(database, table, rowid, field, context), f"{context}: {words}" if context else words)

    def _place(self, database, table, rowid, field, context):
        if self.translation and (line := self.translation.line(context)):
            return self.translation.file, line
        if self.translation and field in ("FontName", "FontSize") and self.translation.fonts.exists():
            return self.translation.fonts, None
        return database.origin.file, database.origin.line(table, rowid)

    def lines(self):
        return [f"{file}:{line}: {words}" if line else f"{file}: {words}"
                for file, line, words in sorted(self.found, key=lambda finding: finding[:2])]


class Database:
    def __init__(self, name, file, origin):
        self.name = name
        self.file = file
        self.origin = origin

    def __enter__(self):
        self.connection = sqlite3.connect(f"{self.file.resolve().as_uri()}?mode=ro", uri=True)

    def __exit__(self, *_):
        self.connection.close()


def known_texts(files):
    """The English texts by context. Ignores statements that fail."""
    return {context: text for context, (text, _) in english(files, lambda *_: None).items()}


def made(files, translation, findings, folder):
    """Makes databases from SQL files and a translation, and adds the faults found on the way."""
    if translation:
        for line, words in translation.faults(known_texts(files)):
            findings.add(translation.file, line, words)
    databases = []
    for file in files:
        with contextlib.closing(sqlite3.connect(folder / file.stem, isolation_level=None)) as connection:
            connection.execute("PRAGMA ignore_check_constraints = ON")  # the checks below have better words
            origin = fill(connection, file, translation, findings.add)
        databases.append(Database(file.stem, folder / file.stem, origin))
    return databases


def given(file):
    name = next((name for name in (*LANGUAGE_FILES, REGISTER_FILE) if name.lower() == file.name.lower()), None)
    if not name:
        raise Fault(f"{file}: this is not the name of a database of the add-in; a translation is named like nl.po")
    if not file.is_file():
        raise Fault(f"{file}: there is no such file")
    return Database(name, file, Origin(file))


def judge(databases, findings, schemas, checker, backgrounds):
    """Adds what is wrong with the databases. `schemas` is the folder of the SQL files."""
    whole = [database for database in databases if has_all_fields(database, findings, schemas)]
    for database in whole:
        with reading(database, findings):
            check_rules(database, findings)
            if backgrounds:
                check_pictures(database, findings, backgrounds)
    if by_name := {database.name: database for database in whole if database.name != REGISTER_FILE}:
        ask_add_in(by_name, findings, checker)


@contextlib.contextmanager
def reading(database, findings):
    """Turns an error in reading a damaged database into a finding."""
    try:
        yield
    except sqlite3.Error as error:
        findings.add(database.origin.file, None, f"it can't be read to its end: {error}")


def has_all_fields(database, findings, schemas):
    with contextlib.closing(sqlite3.connect(":memory:")) as model:
        fill(model, schemas / f"{database.name}.sql", None, lambda *_: None)
        wanted = [(table, field) for table in TABLES for field in fields(model, table)]
    missing = None
    with reading(database, findings):
        missing = [(table, field) for table, field in wanted if field not in fields(database.connection, table)]
        for table, field in sorted(missing):
            if fields(database.connection, table):
                findings.add(database.origin.file, None, f"{table}: the field {field} is missing")
            else:
                findings.add(database.origin.file, None, f"the table {table} is missing")
    return missing == []


def check_rules(database, findings):
    for table, about in TABLES.items():
        if fields(database.connection, table):
            same = " AND ".join(f'first."{field}" = {table}."{field}" COLLATE NOCASE' for field in about.key)
            report(database, findings, table, "", "another row has the same key and hides this one",
                   f"EXISTS (SELECT 1 FROM {table} first WHERE {same} AND first.rowid < {table}.rowid)")
    for file, table, field, words, condition in RULES:
        if file == database.name:
            report(database, findings, table, field, words, condition)
    if database.name == REGISTER_FILE and not database.connection.execute(
            "SELECT 1 FROM Registry WHERE AppName = 'Horalink.mra'").fetchone():
        findings.add_of_row(database, "Registry", None, "", "the row Horalink.mra is missing")


def report(database, findings, table, field, words, condition):
    for (rowid,) in database.connection.execute(f"SELECT rowid FROM {table} WHERE {condition}").fetchall():
        findings.add_of_row(database, table, rowid, field, words)


def check_pictures(database, findings, folder):
    for file, table in PICTURES:
        if file != database.name:
            continue
        rows = database.connection.execute(f"SELECT rowid, FileName FROM {table} WHERE FileName NOT IN ('', '-1')")
        for rowid, name in rows.fetchall():
            if not (folder / name).is_file():
                findings.add_of_row(database, table, rowid, "FileName", f"the picture {name} is missing")
            elif not is_picture(folder / name):
                findings.add_of_row(database, table, rowid, "FileName", f"the file {name} is not a picture")


def is_picture(file):
    start = file.read_bytes()[:1024]
    return b"<svg" in start or start.startswith(PICTURE_STARTS)


def ask_add_in(databases, findings, checker):
    files = [str(databases[name].file.resolve()) if name in databases else "" for name in LANGUAGE_FILES]
    try:
        ended = subprocess.run([checker, *files], capture_output=True, text=True, encoding="utf-8", check=False)
    except OSError as error:
        raise Fault(f"{checker}: {error.strerror}; in a checkout, ./run builds it") from error
    if ended.returncode:
        raise Fault(f"{checker}: it ended with status {ended.returncode}: {ended.stderr.strip()}")
    for line in ended.stdout.splitlines():
        name, table, rowid, field, words = line.split("\t", 4)
        findings.add_of_row(databases[name], table, int(rowid) if rowid else None, field, words)


def check(sources, translation, schemas, checker, backgrounds):
    """All findings about SQL files in a language, or about databases."""
    findings = Findings(translation)
    with tempfile.TemporaryDirectory() as scratch, contextlib.ExitStack() as opened:
        files = [file for file in sources if file.suffix == ".sql"]
        databases = made(files, translation, findings, Path(scratch))
        databases += [given(file) for file in sources if file not in files]
        for database in databases:
            opened.enter_context(database)
        judge(databases, findings, schemas, checker, backgrounds)
    return findings.lines()

"""Makes databases, and the template of translations."""
import contextlib
import os
import sqlite3
import tempfile
from pathlib import Path

from horalink_lng.sources import Fault, run, stop
from horalink_lng.tables import texts
from horalink_lng.translation import library


def fill(connection, file, translation=None, report=stop):
    """Fills an empty database from its SQL, in a language; returns where the rows come from."""
    origin = run(file, connection, report)
    if translation:
        if file.name == "Horalink.lng.sql" and translation.fonts.exists():
            run(translation.fonts, connection, report)
        for context, table, rowid, field, english in list(texts(connection)):
            if text := translation.text(context, english):
                connection.execute(f"UPDATE {table} SET {field} = ? WHERE rowid = ?", [text, rowid])
    return origin


def build(files, translation, folder):
    """Makes the databases of all SQL files in the folder, or none of them."""
    folder.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory(dir=folder) as scratch:
        for file in files:
            with contextlib.closing(sqlite3.connect(Path(scratch) / file.stem, isolation_level=None)) as connection:
                connection.execute("BEGIN")
                fill(connection, file, translation)
                connection.execute("COMMIT")
        for file in files:
            os.replace(Path(scratch) / file.stem, folder / file.stem)


def english(files, report=stop):
    """The English texts with their notes, by context."""
    found = {}
    for file in files:
        with contextlib.closing(sqlite3.connect(":memory:")) as connection:
            origin = fill(connection, file, None, report)
            for context, table, rowid, _, text in texts(connection):
                if context in found:
                    raise Fault(f"{file}:{origin.line(table, rowid)}: another text has the context {context}")
                found[context] = text, origin.notes(table, rowid)
    return found


def template(files, version):
    polib = library()
    po = polib.POFile()
    po.header = "The texts of Horalink.\nThis file has the licence of Horalink."
    po.metadata = {"Project-Id-Version": f"Horalink {version}", "PO-Revision-Date": "YEAR-MO-DA HO:MI+ZONE",
                   "Last-Translator": "FULL NAME <EMAIL@ADDRESS>", "Language-Team": "LANGUAGE <LL@li.org>",
                   "Language": "", "MIME-Version": "1.0", "Content-Type": "text/plain; charset=UTF-8",
                   "Content-Transfer-Encoding": "8bit"}
    for context, (text, notes) in english(files).items():
        po.append(polib.POEntry(msgctxt=context, msgid=text, comment="\n".join(notes)))
    return str(po)

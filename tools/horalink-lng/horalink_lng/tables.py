"""The tables of the add-in's databases: how their rows are named, and which fields are texts to translate."""
from dataclasses import dataclass

LANGUAGE_FILES = ("Horalink.lng", "Common.LNG", "Horalink.hlp")
REGISTER_FILE = "Register.mdb"


@dataclass(frozen=True)
class Table:
    key: tuple        # the fields that distinguish the rows
    texts: tuple = ()


TABLES = {
    "tProject": Table(("EXEName",), ("Title", "OleServerBusyMsgTitle", "OleServerBusyMsgText",
                                     "OleRequestPendingMsgTitle", "OleRequestPendingMsgText")),
    "tMsgBox": Table(("MsgNo",), ("Prompt", "Title")),
    "tMessages": Table(("ID",), ("Caption",)),
    "tForms": Table(("ObjectName",), ("Caption",)),
    "tControls": Table(("FormName", "ObjectName", "Index"), ("Caption", "ToolTipText")),
    "tPicture": Table(("FormName", "ObjectName", "Index")),
    "PictureFileName": Table(("ID", "DefaultName")),
    "tTopics": Table(("ID",), ("Title", "Body")),
    "Registry": Table(("AppName",)),
}


def fields(connection, table):
    return [name for (name,) in connection.execute("SELECT name FROM pragma_table_info(?)", [table])]


def row_name(connection, table, rowid):
    """The name of a row, from its key: 2, dlgAddin, dlgAddin.cmdButton.0. Leaves out the index -1, which means none."""
    key = ", ".join(f'"{field}"' for field in TABLES[table].key)
    values = connection.execute(f"SELECT {key} FROM {table} WHERE rowid = ?", [rowid]).fetchone()
    return ".".join(str(value) for field, value in zip(TABLES[table].key, values) if (field, value) != ("Index", -1))


def texts(connection):
    """Each text to translate, as (context, table, rowid, field, text), in the order of the tables above."""
    for table, about in TABLES.items():
        if not about.texts or not fields(connection, table):
            continue
        names = ", ".join(about.texts)
        for rowid, *values in connection.execute(f"SELECT rowid, {names} FROM {table}").fetchall():
            row = row_name(connection, table, rowid)
            for field, text in zip(about.texts, values):
                if text not in (None, "", "-1"):
                    yield f"{table}:{row}:{field}", table, rowid, field, text

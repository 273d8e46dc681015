"""Makes databases out of seeds, with every kind of column, name and value. What is dumped and built again has to be
what it was, and to dump to the same text."""
import random
import sqlite3
import struct
import subprocess
import sys

NAMES = ["tForms", "a b", "Index", 'quote"d', "äö", "[x]", "a:b=c", "#", "null", "x'"]
COLUMNS = ["", " TEXT", " NUMERIC", " REAL DEFAULT 8.25", " BLOB DEFAULT x'00ff'", " INTEGER NOT NULL DEFAULT -1",
           " TEXT COLLATE NOCASE DEFAULT '-1'", " VARCHAR(20) DEFAULT (1 + 2)", " TEXT DEFAULT CURRENT_TIMESTAMP",
           " INTEGER CHECK (typeof(1) = 'integer')", " TEXT NOT NULL DEFAULT 'it''s & more' -- a comment\n"]
KEYS = ["id INTEGER PRIMARY KEY", "id INTEGER PRIMARY KEY AUTOINCREMENT", "id INTEGER"]
PIECES = ["word", " ", "\n", "\r\n", "\t", "\0", '"', "\\", "|", "#", "[row]", "é", "中文", "😀", "\x85", "\u2028", "null",
          "-1", "'", ":", "= 1", "\x7f"]
BYTES = [piece.encode() for piece in PIECES] + [b"\xff", b"\xed\xa0\x80"]


def quoted(name):
    return '"' + name.replace('"', '""') + '"'


def value(chance):
    """The way to write a value in a statement, and the value."""
    content = b"".join(chance.choices(BYTES, k=chance.randrange(6)))
    real = struct.unpack("d", chance.randbytes(8))[0]
    whole = chance.getrandbits(64) - (1 << 63) >> chance.randrange(64)
    return chance.choice([("?", None), ("?", whole), ("?", real), ("?", content), ("CAST(? AS TEXT)", content)])


def fill_table(database, chance, name):
    names = [f"{chance.choice(NAMES)}{i}" for i in range(chance.randint(1, 6))]
    columns = [chance.choice(KEYS)] + [quoted(column) + chance.choice(COLUMNS) for column in names]
    if chance.random() < 0.25:
        columns.append("twice AS (id * 2)")
    table = quoted(name)
    database.execute(f"CREATE TABLE {table} ({', '.join(columns)})")
    for _ in range(chance.randrange(12)):
        given = [column for column in names if chance.random() < 0.75] or names
        ways, values = zip(*(value(chance) for _ in given))
        database.execute(f"INSERT OR IGNORE INTO {table} ({', '.join(map(quoted, given))}) VALUES ({', '.join(ways)})",
                         values)
    for other in (f"CREATE INDEX {quoted('i ' + name)} ON {table} (id, {quoted(names[0])})",
                  f"CREATE VIEW {quoted('v ' + name)} AS SELECT id FROM {table}", f"DELETE FROM {table} WHERE id % 3 = 0"):
        if chance.random() < 0.33:
            database.execute(other)


def content(file):
    """Everything that two databases have to agree in."""
    database = sqlite3.connect(file)
    database.text_factory = bytes
    found = database.execute("SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY type, name").fetchall()
    for [table] in database.execute("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name").fetchall():
        table = quoted(table.decode())
        columns = [quoted(column[1].decode()) for column in database.execute(f"PRAGMA table_xinfo({table})")]
        chosen = ", ".join(f"typeof({column}), {column}" for column in columns)
        found += database.execute(f"SELECT {chosen} FROM {table} NOT INDEXED").fetchall()
    return found


def tool(*words):
    return subprocess.run(["horalink-lng", *words], check=True, stdout=subprocess.PIPE).stdout


for seed in range(int(sys.argv[1])):
    generator = random.Random(seed)
    with sqlite3.connect(f"{seed}.db") as made:
        made.execute("PRAGMA user_version = 0")
        for number in range(generator.randrange(4)):
            fill_table(made, generator, generator.choice(NAMES) + str(number))
    text = tool("dump", f"{seed}.db")
    with open("text", "wb") as source:
        source.write(text)
    tool("build", "text", "--output", "made/", "--force")
    assert content(f"made/{seed}.db") == content(f"{seed}.db"), f"seed {seed}"
    assert tool("dump", f"made/{seed}.db") == text, f"seed {seed}"

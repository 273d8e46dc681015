"""import-databases, with a program in place of those of mdbtools."""
import contextlib
import os
import sqlite3
import subprocess
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "tools/import-databases"
# Answers the calls about the register of an older installation, and no other.
STAND_IN = r"""#!/bin/bash
program=${0##*/}
[ -z "$MDBOPTS$MDBICONV$(cat)" ] && [ "$LC_ALL" = C.UTF-8 ] && [ "$(ulimit -v) $(ulimit -t)" = "1048576 600" ] ||
  echo "wrong surroundings" >&2
[ ! -e "$TOP/instead/$program" ] || { . "$TOP/instead/$program"; exit; }
case $(printf '<%s>' "$program" "$@") in
'<mdb-tables><-1><REGISTER.MDB>') printf 'Registry\nAll Others\n' ;;
'<mdb-schema><--no-indexes><--no-relations><--no-default-values><--no-comments><-T><Registry><REGISTER.MDB>')
  printf 'CREATE TABLE [Registry]\n (\n\t[AppName]\t\t\tText (50) NOT NULL, \n\t[version]\t\t\tText (9), \n'
  printf '\t[a "b'"'"'c]\t\t\tText (9), \n\t[Enabled]\t\t\tBoolean NOT NULL\n);\n' ;;
'<mdb-export><-I><sqlite><-q><'"'"'><-b><hex><-D><%Y-%m-%d %H:%M:%S><-T><%Y-%m-%d %H:%M:%S><REGISTER.MDB><Registry>')
  names='("AppName", "version", "a ""b'"'"'c", "Enabled")'
  echo "INSERT INTO \"Registry\" $names VALUES ('It''s
.shell touch $TOP/escaped',NULL,'x',1);"
  echo "INSERT INTO \"Registry\" $names VALUES ('Horalink.mra','1.0',NULL,0);" ;;
'<mdb-count><REGISTER.MDB><Registry>') echo 2 ;;
*) echo "unknown call: $program $*" >&2 ;;
esac
"""
JET = b"\0\1\0\0Standard Jet DB\0"
# A program, what it does instead, and what is said then; a file, what is in it, and what is said.
REFUSALS = [
    ("mdb-count", "echo 3", "Registry: the file counts 3 rows and gives 2; it is damaged"),
    ("mdb-export", "echo broken >&2", "it is damaged or encrypted: mdb-export ended with status 0: broken"),
    ("mdb-export", "printf '.shell touch %s/escaped\\n' \"$TOP\"", "its rows can't be copied"),
    ("Register.mdb", b"text", "Register.mdb: this is no Access file"),
    ("other.mdb", JET, "other.mdb: we have no database of this name"),
    ("Register.mdb", b"\0\1\0\0Standard ACE DB\0 <encryption xmlns=", "Register.mdb: it is encrypted"),
    ("Register.mdb", None, "Register.mdb: there is no such file"),
]


class Import(unittest.TestCase):
    def setUp(self):
        self.top = Path(self.enterContext(tempfile.TemporaryDirectory()))
        for name in ("bin", "instead"):
            (self.top / name).mkdir()
        for name in ("tables", "schema", "export", "count"):
            (self.top / f"bin/mdb-{name}").write_text(STAND_IN)
            (self.top / f"bin/mdb-{name}").chmod(0o755)
        (self.top / "REGISTER.MDB").write_bytes(JET)

    def import_files(self, *files):
        environment = {"PATH": f"{self.top}/bin:/usr/bin:/bin", "TOP": str(self.top), "MDBOPTS": "debug_all",
                       "LANG": "de_DE.UTF-8"}
        return subprocess.run([SCRIPT, *files, "new"], cwd=self.top, env=environment, check=False, capture_output=True,
                              text=True, stdin=subprocess.DEVNULL)

    def test_copies_tables_with_all_their_fields(self):
        ended = self.import_files("REGISTER.MDB")
        self.assertEqual((ended.returncode, ended.stderr, ended.stdout.splitlines()),
                         (0, "", ["Register.mdb: Registry: 2 rows",
                                  "Register.mdb: All Others: not copied, since ours has no such table"]))
        self.assertEqual((os.listdir(self.top / "new"), (self.top / "escaped").exists()), (["Register.mdb"], False))
        with contextlib.closing(sqlite3.connect(self.top / "new/Register.mdb")) as database:
            rows = database.execute("SELECT AppName, Title, Version, Enabled, \"a \"\"b'c\" FROM Registry").fetchall()
        self.assertEqual(rows, [(f"It's\n.shell touch {self.top}/escaped", None, None, -1, "x"),
                                ("Horalink.mra", None, "1.0", 0, None)])
        self.assertIn("new/Register.mdb: the file is there already", self.import_files("REGISTER.MDB").stderr)

    def test_refuses_what_it_can_not_read_whole(self):
        for name, instead, words in REFUSALS:
            with self.subTest(words):
                place = self.top / ("instead" if name.startswith("mdb") else ".") / name
                if instead:
                    place.write_bytes(instead if isinstance(instead, bytes) else instead.encode())
                ended = self.import_files("REGISTER.MDB", *([] if name.startswith("mdb") else [name]))
                self.assertEqual(ended.returncode, 1, ended)
                self.assertIn(words, ended.stderr)
                self.assertFalse((self.top / "new/Register.mdb").exists() or (self.top / "escaped").exists())
                place.unlink(missing_ok=True)
        self.assertEqual(self.import_files().returncode, 2)


if __name__ == "__main__":
    unittest.main()

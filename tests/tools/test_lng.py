"""horalink-lng, on texts in a folder of the test's own."""
import contextlib
import io
import os
import shutil
import sqlite3
import sys
import tempfile
import unittest
from pathlib import Path

TOP = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(TOP / "tools/horalink-lng"))
import polib  # noqa: E402
from horalink_lng.commands import main  # noqa: E402

# Translations, each with the words of its finding, or None for a right one.
TEXTS = [
    ("tProject:Horalink:Title", "Klok %CR", "this text is shown as it is: %CR has no meaning here"),
    ("tMsgBox:0:Prompt", "Het is & %SP4 & %AND & %CR & %ST & 100 % of 5%", None),
    ("tMsgBox:1:Prompt", "Datum & tijd", '"Datum" and "tijd" and the blanks beside it vanish; a character & is'),
    ("tMsgBox:2:Prompt", "Mislukt", "%ST is missing, so what the program puts in is not shown"),
    ("tMsgBox:3:Prompt", "A & %SP & %ST", "there is no text for %ST in this box"),
    ("tMsgBox:3:Title", "Klok & %st", '"%st" is no token: its letters have to be capitals'),
    ("tMsgBox:4:Prompt", "De %AND jaren", '"De %AND jaren" is shown as it is: %AND has to be alone between two &'),
    ("tForms:dlgAddin:Caption", "Klok & -1", 'the piece "-1" wipes out what is before it'),
    ("tControls:dlgAddin.lblTrack:Caption", "De tijd van deze pc volgen, ja", " pixels wide, and its place has 136"),
    ("tTopics:4:Body", "<p>Een <b>woord</p>", "the tags have to be those of the English text: <p> </p>"),
]
BROKEN = [
    (b'msgid "a"\nmsgstr "b"c"\n', ":2: this is not the syntax of a PO file: unescaped double quote found"),
    (b'\nmsgid "\xff"\n', ":2: this is not in UTF-8"),
    (b'msgid ""\nmsgstr "Content-Type: text/plain; charset=ISO-8859-1\\n"\n\nmsgid "a"\nmsgstr "b"\n',
     ":1: the Content-Type of the header has to say charset=UTF-8"),
]
# Changes of the English texts, and all findings of them.
SQL_CHANGES = [
    ("Horalink.lng", "(3, 'vbOKOnly+vbExclamation'", "(3, 'vbOkay+vbYesNo+vbOKCancel+'"),
    ("Horalink.lng", "VALUES (4, 'vbOKOnly", "VALUES (3, 'vbOKOnly"), ("Horalink.lng", "(5, 'The PBX", "(50, 'The PBX"),
    ("Horalink.lng", "'updTime'", "'updTim'"), ("Horalink.lng", "'itmWhatsThis', ", "'itmWhatsThis', 1, "),
    ("Horalink.hlp", "VALUES (3, ", "VALUES (33, "), ("Common.LNG", "'sand.svg'", "'dirt.svg'"),
]
SQL_FINDINGS = """
Common.LNG.sql:21: PictureFileName:2.plain.svg:FileName: the picture dirt.svg is missing
Common.LNG.sql:21: PictureFileName:3.plain.svg:FileName: the file meadow.svg is not a picture
Horalink.hlp.sql:4: tTopics: the row 3 is missing; the control lblBevel refers to it
Horalink.lng.sql:30: tMsgBox: the row 4 is missing
Horalink.lng.sql:52: tMsgBox:3:Buttons: "vbOkay" is no name of a button and counts for nothing
Horalink.lng.sql:52: tMsgBox:3:Buttons: there is a + with nothing beside it
Horalink.lng.sql:52: tMsgBox:3:Buttons: names that exclude each other add up to something else
Horalink.lng.sql:56: the statement fails: UNIQUE constraint failed: tMsgBox.MsgNo
Horalink.lng.sql:81: tMessages:50:ID: there is a gap before it, so this text and all after it take wrong places
Horalink.lng.sql:84: tMessages:6:ID: there is a gap before it, so this text and all after it take wrong places
Horalink.lng.sql:105: tControls: the control itmWhatsThis has no Caption and shows "What's This?" of its design
Horalink.lng.sql:130: tControls:dlgAddin.updTim: the add-in fails: Control 'updTim' not found [730]
Horalink.lng.sql:139: the statement fails: 4 values for 3 columns
nl.sql:1: the statement fails: no such table: tForm
""".strip().splitlines()
# Statements on databases without rules, and what each leads to.
APART = [
    ("Horalink.lng", "DROP TABLE tForms", "the table tForms is missing"),
    ("Horalink.hlp", "ALTER TABLE tTopics DROP COLUMN Body", "tTopics: the field Body is missing"),
    ("Horalink.lng", "DELETE FROM tProject", "tProject: the add-in fails: There is no current record [3021]"),
    ("Horalink.lng", "UPDATE tMsgBox SET Prompt = x'00ff' WHERE MsgNo = 1", "it can't be read to its end: Type mis"),
    ("Horalink.lng", "INSERT INTO tMessages VALUES (4, 'A')", "tMessages:4: another row has the same key and hides"),
    ("Common.LNG", "UPDATE PictureFileName SET ID = 32768 WHERE ID = 1", "PictureFileName:32768.plain.svg:ID: it has"),
]


class Lng(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.top = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.data = shutil.copytree(TOP / "data", self.top / "data")
        self.po = self.top / "nl.po"

    def run_tool(self, *words):
        """The status, and the lines on both streams."""
        out, err = io.StringIO(), io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(err):
            status = main([str(word) for word in words], "1.2.3", self.data, os.environ["HORALINK_JUDGE"])
        return status, out.getvalue().splitlines(), err.getvalue().splitlines()

    def translate(self, texts):
        self.po.write_text("\n".join(self.run_tool("pot")[1]) + "\n", encoding="utf-8")
        translation = polib.pofile(str(self.po))
        for context, text, *_ in texts:
            next(entry for entry in translation if entry.msgctxt == context).msgstr = text
        translation.save()
        return translation

    def line_of(self, context):
        return self.po.read_text(encoding="utf-8").splitlines().index(f'msgctxt "{context}"') + 1

    def test_names_all_faults_of_a_translation_with_their_lines(self):
        self.translate(TEXTS)
        status, lines, notes = self.run_tool("check", self.po)
        wrong = sorted((self.line_of(context), context, words) for context, _, words in TEXTS if words)
        self.assertEqual(len(lines), len(wrong), lines)
        for line, (number, context, words) in zip(lines, wrong):
            self.assertTrue(line.startswith(f"{self.po}:{number}: {context}: ") and words in line, line)
        self.assertEqual((status, notes), (1, [f"{self.po}: {len(TEXTS)} of 59 texts are translated, 0 are fuzzy; "
                                               "the others show in English"]))

    def test_shows_english_for_what_is_untranslated_fuzzy_or_outdated(self):
        translation = self.translate([(f"tMessages:{number}:Caption", "Tekst %CR") for number in (1, 3, 4, 6)])
        by_context = {entry.msgctxt: entry for entry in translation}
        by_context["tMessages:3:Caption"].flags.append("fuzzy")
        by_context["tMessages:4:Caption"].msgid = "Something older"
        by_context["tMessages:6:Caption"].msgid_plural = "Plural"
        by_context["tMessages:6:Caption"].msgstr_plural = {0: "Een", 1: "Twee"}
        for number, english, text, is_obsolete in ((99, "A", "B", False), (1, "Login Failed", "Nee", False),
                                                   (5, "The PBX clock is ready.", "B", True)):
            translation.append(polib.POEntry(msgctxt=f"tMessages:{number}:Caption", msgid=english, msgstr=text,
                                             obsolete=is_obsolete))
        translation.save()
        self.assertEqual(self.run_tool("build", self.po, "--output", self.top / "a/nl"), (0, [], []))
        with contextlib.closing(sqlite3.connect(self.top / "a/nl/Horalink.lng")) as database:
            shown = [text for (text,) in database.execute("SELECT Caption FROM tMessages WHERE ID < 7 ORDER BY ID")]
        self.assertEqual(shown[1:2] + shown[3:], ["Nee", "PBX clock request", "PBX Clock", "The PBX clock is ready.",
                                                  "The PBX clock request failed"])
        _, lines, notes = self.run_tool("check", self.po)
        self.assertIn(f"1 are fuzzy (in line {self.line_of('tMessages:3:Caption')}); ", notes[0])
        for words in ("this text is in the file a second time", "this text comes again further down",
                      "tMessages:4:Caption: the English text has changed", "tMessages:6:Caption: no text here has a",
                      "tMessages:99:Caption: there is no text of this context"):
            self.assertIn(words, "\n".join(lines))

    def test_names_the_line_of_a_broken_file(self):
        for content, words in BROKEN:
            with self.subTest(words):
                self.po.write_bytes(content)
                status, lines, notes = self.run_tool("check", self.po)
                self.assertEqual(status, 1)
                self.assertIn(f"{self.po}{words}", "\n".join(lines + notes))

    def test_names_all_faults_of_the_english_texts(self):
        for name, before, after in SQL_CHANGES:
            file = self.data / f"{name}.sql"
            text = file.read_text(encoding="utf-8")
            self.assertIn(before, text)
            file.write_text(text.replace(before, after), encoding="utf-8")
        (self.data / "backgrounds/meadow.svg").write_text("not a picture")
        self.translate([])
        self.po.with_suffix(".sql").write_text("UPDATE tForm SET FontSize = 9;")
        lines = [line.replace(f"{self.data}/", "").replace(f"{self.top}/", "")
                 for line in self.run_tool("check", self.po, "--backgrounds", self.data / "backgrounds")[1]]
        self.assertEqual(lines, SQL_FINDINGS)
        made = self.top / "made"
        made.mkdir()
        (made / "Common.LNG").write_text("kept")
        status, _, notes = self.run_tool("build", "--output", made)
        self.assertEqual((status, os.listdir(made), (made / "Common.LNG").read_text()), (1, ["Common.LNG"], "kept"))
        self.assertIn("Horalink.lng.sql:56: the statement fails: UNIQUE constraint failed", notes[0])

    def test_judges_databases(self):
        files = [self.top / name for name in ("Common.LNG", "Horalink.hlp", "Horalink.lng", "Register.mdb")]
        self.run_tool("build", "--output", self.top)
        self.run_tool("build", self.data / "Register.mdb.sql", "--output", self.top)

        def change(file, statements):
            with contextlib.closing(sqlite3.connect(file)) as database:
                database.executescript(statements)

        def check():
            return [line.replace(f"{self.top}/", "") for line in self.run_tool("check", *files)[1]]
        for file in files:
            with contextlib.closing(sqlite3.connect(file)) as database:
                tables = database.execute("SELECT name FROM sqlite_master WHERE type = 'table'").fetchall()
            change(file, "".join(f"CREATE TABLE plain AS SELECT * FROM {table}; DROP TABLE {table};"
                                 f"ALTER TABLE plain RENAME TO {table};" for (table,) in tables))
        self.assertEqual(self.run_tool("check", *files), (0, ["No fault was found."], []))
        whole = {file: file.read_bytes() for file in files}
        for name, statement, words in APART:
            change(self.top / name, statement)
            (line,) = check()
            self.assertTrue(line.startswith(f"{name}: {words}" if words else "No fault was found."), (statement, line))
            (self.top / name).write_bytes(whole[self.top / name])
        files[0].write_bytes(whole[files[0]][:4096] + bytes(range(256)) * 48)
        self.assertIn("Common.LNG: it can't be read to its end", check()[0])
        for name, words in (("other.db", "not the name of a database"), ("x/COMMON.lng", "there is no such file")):
            self.assertIn(words, self.run_tool("check", self.top / name)[2][0])

    def test_ships_languages_that_are_whole(self):
        template = {entry.msgctxt: entry for entry in self.translate([])}
        for file in self.data.glob("po/*.po"):
            entries = {entry.msgctxt: entry for entry in polib.pofile(str(file))}
            self.assertEqual([(context, entry.comment) for context, entry in entries.items()],
                             [(context, entry.comment) for context, entry in template.items()], file)
            self.assertIn("59 of 59 texts are translated, 0 are fuzzy", self.run_tool("check", file)[2][0])


if __name__ == "__main__":
    unittest.main()

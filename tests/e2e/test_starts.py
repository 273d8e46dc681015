"""Starts: what a good one leaves behind, and what a failed one shows and tells who asked for it."""
import sqlite3
import subprocess
import unittest

from end_to_end import Host, OwnHostTest, change_database, database_file
from end_to_end import open_stage as setUpModule  # noqa: F401
from end_to_end import run

import stage
from driver import Role
from host import CONTRACT, result
from stage import ADD_IN, EXCHANGE, LIMIT, NOTICE, SWITCHDESK, EndToEndTest

# What is done to an installation, and what the notice says: something that names it, and the number.
DAMAGES = [
    ("no common texts", lambda: database_file("Common.LNG").unlink(), r"COMMON\.LNG|Common\.LNG", 3024),
    ("texts that are no database", lambda: spoil("Horalink.lng"), r"Horalink\.lng", 3343),
    ("no row for the application", lambda: change_database("Horalink.lng", "DELETE FROM tProject"), "record", 3021),
    ("no register", lambda: database_file("Register.mdb").unlink(), r"Register\.mdb", 3024),
]


def spoil(name):
    database_file(name).write_text("This is no database. " * 200)


class GoodStarts(EndToEndTest):
    def test_version_is_recorded_in_the_first_row(self):
        # An imported register has no keys that would keep a second row out.
        change_database("Register.mdb", "CREATE TABLE Imported AS SELECT * FROM Registry", "DROP TABLE Registry",
                        "ALTER TABLE Imported RENAME TO Registry", "INSERT INTO Registry SELECT * FROM Registry")
        Host(self).open()
        register = sqlite3.connect(database_file("Register.mdb"))
        self.addCleanup(register.close)
        rows = register.execute("SELECT Version FROM Registry WHERE AppName = 'Horalink.mra'").fetchall()
        self.assertEqual(rows, [("13.0.1",), ("0.0.0",)])


class FailedStarts(OwnHostTest):
    def test_one_notice_and_the_creation_fails(self):
        for name, damage, what, number in DAMAGES:
            with self.case(name):
                damage()
                host = Host(self)
                text = self.close_box(NOTICE)
                self.assertRegex(text, what)
                self.assertIn(f"[{number}]", text)
                host.wait_for_line("# add-in raised error 429")
                self.wait_until_gone()
                stage.driver.find(SWITCHDESK, "The clock add-in can't be started (error 429).", Role.LABEL)

    def test_second_object_fails_where_the_register_has_gone(self):
        """The end of a start that fails takes the objects with it that are there already."""
        host = Host(self).open()
        database_file("Register.mdb").unlink()
        second = Host(self, exchange="Warehouse")
        self.close_box(NOTICE)
        second.wait_for_line("# add-in raised error 429")
        host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_form_without_texts_leaves_one_notice_and_no_window(self):
        change_database("Horalink.lng", "DROP TABLE tForms")
        client = self.join()
        creation = client.create()
        self.assertIn("tForms", self.close_box(NOTICE))
        layer = result(creation)
        self.assertEqual(stage.driver.titles(ADD_IN), [])
        client.send(layer, "Object", "Release")
        self.wait_until_gone()


NO_BUS = "DBUS_SESSION_BUS_ADDRESS", "unix:path=/none"


class WithoutSurroundings(EndToEndTest):
    def environment(self, **changes):
        environment = {**stage.arrangement.environment, **changes}
        return {name: value for name, value in environment.items() if value is not None}

    def test_one_line_and_a_status(self):
        for name, value, why, arguments in (("DISPLAY", None, "no display", (EXCHANGE, "-Embedding")),
                                            ("DISPLAY", ":4711", ":4711", (EXCHANGE, "-Embedding")),
                                            (*NO_BUS, "server", ("-Embedding",))):
            for argument in arguments:
                with self.case(f"{name}={value} {argument}"):
                    done = run([stage.arrangement.add_in, argument], environment=self.environment(**{name: value}))
                    self.assertGreater(done.returncode, 0)
                    self.assertRegex(done.stderr, rf"^\S*horalink: [^\n]*{why}[^\n]*\n$")

    def test_a_dialog_without_a_bus_opens_and_closes(self):
        process = self.start([stage.arrangement.add_in, EXCHANGE], environment=self.environment(**dict([NO_BUS])),
                             stderr=subprocess.PIPE, text=True)
        stage.driver.raise_window("PBX Clock")
        stage.driver.press("alt+F4")
        _, errors = process.communicate(timeout=LIMIT)
        self.assertEqual(process.returncode, 0)
        self.assertRegex(errors, r"^horalink: can't reach the session bus: [^\n]+\n$")

    def test_creation_fails_at_once_where_the_bus_has_no_display(self):
        address = stage.arrangement.start_bus("bus-alone", self.environment(DISPLAY=None))
        environment = self.environment(DBUS_SESSION_BUS_ADDRESS=address)
        created = run(["busctl", "--user", "--timeout=20", "call", stage.ADD_IN_CLASS, "/Factory", f"{CONTRACT}Factory", "CreateInstance"],
                      environment=environment)
        self.assertRegex(created.stderr, "exited with status 1")
        Host(self, environment=environment).wait_for_line("# add-in raised error 429")
        self.assertIn("display", (stage.arrangement.folder / "bus-alone.log").read_text())


if __name__ == "__main__":
    unittest.main()

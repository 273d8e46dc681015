"""Starts: what a good one brings, and what a failed one shows and says to who asked for it."""
import contextlib
import sqlite3
import subprocess

import testbed
from driver import Role
from host import BUSY, result
from testbed import (ADD_IN, CLOSE, EXCHANGE, LIMIT, LOOKUP, NOTICE, SWITCHDESK, UPDATE, Host, OwnHostTest, changed,
                     database_file, dialog_title, run)
from testbed import set_up as setUpModule  # noqa: F401

NO_BUS = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/none"}


class OnTheBus(OwnHostTest):
    def test_a_failure_is_one_notice_and_an_error(self):
        """The end of a start that fails takes the objects with it that are there already. The good one before has made the
        register the user's own, and nothing else."""
        shared, own = (tree / "MORA32/DATABASE/Register.mdb" for tree in (testbed.sandbox.root, testbed.sandbox.own))
        before = shared.read_bytes()
        self.assertFalse(own.exists())
        host = Host(self).open()
        with contextlib.closing(sqlite3.connect(own)) as database:
            self.assertEqual(database.execute("SELECT AppName, Version FROM Registry").fetchall(),
                             [("Horalink.mra", "13.0.1")])
        self.assertEqual((shared.read_bytes(), list(testbed.sandbox.own.rglob("*.*"))), (before, [own]))
        database_file("Register.mdb").write_text("no database")
        second = Host(self, exchange="Warehouse")
        self.assertRegex(self.close_box(NOTICE), r"(?s)Register\.mdb.*\[3343\]")
        second.wait_for_line("# add-in raised error 429")
        testbed.driver.find(SWITCHDESK, "The clock add-in can't be started (error 429).", Role.LABEL)
        host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_a_creation_that_follows_a_release_gets_a_fresh_process(self):
        """With a host that answers REGComData at once or late, and a creation that waits for the answer or doesn't."""
        host = self.join()
        layers = [result(host.create())]
        for host.delay, waits in [(0, True)] * 20 + [(300, True)] * 10 + [(300, False)] * 10:
            self.assertIs(host.register(layers[-1]), False)
            released = host.send(layers[-1], "Object", "Release")
            if waits:
                result(released)
            layer = result(host.create())
            if not waits and layer[0] == BUSY:
                layer = result(host.create())
            layers.append(layer)
        self.assertEqual(len({owner for owner, _ in layers}), len(layers))
        self.wait_for(lambda: all(host.asked_by(layer) == ["GetComData", "REGComData"] for layer in layers[:-1]), "the calls")

    def test_it_fails_at_once_where_the_bus_has_no_display(self):
        environment = changed(DBUS_SESSION_BUS_ADDRESS=testbed.sandbox.start_bus("bus-alone", changed(DISPLAY=None)))
        Host(self, environment=environment).wait_for_line("# add-in raised error 429")
        self.assertIn("display", (testbed.sandbox.folder / "bus-alone.log").read_text())


class AsAProgram(OwnHostTest):
    """Which creates the host's exchange object by the name of its class."""

    def open_alone(self, exchange=EXCHANGE, **environment):
        self.add_in = self.start([testbed.sandbox.add_in, exchange], environment=changed(**environment),
                                 stderr=subprocess.PIPE, text=True)

    def close_alone(self, title=dialog_title(), errors="^$"):
        testbed.driver.raise_window(title)
        testbed.driver.press("alt+F4")
        self.assertRegex(self.add_in.communicate(timeout=LIMIT)[1], errors)
        self.assertEqual(self.add_in.returncode, 0)

    def test_lookup_and_update_with_a_service_of_the_bus(self):
        self.open_alone()
        self.assert_usable()
        self.press(UPDATE)
        self.assertEqual(self.close_box(testbed.CLOCK_READ), "The date and time of the PBX have been updated.")
        self.assert_usable()
        self.close_alone()
        self.wait_until_gone(SWITCHDESK)

    def test_without_a_connection_it_can_only_be_closed(self):
        for exchange, title in (("Attic", dialog_title("Attic")), (EXCHANGE, "PBX Clock")):
            with self.case(title):
                if exchange == EXCHANGE:
                    testbed.sandbox.host.unlink()
                self.open_alone(exchange)
                testbed.driver.window(ADD_IN, title)
                self.assertEqual([self.is_enabled(button) for button in (LOOKUP, UPDATE, CLOSE)], [False, False, True])
                self.close_alone(title)

    def test_without_surroundings_there_is_one_line(self):
        for changes, argument, why in (({"DISPLAY": None}, EXCHANGE, "no display"), (NO_BUS, "-Embedding", "server"),
                                       ({"DISPLAY": ":4711"}, "-Embedding", ":4711")):
            done = run([testbed.sandbox.add_in, argument], environment=changed(**changes))
            self.assertGreater(done.returncode, 0)
            self.assertRegex(done.stderr, rf"^\S*horalink: [^\n]*{why}[^\n]*\n$")
        self.open_alone(**NO_BUS)
        self.close_alone("PBX Clock", r"^horalink: can't reach the session bus: [^\n]+\n$")

"""Starts that fail, hosts that die, and objects that are shared."""
import subprocess
import unittest

import dbus

import stage
from stage import (ADD_IN, EXCHANGE, LOGIN_FAILED, LOOKUP, NOTICE, WAIT_BOX, EndToEndTest, Host, change_database,
                   connect, dialog_title, pids)
from stage import open_stage as setUpModule  # noqa: F401

FACTORY, OBJECT = "org.velmora.Automation1.Factory", "org.velmora.Automation1.Object"


class Client:
    """A client that creates the class and holds it, and keeps no host object."""

    def __init__(self):
        self.bus = connect()
        owner, path = self.bus.get_object("Horalink10013.cOLELayer", "/Factory").CreateInstance(
            dbus_interface=FACTORY)
        self.layer = dbus.Interface(self.bus.get_object(owner, path, introspect=False), OBJECT)

    def leave(self):
        self.bus.close()


class FailedStarts(EndToEndTest):
    def test_one_notice_and_the_creation_fails(self):
        cases = [
            ("Common.LNG missing", lambda: self.file("Common.LNG").unlink(), r"COMMON|Common\.LNG"),
            ("Horalink.lng missing", lambda: self.file("Horalink.lng").unlink(), r"Horalink\.lng"),
            ("no database", lambda: self.file("Horalink.lng").write_text("no database at all " * 99), r"\[3343\]"),
            ("no row", lambda: change_database("Horalink.lng", "DELETE FROM tProject"), r"\[3021\]"),
            ("no table", lambda: change_database("Horalink.lng", "DROP TABLE tMessages"), "tMessages"),
            ("register missing", lambda: self.file("Register.mdb").unlink(), r"Register\.mdb"),
        ]
        for name, damage, text in cases:
            with self.case(name):
                damage()
                host = Host(self)
                self.assertRegex(self.close_box(NOTICE), text)
                host.wait_for_line("# add-in raised error 429")
                self.wait_until_gone()

    @staticmethod
    def file(name):
        return next(stage.arrangement.root.glob(f"*/DATABASE/{name}"))

    def test_without_display_or_bus_one_line_and_a_status(self):
        for name, value in (("DISPLAY", None), ("DISPLAY", ":4711"), ("DBUS_SESSION_BUS_ADDRESS", "unix:path=/none")):
            with self.case(f"{name}={value}"):
                environment = dict(stage.arrangement.environment)
                environment.pop(name)
                if value:
                    environment[name] = value
                done = stage.run([stage.arrangement.add_in, EXCHANGE], environment=environment)
                self.assertNotEqual(done.returncode, 0)
                self.assertEqual(len(done.stderr.strip().splitlines()), 1, done.stderr)

    def test_an_empty_command_line_ends_at_once(self):
        self.assertEqual(stage.run([stage.arrangement.add_in]).returncode, 0)


# Options that bring the host into a state of the exchange, and a line of its log that tells that it is there.
STATES = [
    ("idle", [], None),
    ("logging in", ["--login=hang"], "# hangs"),
    ("sending", ["--send=hang"], "# hangs"),
    ("waiting", ["--answer=never"], "ShowMessage(\"PBX clock request: R1"),
    ("answered", ["--leave=answered"], None),
    ("reading the answer", ["--leave=callback"], None),
    ("showing", [], "# CallBack returned"),
]


class DyingHosts(EndToEndTest):
    def test_the_add_in_goes_with_its_last_client(self):
        for state, options, line in STATES:
            with self.case(state):
                host = Host(self, *options).open()
                if state != "idle":
                    self.press(LOOKUP)
                if line:
                    host.wait_for_line(line)
                host.kill()
                self.wait_until_gone()

    def test_the_dialog_stays_usable_for_a_second_client(self):
        for state, options, line in STATES[1:4]:
            with self.case(state):
                host = Host(self, *options).open()
                client = Client()
                self.press(LOOKUP)
                host.wait_for_line(line)
                host.kill()
                # Whatever the request was in, the next press comes through to a host that isn't there.
                if state == "logging in":
                    self.close_box(LOGIN_FAILED)
                self.press(LOOKUP)
                self.close_box(LOGIN_FAILED)
                self.assertEqual(len(pids(ADD_IN)), 1)
                client.leave()
                self.wait_until_gone()

    def test_two_objects_share_the_dialog_and_the_last_one_ends_it(self):
        first, second = Client(), Client()
        self.assertEqual(len(pids(ADD_IN)), 1)
        second.layer.Invoke("Visible", dbus.UInt16(4), dbus.Array([True], signature="v"))
        self.assertTrue(first.layer.Invoke("Visible", dbus.UInt16(2), dbus.Array([], signature="v"))[0])
        first.leave()
        self.assertTrue(second.layer.Invoke("Visible", dbus.UInt16(2), dbus.Array([], signature="v"))[0])
        second.layer.Release()
        self.wait_until_gone()
        second.leave()


class StandAlone(EndToEndTest):
    def run_alone(self, *options):
        """The add-in as a plain program, on an exchange class that a host serves."""
        self.start([stage.arrangement.host, "--log", stage.arrangement.folder / "alone.log", *options])
        stage.driver.window(stage.SWITCHDESK)
        process = self.start([stage.arrangement.add_in, EXCHANGE], stderr=subprocess.PIPE)
        self.assertTrue(self.dialog())
        return process

    def test_a_lookup_and_the_close_button_ends_the_process(self):
        process = self.run_alone()
        self.assert_usable()
        self.press(stage.CLOSE)
        self.wait_for(lambda: process.poll() is not None, "the add-in to end")
        self.assertEqual(process.returncode, 0)
        lines = (stage.arrangement.folder / "alone.log").read_text(encoding="utf-8").splitlines()
        self.assertIn(f'ConnectToPbx("{EXCHANGE}", <object>) -> "C1"', lines)
        self.assertIn(f'LogOut("{EXCHANGE}", "C1") -> Nothing', lines)

    def test_the_exchange_class_is_started_by_the_bus(self):
        self.start([stage.arrangement.add_in, EXCHANGE])
        self.assertTrue(self.dialog())
        self.assert_usable()

    def test_the_wait_box_frees_the_dialog(self):
        for options in (["--answer=never"], ["--login=hang"]):
            with self.case(options[0]):
                self.run_alone("--logins=1", *options)
                self.press(LOOKUP)
                self.assertIn("has not answered", self.close_box(WAIT_BOX, "Cancel"))
                if "hang" in options[0]:
                    self.close_box(LOGIN_FAILED)
                    continue
                self.assert_usable()


if __name__ == "__main__":
    unittest.main()

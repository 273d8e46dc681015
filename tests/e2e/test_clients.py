"""Clients that share no code with the add-in: the example host, busctl, and messages that make no sense."""
import subprocess
import unittest

import dbus

import stage
from stage import ADD_IN, LOOKUP, EndToEndTest, pids
from stage import open_stage as setUpModule  # noqa: F401

ERROR = "org.velmora.Automation1.Error"
OBJECT = "org.velmora.Automation1.Object"


class ExampleHost(EndToEndTest):
    def test_serves_a_lookup_and_leaves(self):
        example = self.start(["/usr/bin/python3", stage.SOURCES / "examples/host.py", "--once"], stdout=subprocess.PIPE, text=True)
        self.assertTrue(self.dialog("Example"))
        self.press(LOOKUP)
        printed = example.stdout.read().splitlines()
        self.assertEqual(example.wait(), 0)
        calls = [line.split("(")[0] for line in printed if "(" in line]
        members = [call for call in calls if call in ("Login", "SendRequest", "ShowResults", "ShowCode", "LogOut")]
        self.assertEqual(members, ["Login", "SendRequest", "ShowResults", "ShowCode", "LogOut"])
        self.wait_until_gone()


class Busctl(EndToEndTest):
    """Each call of busctl is a connection of its own, so another client keeps the object."""

    def setUp(self):
        super().setUp()
        self.bus = stage.connect()
        self.addCleanup(self.bus.close)
        self.owner, self.path = self.bus.get_object("Horalink10013.cOLELayer", "/Factory").CreateInstance(
            dbus_interface="org.velmora.Automation1.Factory")

    def busctl(self, *arguments):
        done = stage.run(["busctl", "--user", *arguments])
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout

    def test_both_interfaces_serve_the_class(self):
        typed = "Horalink10013._cOLELayer"
        registered = self.busctl("call", self.owner, self.path, typed, "RegisterPBX", "s(so)n", "North", "", "/", "1")
        self.assertEqual(registered.strip(), "b false")
        self.busctl("set-property", self.owner, self.path, typed, "Visible", "b", "true")
        self.assertTrue(self.dialog("North"))
        late = self.busctl("call", self.owner, self.path, OBJECT, "Invoke", "sqav", "Visible", "2", "0")
        self.assertEqual(late.strip(), "vav b true 0")

    def test_introspection_in_slot_order_with_the_guids(self):
        xml = self.busctl("call", self.owner, self.path, "org.freedesktop.DBus.Introspectable", "Introspect")
        places = [xml.find(f'name=\\"{name}\\"') for name in ("RegisterPBX", "Visible", "SetBackGround")]
        self.assertEqual(places, sorted(places))
        for guid in ("{21A5C7B5-2A66-41D0-8298-C64D75E00ED2}", "{99B2190B-7900-4057-8B17-977CCB7DA003}",
                     "{3213E8C5-0679-49E0-83FC-808506AA9FEB}", "Horalink10013"):
            self.assertIn(guid, xml)


class Nonsense(EndToEndTest):
    def test_is_answered_with_an_error_and_a_description_and_the_process_goes_on(self):
        bus = stage.connect()
        self.addCleanup(bus.close)
        owner, path = bus.get_object("Horalink10013.cOLELayer", "/Factory").CreateInstance(
            dbus_interface="org.velmora.Automation1.Factory")
        deep = dbus.Int32(1, variant_level=20)
        cases = [
            ("unknown member", path, "Invoke", "sqav", ("Nothing", 2, []), ERROR),
            ("index out of 16 bits", path, "Invoke", "sqav", ("SetBackGround", 1, [dbus.Int32(40000)]), ERROR),
            ("wrong count", path, "Invoke", "sqav", ("SetBackGround", 1, []), ERROR),
            ("wrong type", path, "Invoke", "sqav", ("SetBackGround", 1, [dbus.Array([1], signature="i")]), ERROR),
            ("deep nesting", path, "Invoke", "sqav", ("SetBackGround", 1, [deep]), ERROR),
            ("unknown kind", path, "Invoke", "sqav", ("Visible", 3, []), ERROR),
            ("wrong signature", path, "Invoke", "s", ("Visible",), "org.freedesktop.DBus.Error.InvalidArgs"),
            ("unknown method", path, "Remove", "", (), "org.freedesktop.DBus.Error.UnknownMethod"),
            ("unknown path", "/Object/4711", "Invoke", "sqav", ("Visible", 2, []), "org.freedesktop.DBus.Error.UnknownObject"),
            ("10 MB", path, "Invoke", "sqav", ("x" * 10_000_000, 2, []), ERROR),
        ]
        for name, target, method, signature, arguments, error in cases:
            with self.subTest(name):
                with self.assertRaises(dbus.DBusException) as raised:
                    bus.call_blocking(owner, target, OBJECT, method, signature, arguments)
                self.assertEqual(raised.exception.get_dbus_name(), error)
                self.assertTrue(raised.exception.get_dbus_message())
        self.assertEqual(len(pids(ADD_IN)), 1)


if __name__ == "__main__":
    unittest.main()

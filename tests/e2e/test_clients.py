"""Clients that share no code with the add-in: the example hosts and busctl."""
import json
import subprocess
import sys
import unittest
from xml.etree import ElementTree as xml

from end_to_end import BUILD
from end_to_end import open_stage as setUpModule  # noqa: F401
from end_to_end import run

import stage
from arrangement import SOURCES
from client import FACTORY, NAME, OBJECT, TYPED, Client
from stage import LOOKUP, EndToEndTest, dialog_title

NOTHING = ("", "/")  # for busctl
# What the example host prints of a lookup: the calls of the add-in, in order, with those that read the answer.
LOOKUP_LINES = [
    "oPBX()", 'Login("Example", <object>)', 'ShowMessage("PBX clock request: KEY")',
    "oPBX()", "SendRequest(<object>)", 'ShowMessage("PBX clock request: ACCEPTED")',
    "Count()", *(f"{member}({i})" for i in range(3) for member in ("CMD", "FirstData", "SecondData", "ExtraData")),
    "ErrCode()", "Tag()", "ErrCode()", "Message()", 'Message("OK")',
    'ShowResults("PBX Clock (Example)", <object>)', "Message()", 'ShowMessage("OK")', "ErrCode()", "ShowCode(0)",
    "LoginID()", "oPBX()", 'LogOut("Example", "KEY")',
]


class ExampleHost:
    """The examples behave alike, whatever they are written in."""

    def open_example(self, *options):
        self.output = stage.arrangement.folder / "example.txt"
        with open(self.output, "w", encoding="utf-8") as output:
            process = self.start([*self.command, *options], stdout=output, stderr=subprocess.STDOUT)
        self.dialog("Example")
        return process

    def lines(self):
        return self.output.read_text(encoding="utf-8").splitlines()

    def wait_for_end(self, process):
        self.wait_for(lambda: process.poll() is not None, "the example host to end")
        self.assertEqual(process.returncode, 0, self.lines())
        self.wait_until_gone()

    def test_lookup_and_the_end_of_the_window(self):
        process = self.open_example()
        self.assertRegex(self.look_up(), r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")
        stage.driver.raise_window(dialog_title("Example"))
        stage.driver.press("alt+F4")
        self.wait_for_end(process)
        lines = self.lines()
        self.assertEqual(lines[0], 'GetComData("Horalink", "MOVE", "")')
        self.assertEqual(lines[1:1 + len(LOOKUP_LINES)], LOOKUP_LINES)
        self.assertEqual(lines[1 + len(LOOKUP_LINES)], "UnloadChild(1)")

    def test_once(self):
        process = self.open_example("--once")
        self.press(LOOKUP)
        self.wait_for_end(process)
        self.assertEqual(self.lines()[1:1 + len(LOOKUP_LINES)], LOOKUP_LINES)
        self.assertRegex(self.lines()[-1], r'^REGComData\("Horalink", "MOVE", "-?[\d.]+,-?[\d.]+"\)$')

    def test_without_an_add_in_it_says_so_in_one_line(self):
        stage.arrangement.add_in.unlink()
        done = run(self.command)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertIn("429", done.stderr)


class PythonHost(ExampleHost, EndToEndTest):
    command = (sys.executable, SOURCES / "examples/host.py")


class CppHost(ExampleHost, EndToEndTest):
    command = (BUILD / "examples/example-host",)


class Busctl(EndToEndTest):
    def busctl(self, *arguments):
        done = run(["busctl", "--user", *arguments])
        self.assertEqual(done.returncode, 0, done.stderr)
        return done.stdout.strip()

    def invoke(self, member, kind, *arguments):
        return self.busctl("call", NAME, self.client.path, OBJECT, "Invoke", "sqav", member, kind, *arguments)

    def typed(self, command, member, *arguments):
        return self.busctl(command, NAME, self.client.path, TYPED, member, *arguments)

    def hold(self):
        """busctl leaves with each command, and the object would leave with it."""
        self.client = Client(self).created()

    def test_creation_and_the_end_with_the_client(self):
        created = self.busctl("call", NAME, "/Factory", FACTORY, "CreateInstance")
        self.assertRegex(created, r'^\(so\) ":1\.\d+" "/\S+"$')
        self.wait_until_gone()

    def test_late_bound_interface(self):
        self.hold()
        registered = self.invoke("RegisterPBX", "1", "3", "s", "Main Office", "(so)", *NOTHING, "n", "1")
        self.assertEqual(registered, 'vav b false 3 s "Main Office" (so) "" "/" n 1')
        self.assertEqual(self.invoke("visible", "2", "0"), "vav b false 0")
        self.invoke("Visible", "4", "1", "b", "true")
        self.dialog()
        self.assertEqual(self.invoke("Visible", "2", "0"), "vav b true 0")

    def test_typed_interface(self):
        self.hold()
        self.assertEqual(self.typed("call", "RegisterPBX", "s(so)n", "Warehouse", *NOTHING, "1"), "b false")
        self.typed("set-property", "Visible", "b", "true")
        self.dialog("Warehouse")
        self.assertEqual(self.typed("get-property", "Visible"), "b true")
        self.assertEqual(self.typed("call", "SetBackGround", "n", "1"), "")
        self.typed("set-property", "Visible", "b", "false")
        self.assertEqual(self.typed("get-property", "Visible"), "b false")

    def test_introspection_in_the_order_of_the_slots(self):
        self.hold()
        answer = self.busctl("--json=short", "call", NAME, self.client.path, "org.freedesktop.DBus.Introspectable",
                             "Introspect")
        interfaces = {node.get("name"): node for node in xml.fromstring(json.loads(answer)["data"][0]).iter("interface")}
        self.assertIn(OBJECT, interfaces)
        typed = interfaces[TYPED]
        members = [node.get("name") for node in typed if node.tag in ("method", "property")]
        self.assertEqual(members, ["RegisterPBX", "Visible", "SetBackGround"])
        arguments = [(node.get("name"), node.get("type"), node.get("direction"))
                     for node in typed.find("method[@name='RegisterPBX']").iter("arg")]
        self.assertEqual(arguments, [("PBX", "s", "in"), ("Parent", "(so)", "in"), ("ID", "n", "in"),
                                     ("Result", "b", "out")])
        self.assertEqual(typed.find("property[@name='Visible']").attrib,
                         {"name": "Visible", "type": "b", "access": "readwrite"})
        values = [node.get("value") for node in typed.findall("annotation")]
        for value in ("{21A5C7B5-2A66-41D0-8298-C64D75E00ED2}", "{99B2190B-7900-4057-8B17-977CCB7DA003}",
                      "{3213E8C5-0679-49E0-83FC-808506AA9FEB}", "Horalink10013", "1.0"):
            self.assertIn(value, values)


if __name__ == "__main__":
    unittest.main()

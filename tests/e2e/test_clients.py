"""The example hosts, which share no code with the add-in."""
import subprocess
import sys
import unittest

from end_to_end import BUILD
from end_to_end import open_stage as setUpModule  # noqa: F401
from end_to_end import run

import stage
from arrangement import SOURCES
from stage import UPDATE, EndToEndTest, dialog_title

# What the example host prints of a lookup: the calls of the add-in, in order, with those that read the answer.
LOOKUP_LINES = [
    "oPBX()", 'Login("Example", <object>)', 'ShowMessage("PBX clock request: KEY")',
    "oPBX()", "SendRequest(<object>)", 'ShowMessage("PBX clock request: ACCEPTED")',
    "Count()", *(f"{member}({i})" for i in range(3) for member in ("CMD", "FirstData", "SecondData", "ExtraData")),
    "ErrCode()", "Tag()", "ErrCode()", "Message()", 'Message("OK")',
    'ShowResults("PBX Clock (Example)", <object>)', "Message()", 'ShowMessage("OK")', "ErrCode()", "ShowCode(0)",
    "LoginID()", "oPBX()", 'LogOut("Example", "KEY")',
]


class Example:
    def open_example(self):
        self.output = stage.arrangement.folder / "example.txt"
        with open(self.output, "w", encoding="utf-8") as output:
            process = self.start(self.command, stdout=output, stderr=subprocess.STDOUT)
        self.dialog("Example")
        return process

    def lines(self):
        return self.output.read_text(encoding="utf-8").splitlines()

    def close_window(self, process):
        stage.driver.raise_window(dialog_title("Example"))
        stage.driver.press("alt+F4")
        self.wait_for(lambda: process.poll() is not None, "the example host to end")
        self.assertEqual(process.returncode, 0, self.lines())
        self.wait_until_gone()


class FullExample(Example):
    """These behave alike, whatever they are written in."""

    def test_lookup_and_the_end_of_the_window(self):
        process = self.open_example()
        self.assertRegex(self.look_up(), r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")
        self.close_window(process)
        expected = ['GetComData("Horalink", "MOVE", "")', *LOOKUP_LINES, "UnloadChild(1)"]
        self.assertEqual(self.lines()[:len(expected)], expected)

    def test_without_an_add_in_it_says_so_in_one_line(self):
        stage.arrangement.add_in.unlink()
        done = run(self.command)
        self.assertEqual(done.returncode, 1)
        self.assertEqual(len(done.stderr.splitlines()), 1, done.stderr)
        self.assertIn("429", done.stderr)


class PythonHost(FullExample, EndToEndTest):
    command = (sys.executable, SOURCES / "examples/host.py")


class CppHost(FullExample, EndToEndTest):
    command = (BUILD / "examples/example-host",)


class MinimalHost(Example, EndToEndTest):
    command = (sys.executable, SOURCES / "examples/minimal_host.py")

    def test_lookup_and_update(self):
        process = self.open_example()
        self.assertRegex(self.look_up(), r"\d{4}/\d\d/\d\d \(\w{3}\)\n\d\d:\d\d:\d\d")
        self.press(UPDATE)
        self.assertEqual(self.close_box("Update Failed").count("CODE NOT ALLOWED"), 3)
        self.close_window(process)
        told = ["PBX clock request: KEY", "PBX clock request: ACCEPTED", "OK"]
        self.assertEqual(self.lines(), 2 * told)


if __name__ == "__main__":
    unittest.main()

"""The version register under kill -9 ahead of each change of the disk, and under several writers at once.

What is left is whole, and the add-in that comes next finds its way with it.
"""
import contextlib
import shutil
import signal
import subprocess
import unittest
from pathlib import Path

import life  # noqa: F401
from end_to_end import BUILD, SHARE
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from host import BUS, LIMIT, Host, result
from register import NEW, Register
from stage import EndToEndTest

OTHER = "A000.mra"  # the row that another add-in writes
ROUNDS = 40 if SHARE else 4
# Leaves the register free for as long as it has held it: an add-in that finds it locked for two seconds tells its user.
WRITER = """import itertools, select, sqlite3, sys, time
for number in itertools.count(1):
    began = time.monotonic()
    with sqlite3.connect(sys.argv[1], timeout=30) as database:
        database.execute("UPDATE Registry SET Version = ? WHERE AppName = ?", [str(number), sys.argv[2]])
    database.close()
    if number == 1:
        print("begun", flush=True)
    if select.select([sys.stdin], [], [], time.monotonic() - began)[0]:
        sys.exit(print(number))
"""


@contextlib.contextmanager
def writer(test, register):
    """Another add-in that writes its row again and again; in the end the row has what it wrote last."""
    with subprocess.Popen(["/usr/bin/python3", "-c", WRITER, register.file, OTHER], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE, text=True) as process:
        process.stdout.readline()
        yield
        written = process.communicate(timeout=LIMIT)[0].strip()
    test.assertEqual(register.version(OTHER), written)


class AddIn:
    """A process of the add-in on a bus, and a client that creates objects of it."""

    def __init__(self, test, address, failing="none:0"):
        self.host = Host(address)
        test.clients.append(self.host)
        self.process = test.start([stage.arrangement.add_in, "-Embedding"], environment={
            **stage.arrangement.environment, "DBUS_SESSION_BUS_ADDRESS": address, "FAILING_CALLS": failing,
            "LD_PRELOAD": str(BUILD / "tests/long/failing-calls.so")})
        test.wait_for(self.is_served, "the add-in to serve")

    def is_served(self):
        return self.host.ask(BUS, "/", BUS, "NameHasOwner", stage.ADD_IN_CLASS)


class Registers(EndToEndTest):
    address = property(lambda self: stage.arrangement.environment["DBUS_SESSION_BUS_ADDRESS"])

    def write(self):
        """A start that nothing disturbs leaves the new version."""
        add_in = AddIn(self, self.address)
        result(add_in.host.send(result(add_in.host.create()), "Object", "Release"))
        self.assertEqual(add_in.process.wait(LIMIT), 0)

    def kill_ahead_of(self, number):
        """Gives the status of a process that is killed ahead of a change of the disk, 0 where there are not so many."""
        add_in = AddIn(self, self.address, f"kill:{number}")
        creation = add_in.host.create()
        self.wait_for(creation.done, "the end or an object")
        if add_in.process.poll() is None and not result(creation)[0].startswith("org."):
            add_in.host.send(result(creation), "Object", "Release")
        status = add_in.process.wait(LIMIT)
        self.wait_for(stage.is_deserted, "the bus to know it")
        return status

    def check_copy(self, register):
        """Of what was left: the next add-in has to find the journal."""
        folder = stage.arrangement.folder / "copy"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        for file in register.file.parent.glob("Register.mdb*"):
            shutil.copy(file, folder)
        register.check(self, folder / register.file.name)
        return Path(f"{register.file}-journal").exists()

    def test_kill(self):
        number, status, journals = 0, -signal.SIGKILL, 0
        while status:
            number += 1
            with self.case(f"kill:{number}"):
                register = Register()
                status = self.kill_ahead_of(number)
                journals += self.check_copy(register)
                self.write()
                register.check(self)
                self.assertEqual(register.version(), NEW)
        self.assertGreater(journals, 1, "kills in the middle of a write")

    def test_kill_beside_a_writer(self):
        for number in range(1, ROUNDS + 1):
            with self.case(f"round {number}"):
                register = Register(written=OTHER)
                with writer(self, register):
                    self.kill_ahead_of(1 + number % 10)
                    register.check(self)
                    self.write()
                register.check(self)
                self.assertEqual(register.version(), NEW)

    def test_two_add_ins_and_a_writer(self):
        register = Register(written=OTHER)
        other_bus = stage.arrangement.start_bus("other-bus", stage.arrangement.environment)
        add_ins = [AddIn(self, address) for address in (self.address, other_bus)]
        with writer(self, register):
            layers = [[result(creation) for creation in [add_in.host.create() for add_in in add_ins]]
                      for _ in range(5 * ROUNDS)]
            register.check(self)
        self.assertEqual(register.version(), NEW)
        for add_in, own in zip(add_ins, zip(*layers)):
            for layer in own:
                add_in.host.send(layer, "Object", "Release")
            self.assertEqual(add_in.process.wait(LIMIT), 0)


if __name__ == "__main__":
    unittest.main()

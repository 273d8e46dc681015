"""The version register under kill -9 ahead of each change of the disk, and under several writers at once.

What is left is whole, and the add-in that comes next finds its way with it.
"""
import contextlib
import itertools
import shutil
import subprocess
import unittest
from pathlib import Path

import life  # noqa: F401
from end_to_end import BUILD, SHARE, OwnHostTest
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from host import BUS, LIMIT, result
from register import NEW, Register

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
def writer(test_and_register):
    """Another add-in that writes its row again and again; in the end the row has what it wrote last."""
    test, register = test_and_register
    with subprocess.Popen(["/usr/bin/python3", "-c", WRITER, register.file, OTHER], stdin=subprocess.PIPE,
                          stdout=subprocess.PIPE, text=True) as process:
        process.stdout.readline()
        yield
        written = process.communicate(timeout=LIMIT)[0].strip()
    test.assertEqual(register.version(OTHER), written)


class Registers(OwnHostTest):
    def start_on(self, address, failing="none:0"):
        """A process of the add-in on a bus, and a client there."""
        client = self.join(address)
        add_in = self.start([stage.arrangement.add_in, "-Embedding"], environment={
            **stage.arrangement.environment, "DBUS_SESSION_BUS_ADDRESS": address, "FAILING_CALLS": failing,
            "LD_PRELOAD": str(BUILD / "tests/long/failing-calls.so")})
        self.wait_for(lambda: client.ask(BUS, "/", BUS, "NameHasOwner", stage.ADD_IN_CLASS), "the add-in to serve")
        return add_in, client

    def write(self, failing="none:0"):
        """Gives the status of the add-in that writes its version when an object is created, and ends after that."""
        add_in, client = self.start_on(self.address, failing)
        layer = result(client.create())
        if layer[0].startswith(":"):
            client.send(layer, "Object", "Release")
        status = add_in.wait(LIMIT)
        self.wait_for(stage.is_deserted, "the bus to know it")
        return status

    def check_what_is_left(self, register, is_alone):
        """Gives whether a journal was left, which the next add-in has to find: a copy is looked at."""
        folder = stage.arrangement.folder / "copy"
        shutil.rmtree(folder, ignore_errors=True)
        if is_alone:
            shutil.copytree(register.file.parent, folder)
        register.check(self, folder / register.file.name if is_alone else register.file)
        return is_alone and Path(f"{register.file}-journal").exists()

    def test_kill(self):
        """Alone, and beside a writer; up to one ahead of more changes of the disk than there are."""
        journals = 0
        for beside in (contextlib.nullcontext, *[writer] * (ROUNDS // 4)):
            for number in itertools.count(1):
                with self.case(f"{beside.__name__}, kill:{number}"):
                    register = Register(written=OTHER)
                    with beside((self, register)):
                        status = self.write(f"kill:{number}")
                        journals += self.check_what_is_left(register, beside is contextlib.nullcontext)
                        self.assertEqual(self.write(), 0)
                    register.check(self)
                    self.assertEqual(register.version(), NEW)
                if not status:
                    break
        self.assertGreater(journals, 1, "kills in the middle of a write")

    def test_two_add_ins_and_a_writer(self):
        register = Register(written=OTHER)
        other_bus = stage.arrangement.start_bus("other-bus", stage.arrangement.environment)
        add_ins = [self.start_on(address) for address in (self.address, other_bus)]
        with writer((self, register)):
            layers = [[result(creation) for creation in [client.create() for _, client in add_ins]]
                      for _ in range(5 * ROUNDS)]
            register.check(self)
        self.assertEqual(register.version(), NEW)
        for (add_in, client), own in zip(add_ins, zip(*layers)):
            for layer in own:
                client.send(layer, "Object", "Release")
            self.assertEqual(add_in.wait(LIMIT), 0)


if __name__ == "__main__":
    unittest.main()

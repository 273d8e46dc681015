"""The version register under kill -9 ahead of each change of the disk, and under several writers at once.

What is left is whole, and the add-in that comes next finds its way with it.
"""
import itertools
import shutil
import signal
import subprocess
import sys
from pathlib import Path

from end_to_end import SHARE, OwnHostTest
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from host import LIMIT, result
from life import failing
from register import NEW, Register

OTHER = "A000.mra"  # the row that another add-in writes
CREATIONS = 200 if SHARE else 20
# Leaves the register free for as long as it has held it: an add-in that finds it locked for two seconds shows a notice.
WRITER = """import itertools, select, sqlite3, sys, time
database = sqlite3.connect(sys.argv[1], timeout=30, isolation_level=None)
for number in itertools.count(1):
    began = time.monotonic()
    database.execute("UPDATE Registry SET Version = ? WHERE AppName = ?", [str(number), sys.argv[2]])
    if number == 1:
        print("begun", flush=True)
    if select.select([sys.stdin], [], [], time.monotonic() - began)[0]:
        sys.exit(print(number))
"""


class Registers(OwnHostTest):
    def write(self, plan="none:0"):
        """Gives the status of the add-in that writes its version when an object is created, and ends after that."""
        add_in, client = self.start_add_in(**failing(plan))
        layer = result(client.create())
        if layer[0].startswith(":"):
            client.send(layer, "Object", "Release")
        status = add_in.wait(LIMIT)
        self.wait_for(stage.is_deserted, "the bus to know it")
        return status

    def test_kill(self):
        """Up to one ahead of more changes of the disk than there are."""
        journals, status = 0, -signal.SIGKILL
        for number in itertools.takewhile(lambda _: status, range(1, 100)):
            with self.case(f"kill:{number}"):
                register = Register()
                status = self.write(f"kill:{number}")
                # The next add-in has to find the journal, if there is one: a copy is looked at.
                copy = shutil.copytree(register.file.parent, stage.arrangement.folder / f"copy-{number}")
                journals += Path(f"{register.file}-journal").exists()
                register.check(self, copy / register.file.name)
                self.assertEqual(self.write(), 0)
                register.check(self)
                self.assertEqual(register.version(), NEW)
        self.assertGreater(journals, 1, "kills in the middle of a write")

    def test_two_add_ins_and_a_writer(self):
        """Another add-in writes its row again and again; in the end the row has what it wrote last."""
        register = Register(written=OTHER)
        buses = [None, stage.arrangement.start_bus("other-bus", stage.arrangement.environment)]
        add_ins = [self.start_add_in(address) for address in buses]
        writer = self.start([sys.executable, "-c", WRITER, register.file, OTHER], stdin=subprocess.PIPE,
                            stdout=subprocess.PIPE, text=True)
        writer.stdout.readline()
        layers = [[result(creation) for creation in [client.create() for _, client in add_ins]] for _ in range(CREATIONS)]
        register.check(self)
        written = writer.communicate(timeout=LIMIT)[0].strip()
        self.assertEqual((register.version(OTHER), register.version()), (written, NEW))
        for (add_in, client), own in zip(add_ins, zip(*layers)):
            self.assert_good_end(add_in, client, *own)

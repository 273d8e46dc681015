"""Whole runs of the add-in: with damaged files and failing system calls, with thousands of exchanges in one process,
which must not grow, and two at once that write one register."""
import contextlib
import os
import re
import signal
import sqlite3
import subprocess
import sys
from pathlib import Path
from statistics import median

import testbed
from driver import Atspi, Role
from gi.repository import GLib
from host import BUS, CALL, EMPTY, LIMIT, WRITE, result
from testbed import ADD_IN, NOTICE, SHARE, OwnHostTest, chosen, database_file
from testbed import set_up as setUpModule  # noqa: F401

OLD, NEW = "0.0.0", "13.0.1"  # versions in the register
PAGE = 4096


def check_register(test, *versions):
    with contextlib.closing(sqlite3.connect(database_file("Register.mdb"))) as database:
        test.assertEqual(database.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
        rows = database.execute("SELECT Version FROM Registry ORDER BY AppName").fetchall()
        test.assertEqual(rows, [(version,) for version in versions])


def invert(file, page):
    content = bytearray(file.read_bytes())
    for place in range(page * PAGE, (page + 1) * PAGE):
        content[place] ^= 0xFF
    file.write_bytes(content)


# A database of texts, how it is damaged, and what the notice says.
DAMAGES = [
    ("Common.LNG", lambda file: os.truncate(file, PAGE), "Common.LNG is not a database, or it is damaged"),
    ("Horalink.lng", lambda file: invert(file, 4), "Horalink.lng is not a database, or it is damaged"),
    ("Horalink.lng", lambda file: file.unlink() or os.mkfifo(file), "Horalink.lng' was not found"),
]
# Lets all but the last write to the register succeed.
CONFINED = "env", "--ignore-signal=XFSZ", "prlimit", f"--fsize={2 * PAGE}"


class Files(OwnHostTest):
    def test_a_damaged_one_is_a_notice_and_the_end(self):
        for name, damage, words in DAMAGES:
            with self.case(words):
                damage(database_file(name))
                add_in = self.start([testbed.sandbox.add_in, testbed.EXCHANGE])
                self.assertIn(words, self.close_box(NOTICE))
                self.assertEqual(add_in.wait(LIMIT), 1)

    def test_a_full_disk_is_a_notice_and_leaves_the_register_as_it_was(self):
        check_register(self, OLD)
        add_in = self.start([*CONFINED, testbed.sandbox.add_in, "-Embedding"])
        self.wait_for(lambda: testbed.bus.name_has_owner(testbed.ADD_IN_CLASS), "the add-in to serve")
        creation = self.join().create()
        self.assertIn("Register.mdb can't be read or written", self.close_box(NOTICE))
        self.assertIn(".Error.", result(creation)[0])
        self.assertEqual(add_in.wait(LIMIT), 0)
        check_register(self, OLD)


# Which system calls fail and how: the numbers of those in the sample of ./check, and in the long form, which goes past
# the last call. The loader makes the first reads.
FAILURES = {
    "pread64:error=EIO": ([20, 28], range(5, 40)),
    "pwrite64:error=EIO": ([3], range(1, 12)),
    "fdatasync:error=EIO": ([1], range(1, 5)),
    "sendmsg:error=ECONNRESET": ([3, 9, 17], range(1, 55)),
    "pwrite64:signal=KILL": ([3, 8], range(1, 12)),
    "fdatasync:signal=KILL": ([1], range(1, 5)),
    "unlink:signal=KILL": ([1], range(1, 4)),
}


class Calls(OwnHostTest):
    """Whatever fails, the add-in neither hangs nor crashes, and the next one finds a register that it can use."""

    def test_what_comes_of_it(self):
        sample = [(failure, str(number)) for failure, (numbers, _) in FAILURES.items() for number in numbers]
        every = [(failure, str(number)) for failure, (_, numbers) in FAILURES.items() for number in numbers]
        trace = testbed.sandbox.folder / "trace"
        for failure, number in chosen(sample, every):
            with self.case(f"{failure}/{number}"):
                call, dies = failure.partition(":")[0], "KILL" in failure
                self.live("strace", "-qq", "-o", trace, "-e", f"trace={call}", "-e", f"inject={failure}:when={number}")
                self.assertIn(self.add_in.wait(LIMIT), (0, 1, -signal.SIGKILL if dies else 0))
                self.assertTrue(SHARE or ("killed by" if dies else "INJECTED") in trace.read_text(), "nothing failed")
                add_in, host = self.start_add_in()
                layer = host.open()
                self.look_up()
                self.assert_good_end(add_in, host, layer, host.client())
                check_register(self, NEW)

    def live(self, *prefix):
        """Goes as far as the add-in lets it, and closes every box."""
        self.add_in, self.closed, host = self.start([*prefix, testbed.sandbox.add_in, "-Embedding"]), 0, self.join()
        self.until(lambda: testbed.bus.name_has_owner(testbed.ADD_IN_CLASS), "the add-in to serve")
        # A host may try again: a creation that failed leaves nothing.
        layer = self.ask(host.create) or self.ask(host.create)
        steps = ("RegisterPBX", CALL, testbed.EXCHANGE, host.at("/Host"), 7), ("Visible", WRITE, True)
        if layer and all(self.ask(lambda step=step: host.invoke(layer, *step)) is not None for step in steps):
            self.until(lambda: testbed.driver.has_window(ADD_IN, testbed.dialog_title()), "the dialog")
            before = self.closed
            with contextlib.suppress(TimeoutError):  # it has ended meanwhile
                self.press(testbed.LOOKUP)
            self.until(lambda: self.closed > before, "what comes of a lookup")
        host.leave()
        self.until(lambda: False, "the end")

    def ask(self, send):
        future = send()
        self.until(future.done, "a reply")
        reply = result(future) if future.done() else None
        return None if "Error" in str(reply) else reply

    def until(self, condition, what):
        """Closes every box until the condition holds or the add-in has ended. The last button of a box gives up, if it
        can."""
        def look():
            with contextlib.suppress(GLib.Error, IndexError):
                for box in testbed.driver.windows(ADD_IN):
                    if not box.get_name().startswith("PBX Clock ("):
                        self.closed += 1
                        Atspi.Action.do_action(testbed.driver.buttons(box)[-1], 0)
                        self.wait_for(lambda box=box: not testbed.driver.is_showing(box) or self.has_ended(), "its end")
            return condition() or self.has_ended()
        self.wait_for(look, what)

    def has_ended(self):
        return self.add_in.poll() is not None


ROUNDS, GROWTH = (100, 512) if SHARE else (8, 2048)  # KiB over the second half; the allocator takes some to settle
PART = ROUNDS // 4  # that a figure is the median of
CLICKS, ANSWERS, OBJECTS, BACKGROUNDS = 4, 96, 10, 4  # the last is the number of sets
NO_BOX = 99  # code of an answer after which the message stays where it is
# Leaves the register free for as long as it has held it: an add-in that finds it locked for two seconds shows a notice.
WRITER = """import itertools, select, sqlite3, sys, time
database = sqlite3.connect(sys.argv[1], timeout=30, isolation_level=None)
database.execute("INSERT INTO Registry VALUES ('Other.mra', 'Other', '', 'Other.cOLELayer', -1)")
for number in itertools.count(1):
    began = time.monotonic()
    database.execute("UPDATE Registry SET Version = ? WHERE AppName = 'Other.mra'", [str(number)])
    if number == 1:
        print("begun", flush=True)
    if select.select([sys.stdin], [], [], time.monotonic() - began)[0]:
        sys.exit(print(number))
"""


class Long(OwnHostTest):
    """Thousands of exchanges, objects and backgrounds in one process, which stays as it was; and many creations while
    others write the register. A round is a hundred exchanges, four of them by clicks and the others answers that nobody
    asked for, of which the calls are the same but for those up to SendRequest."""

    def round(self, number):
        self.look_up_by_clicks()
        for _ in range(ANSWERS):
            self.assertEqual(result(self.host.call_back()), EMPTY)
        self.assertIsNone(result(self.host.send(self.host.client(), "Object", "Release")))
        for _ in range(OBJECTS):
            result(self.host.send(result(self.host.create()), "Object", "Release"))
        result(self.host.invoke(self.layer, "SetBackGround", CALL, number % BACKGROUNDS))
        # Nobody holds the dialog or a record any more.
        self.wait_for(lambda: self.host.objects(self.layer) == {self.layer[1]}, "all but the first object to go")

    def look_up_by_clicks(self):
        testbed.driver.aim(testbed.driver.find(ADD_IN, testbed.LOOKUP, Role.PUSH_BUTTON))
        for click in range(CLICKS):
            self.host.code = 0 if click == CLICKS - 1 else NO_BOX
            before = len(self.host.calls)
            testbed.driver.click_here()
            self.wait_for(lambda: any(call.startswith("LogOut") for _, call in self.host.calls[before:]), "the log-out")
            if click < CLICKS - 1:
                self.assertIsNone(result(self.host.send(self.host.client(), "Object", "Release")))
        self.close_box(testbed.CLOCK_READ)
        self.host.code = NO_BOX

    def measure(self):
        rollup = Path(f"/proc/{self.process.pid}/smaps_rollup").read_text(encoding="utf-8")
        about = self.host.ask(BUS, "/org/freedesktop/DBus", f"{BUS}.Debug.Stats", "GetConnectionStats", self.layer[0])
        return (sum(map(int, re.findall(r"^(?:Private_Dirty|Swap): +(\d+) kB", rollup, re.M))),
                len(os.listdir(f"/proc/{self.process.pid}/fd")), about["MatchRules"])

    def test_long_life(self):
        self.process, self.host = self.start_add_in()
        self.layer = self.host.open()
        samples = []
        for number in range(ROUNDS):
            self.round(number)
            samples.append(self.measure())
        self.wait_for(lambda: +self.host.kept == {"/Host": 1}, f"the host's objects to be given back: {self.host.kept}")
        middle, end = ([*map(median, zip(*samples[at:at + PART]))] for at in (ROUNDS // 2, ROUNDS - PART))
        self.assertLessEqual(end[0], middle[0] + GROWTH)
        self.assertEqual(end[1:], middle[1:])
        self.assert_good_end(self.process, self.host, self.layer)

    def test_two_add_ins_and_a_writer_of_one_register(self):
        """Another add-in writes its row again and again; in the end the row has what it wrote last."""
        buses = [None, testbed.sandbox.start_bus("other-bus", testbed.sandbox.environment)]
        add_ins = [self.start_add_in(address) for address in buses]
        writer = self.start([sys.executable, "-c", WRITER, database_file("Register.mdb")], text=True,
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        writer.stdout.readline()
        layers = [[result(creation) for creation in [client.create() for _, client in add_ins]]
                  for _ in range(200 if SHARE else 20)]
        written = writer.communicate(timeout=LIMIT)[0].strip()
        check_register(self, NEW, written)
        for (add_in, client), own in zip(add_ins, zip(*layers)):
            self.assert_good_end(add_in, client, *own)

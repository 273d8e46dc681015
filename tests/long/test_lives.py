"""Whole lives of the add-in in which something goes wrong outside of it, compared with a good one: the n-th call of
SQLite, sd-bus or the disk fails, the process is killed, databases are damaged, swapped while they are open, or out of
reach. And good ones: a long one, and one under valgrind.

Each ends as if nothing had been, or in a notice, an error for the host, a line on standard error; after a failure on
the bus the next lookup succeeds, or the process has ended by itself. There is no crash, hang or damaged register.
"""
import contextlib
import os
import random
import re
import shutil
import signal
import sqlite3
import subprocess
import sys
import time
from pathlib import Path
from statistics import median

import testbed
from driver import Atspi, GLib, Role
from host import BUS, BUSY, CALL, LIMIT, WRITE, Host, result
from sandbox import wait_for
from testbed import ADD_IN, BUILD, NOTICE, SHARE, OwnHostTest, changed, chosen, database_file, hasty
from testbed import set_up as setUpModule  # noqa: F401

UPDATE, LOOKUP = 1, 2  # places of the buttons in the dialog
IDLE_LIMIT = 100  # seconds; a process that nobody has used ends after a minute
# What the bus says for a process that has left it.
GONE = [f"org.freedesktop.DBus.Error.{name}" for name in ("NoReply", "ServiceUnknown", "NameHasNoOwner")]
QUIET, WAIT_LIMIT = 4, 20  # seconds without a call after which no box comes: where nothing waits; where something does
HARMLESS = ("setNetWmStateOnUnmappedWindow", "Qt AtSpiAdaptor: Accessible invalid")  # what the toolkit says of itself
OLD, NEW = "0.0.0", "13.0.1"  # versions in the register
HASTE = 3  # for lives in which waits come to their limits


class Ended(Exception):
    """The add-in has ended while something was wanted of it."""


class Life:
    """`before` is called ahead of each step with its name; `prefix` starts the add-in, in a changed environment;
    `presses` are places of buttons, which are found by role and place, since texts may be damaged here."""

    def __init__(self, prefix=(), before=lambda step: None, presses=(LOOKUP,), patience=1, **environment):
        self.before, self.presses, self.patience = before, presses, patience
        self.steps, self.boxes, self.names, self.ill, self.ended_early = [], [], [], "", True
        self.wait_limit = WAIT_LIMIT / int(environment.get("HASTE", 1))
        self.before("start")
        self.host = Host(testbed.sandbox.environment["DBUS_SESSION_BUS_ADDRESS"])
        with open(testbed.sandbox.folder / "errors", "w+", encoding="utf-8", errors="replace") as errors:
            self.process = testbed.sandbox.start([*prefix, testbed.sandbox.add_in, "-Embedding"],
                                                 changed(**environment), stderr=errors)
            try:
                self.live()
            except Ended:
                pass
            except TimeoutError as error:
                self.ill = f"hangs: {error}"
            finally:
                self.process.kill()
                self.status = self.process.wait()
                testbed.sandbox.processes.remove(self.process)
                self.host.leave()
            errors.seek(0)
            self.has_notice = any(title == NOTICE for title, _ in self.boxes)
            self.errors = "".join(line for line in errors if not any(each in line for each in HARMLESS))
        if self.status not in (0, 1) and not self.ill:
            self.ill = f"ended with {self.status}"

    def differs_from(self, other):
        return next((f"{name}: {now}, not {good}" for name in ("steps", "boxes", "names", "status", "errors")
                     if (now := getattr(self, name)) != (good := getattr(other, name))), "")

    def live(self):
        self.wait(lambda: testbed.bus.name_has_owner(testbed.ADD_IN_CLASS), "the add-in to serve", IDLE_LIMIT)
        # A host may try again: a creation that failed leaves nothing.
        layer = self.ask("create", self.host.create) or self.ask("create again", self.host.create)
        if not layer:
            raise TimeoutError("no creation succeeds")
        if self.invoke("register", layer, "RegisterPBX", CALL, testbed.EXCHANGE, self.host.at("/Host"), 7) is False \
                and self.invoke("show", layer, "Visible", WRITE, True) is not None:
            self.invoke("background", layer, "SetBackGround", CALL, 1)
            for number, place in enumerate(self.presses):
                self.press(f"press {number}", place)
            self.names = [node.get_name() for node in self.nodes(Role.PUSH_BUTTON, Role.CHECK_BOX, Role.TEXT)]
        self.before("release")
        for kept in (*self.host.clients.values(), layer):
            self.host.send(kept, "Object", "Release")
        self.ended_early = False
        self.wait(lambda: False, "the end")

    def invoke(self, step, *call):
        return self.ask(step, lambda: self.host.invoke(*call))

    def ask(self, step, send):
        """Sends a call, again where it is refused as busy; gives what came, or None for an error."""
        self.before(step)
        answer = (BUSY,)
        while isinstance(answer, tuple) and answer[0] == BUSY:
            future = send()
            self.wait(future.done, f"the answer to '{step}'")
            answer = result(future)
        failed = isinstance(answer, tuple) and str(answer[0]).startswith("org.")
        if failed and answer[0] in GONE:
            self.wait(lambda: False, "the end of a process that has left the bus", IDLE_LIMIT)
        self.steps.append(f"{step}: {answer if failed or isinstance(answer, bool) else 'done'}")
        return None if failed else answer

    def press(self, step, place):
        """Up to the box of the request, or to where none comes any more. A disabled dialog looks like any other."""
        self.before(step)
        def enabled():
            return next(filter(testbed.driver.is_enabled, self.nodes(Role.PUSH_BUTTON)[place:place + 1]), None)
        button = self.wait(enabled, "the button to be enabled")
        boxes, calls, began = len(self.boxes), len(self.host.calls), time.monotonic()
        Atspi.Action.do_action(button, 0)

        def is_over():
            called = [call.split()[0] for _, call in self.host.calls]
            is_logged_out = called.count("Login") == called.count("LogOut")
            limit = (QUIET if is_logged_out else self.wait_limit + QUIET) * self.patience
            is_quiet = time.monotonic() - max(began, self.host.last_call) > limit
            return len(self.boxes) > boxes and is_logged_out or is_quiet
        self.wait(is_over, f"the end of '{step}'")
        self.steps.append(f"{step}: {' '.join(call.split()[0] for _, call in self.host.calls[calls:])}")

    def wait(self, condition, what, seconds=LIMIT):
        """Closes boxes until the condition holds."""
        def look():
            if value := condition():
                return value
            if self.process.poll() is not None:
                raise Ended(what)
            with contextlib.suppress(GLib.Error):  # it went while it was looked at
                for box, *_ in self.windows(are_dialogs=False):
                    self.close(box)
            return None
        return wait_for(look, seconds * self.patience, f"{what}, after {self.steps}")

    @staticmethod
    def windows(are_dialogs):
        """Each as its widgets, the window the first. The dialog has the arrows, the boxes have none."""
        windows = [list(testbed.driver.nodes(window)) for window in testbed.driver.windows(ADD_IN)]
        return [nodes for nodes in windows if are_dialogs == any(node.get_role() == Role.SPIN_BUTTON for node in nodes)]

    def nodes(self, *roles):
        with contextlib.suppress(GLib.Error):
            return [node for nodes in self.windows(are_dialogs=True) for node in nodes if node.get_role() in roles]
        return []

    def close(self, box):
        """By its last button, which gives up where that is offered."""
        buttons = testbed.driver.buttons(box)
        if buttons:
            self.boxes.append((box.get_name(), " ".join(testbed.driver.texts(box))))
            Atspi.Action.do_action(buttons[-1], 0)
            wait_for(lambda: box.clear_cache() or not testbed.driver.is_showing(box) or self.process.poll() is not None,
                     LIMIT, f"the box '{box.get_name()}' to close")


def check_register(test, versions=(OLD, NEW), file=None):
    place = f"file:{file or database_file('Register.mdb')}?mode=rw"
    with contextlib.closing(sqlite3.connect(place, uri=True, timeout=10)) as database:
        test.assertEqual(database.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
        rows = database.execute("SELECT AppName, Version FROM Registry").fetchall()
        test.assertIn(rows, [[("Horalink.mra", version)] for version in versions])


class FailingLife(Life):
    """`marks` has the number of calls before each step, `failed` the call that failed with its code."""

    def __init__(self, family, number):
        testbed.sandbox.install()
        self.family, self.number, self.marks = family, number, {}
        self.trace = testbed.sandbox.folder / "trace"
        self.trace.write_text("")
        environment = hasty(HASTE)
        environment["LD_PRELOAD"] += f" {BUILD / 'tests/long/libfailing_calls.so'}"
        environment.update(FAILING_CALLS=f"{family}:{number}", FAILING_CALLS_TRACE=str(self.trace))
        super().__init__(before=self.mark, presses=(LOOKUP, LOOKUP), **environment)
        self.calls = self.trace.read_text().splitlines()
        self.failed = next((call for call in self.calls if " " in call), "")

    def mark(self, step):
        self.marks.setdefault(step, self.trace.read_bytes().count(b"\n"))


class Calls(testbed.EndToEndTest):
    SAMPLE = {"file": 2, "full": 1, "kill": 2, "sqlite": 5, "bus": 7}

    def test_what_comes_of_it(self):
        good, sample, every = {}, [], []
        for family, count in self.SAMPLE.items():
            if family not in ("full", "kill"):  # have the calls of the family before
                life = FailingLife(family, 0)
                self.assertEqual((life.ill, life.status, life.errors, life.failed), ("", 0, "", ""))
                self.assertEqual([title for title, _ in life.boxes], [testbed.CLOCK_READ] * 2)
            good[family] = life
            # The second lookup repeats the first: no call of it fails. What is one after the last call fails nothing.
            numbers = [*range(1, life.marks["press 1"] + 1), *range(life.marks["release"] + 1, len(life.calls) + 2)]
            every += [(family, number) for number in numbers]
            sample += random.Random(1).sample(every[-len(numbers):], count)
        for case in chosen(sample, every):
            life = FailingLife(*case)
            with self.subTest("/".join(map(str, case)), failed=life.failed):
                (self.judge_kill if life.family == "kill" and life.failed else self.judge)(life, good[case[0]])

    def judge(self, life, good):
        self.assertEqual(life.ill, "")
        is_written = any(step.startswith("show") for step in life.steps) and not life.has_notice
        check_register(self, (NEW,) if is_written else (OLD, NEW))
        difference = life.differs_from(good)
        if difference and life.family == "bus":
            self.judge_bus(life, good, difference)
        elif difference and not life.has_notice:
            # Without the names of a set, the pictures are those of the first set, without a message.
            self.assertIn(life.number, range(good.marks["background"] + 1, good.marks["press 0"] + 1), difference)

    def judge_bus(self, life, good, difference):
        self.assertTrue(life.failed, difference)
        self.assertRegex(life.errors, r"^(\S*horalink: [^\n]+\n)?$")
        if life.ended_early:
            # Without the bus nobody is left to hear of it.
            self.assertTrue(life.errors or life.number > good.marks["create"] or "sd_bus_process" in life.failed)
        elif any(step.startswith("press") for step in life.steps):
            is_last = life.number > life.marks.get("press 1", life.number)
            self.assertTrue(good.steps[-1] in life.steps or is_last, difference)
        else:
            self.assertTrue(any("org." in step or step == "register: True" for step in life.steps), difference)

    def judge_kill(self, life, _good):
        """The next add-in has to find the journal, if there is one: a copy is looked at."""
        self.assertEqual(life.status, -signal.SIGKILL)
        register = database_file("Register.mdb")
        copy = shutil.copytree(register.parent, testbed.sandbox.folder / f"copy-{life.number}")
        check_register(self, file=copy / register.name)
        self.assertEqual(Life().ill, "")
        check_register(self, (NEW,))


def change(file, places, mask):
    content = bytearray(file.read_bytes())
    for place in places:
        content[place] ^= mask
    file.write_bytes(content)


def replace(file):
    file.with_name("other").write_bytes(b"This is no database. " * 1000)
    file.with_name("other").rename(file)


def lock(file):
    """For ever, by another process: the locks of one don't count in it."""
    testbed.sandbox.start([sys.executable, "-c", LOCKER, file], stdout=subprocess.PIPE).stdout.readline()


LOCKER = ("import signal, sqlite3, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
          "d.execute('BEGIN EXCLUSIVE'); print(flush=True); signal.pause()")
PAGE, BITS = 4096, 12
DAMAGES = {"inverted": lambda file, page: change(file, range(page * PAGE, (page + 1) * PAGE), 0xFF),
           "bit": lambda file, bit: change(file, [bit // 8], 1 << bit % 8), "cut": os.truncate}
SWAPS = {"replaced": replace, "removed": os.unlink, "emptied": lambda file: os.truncate(file, 0), "locked": lock,
         "overwritten": lambda file: change(file, range(file.stat().st_size), 0xA5)}
DENIALS = {"unreadable": lambda file: file.chmod(0), "read-only": lambda file: file.chmod(0o400),
           "directory read-only": lambda file: file.parent.chmod(0o500),
           "directory": lambda file: file.unlink() or file.mkdir(),
           "pipe": lambda file: file.unlink() or os.mkfifo(file)}
# Root is above all modes, unless it gives that up.
AS_ANYBODY = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.getuid() == 0 else ()


class Files(testbed.EndToEndTest):
    SAMPLE = 22

    @staticmethod
    def all_cases():
        chance = random.Random(1)
        for built in ("en/Common.LNG", "en/Horalink.lng", "Register.mdb"):
            name = Path(built).name
            for first in range(0, (BUILD / "data" / built).stat().st_size, PAGE):
                yield name, "inverted", first // PAGE
                yield from ((name, "cut", first + part) for part in (0, PAGE // 2))
                yield from ((name, "bit", first * 8 + chance.randrange(PAGE * 8)) for _ in range(BITS))
            yield from ((name, how, step) for how in SWAPS for step in ("create", "register", "background", "press 0"))
            yield from ((name, how, "start") for how in DENIALS)

    def test_what_comes_of_it(self):
        """What a single bit makes of a text is the text from then on."""
        good, every = Life(), list(self.all_cases())
        self.assertEqual((good.ill, [title for title, _ in good.boxes]), ("", [testbed.CLOCK_READ]))
        for name, how, detail in chosen(random.Random(1).sample(every, self.SAMPLE), every):
            with self.case(f"{name}/{how}/{detail}"):
                file = database_file(name)
                if how in DAMAGES:
                    DAMAGES[how](file, detail)
                life = Life(prefix=AS_ANYBODY if how in DENIALS else (),
                            before=lambda step: step == detail and (SWAPS | DENIALS)[how](file))
                file.parent.chmod(0o700)
                if name != "Register.mdb":
                    check_register(self)
                is_another_text = how == "bit" and life.steps == good.steps
                difference = life.differs_from(good)
                self.assertEqual(life.ill, "")
                self.assertTrue(life.has_notice or is_another_text or not difference, difference)


class Memory(testbed.EndToEndTest):
    def test_valgrind_finds_nothing(self):
        report = testbed.sandbox.folder / "valgrind.txt"
        life = Life(presses=(LOOKUP, UPDATE), patience=10, prefix=[
            "valgrind", "--leak-check=full", "--errors-for-leak-kinds=definite", "--num-callers=30",
            f"--log-file={report}", f"--suppressions={Path(__file__).with_name('memcheck.supp')}"])
        self.assertEqual((life.ill, life.status, len(life.boxes)), ("", 0, 2))
        self.assertIn("ERROR SUMMARY: 0 errors", report.read_text())


ROUNDS, GROWTH = (100, 512) if SHARE else (8, 2048)  # KiB over the second half; the allocator takes some to settle
PART = 3 + ROUNDS // 20  # that a figure is the median of
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
            result(self.host.call_back())
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
        register = database_file("Register.mdb")
        buses = [None, testbed.sandbox.start_bus("other-bus", testbed.sandbox.environment)]
        add_ins = [self.start_add_in(address) for address in buses]
        writer = self.start([sys.executable, "-c", WRITER, register], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                            text=True)
        writer.stdout.readline()
        layers = [[result(creation) for creation in [client.create() for _, client in add_ins]]
                  for _ in range(200 if SHARE else 20)]
        written = writer.communicate(timeout=LIMIT)[0].strip()
        with contextlib.closing(sqlite3.connect(register)) as database:
            self.assertEqual(database.execute("SELECT Version FROM Registry ORDER BY AppName").fetchall(),
                             [(NEW,), (written,)])
            self.assertEqual(database.execute("PRAGMA integrity_check").fetchall(), [("ok",)])
        for (add_in, client), own in zip(add_ins, zip(*layers)):
            self.assert_good_end(add_in, client, *own)

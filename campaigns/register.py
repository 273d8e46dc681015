"""The version register under kill -9 in the middle of the write, and under several writers at once.

A killed add-in, at whatever moment, leaves a register that is whole: no damaged page, no row of another add-in lost
or changed, its own row either old or new; and the add-in that comes next finds its way with what is left there.
Half of the kills come at a random moment from the opening of the register on, half ahead of one of the calls by
which the disk is changed, each in its turn; of both kinds some come while another add-in writes its row again and
again. And two add-ins write at once, beside that writer, without a kill.
"""
import os
import random
import select
import shutil
import subprocess
import sys
import time
from collections import Counter, defaultdict
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
import dbus.bus  # noqa: E402
from arrangement import wait_for  # noqa: E402
from dbus.mainloop.glib import DBusGMainLoop  # noqa: E402
from gi.repository import GLib  # noqa: E402
from scripted_host import ADD_IN, OBJECT, Host  # noqa: E402
from side_by_side import work_off  # noqa: E402
from version_register import Register, add_others, database_file  # noqa: E402

LIBRARY = campaign.BUILD / "campaigns/failing-calls.so"
WRITER = Path(__file__).parent / "support/other_writer.py"
OLD, NEW = "0.0.0", "13.0.1"
OTHER = "A000.mra"  # the row that another add-in writes
BATCH = 20
LIMIT = 40  # seconds, for what takes a moment
OPENS_BEFORE = 2  # databases that the add-in has opened before the register
AT_A_MOMENT, AT_A_CALL, TOGETHER = "kill at a moment", "kill ahead of a change of the disk", "two add-ins and a writer"
BESIDE = ", beside a writer"
CALLS_OF_A_WRITE, LAST_CALLS = 40, 32  # of SQLite: all, and those up to the one that begins to write
SHORTLY = 0.0015  # seconds, for the share of a write that a call takes


class Silent(Host):
    """A host that only creates."""

    def __init__(self, bus):
        self.answers_to = []
        super().__init__(bus)

    def tell(self, **event):
        if event.get("answered") == "create":
            self.answers_to.append(event["error"])


class AddIn:
    """A process of the add-in whose calls of SQLite come in through a pipe, as they are made."""

    def __init__(self, arrangement, address, name, calls="sqlite:0:0"):
        self.pipe = arrangement.folder / f"calls-{name}"
        if not self.pipe.exists():
            os.mkfifo(self.pipe)
        self.reading = os.open(self.pipe, os.O_RDONLY | os.O_NONBLOCK)
        self.poll = select.poll()
        self.poll.register(self.reading, select.POLLIN)
        self.calls, self.first = [], None
        self.bus = dbus.bus.BusConnection(address, mainloop=DBusGMainLoop())
        self.host = Silent(self.bus)
        environment = {**arrangement.environment, "DBUS_SESSION_BUS_ADDRESS": address, "LD_PRELOAD": str(LIBRARY),
                       "FAILING_CALLS": calls, "FAILING_CALLS_TRACE": str(self.pipe)}
        self.arrangement = arrangement
        self.process = arrangement.start([arrangement.add_in, "-Embedding"], environment)
        wait_for(lambda: self.bus.name_has_owner(ADD_IN) or self.process.poll() is not None, LIMIT, "the add-in to serve")
        self.listen(0)

    def listen(self, milliseconds):
        for descriptor, _ in self.poll.poll(milliseconds):
            try:
                self.calls += os.read(descriptor, 1 << 16).decode().split()
            except BlockingIOError:
                pass

    def listen_until(self, condition, what):
        end = time.monotonic() + LIMIT
        while not condition():
            if time.monotonic() > end or self.process.poll() is not None:
                raise TimeoutError(f"{what} did not happen; status {self.process.poll()}")
            self.listen(20)

    def create(self):
        self.host.do_create()

    def created(self):
        """True when an object is there; raises where none can be had."""
        if any(self.serve()):
            raise RuntimeError(f"the creation failed: {self.host.answers_to}")
        return self.host.answers_to

    def serve(self):
        while GLib.MainContext.default().iteration(False):
            pass
        return self.host.answers_to

    def opens(self):
        return self.calls.count("sqlite3_open_v2")

    def kill_at(self, call, seconds):
        """Kills it so long behind one of the calls, counted from the opening of the register."""
        self.create()
        self.listen_until(lambda: self.opens() > OPENS_BEFORE and len(self.calls) >= self.opening() + call or
                          self.created(), f"call {call}")
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            pass
        return self.kill()

    def opening(self):
        """The place of the register's opening among the calls."""
        return [place for place, call in enumerate(self.calls) if call == "sqlite3_open_v2"][OPENS_BEFORE]

    def die(self):
        """Creates where a call will kill it; gives that call, or that there were not so many."""
        self.create()
        while self.process.poll() is None and self.serve() != [None]:
            self.listen(5)
        lives_on = self.process.poll() is None
        last = self.kill()
        return "(behind the last)" if lives_on else last

    def kill(self):
        self.process.kill()
        self.leave()
        return (self.calls or ["none"])[-1]

    def write_whole(self):
        """Creates, and gives the number of calls from the opening of the register on."""
        self.create()
        self.listen_until(self.created, "the creation")
        self.listen(0)
        self.release()
        self.leave(status=0)
        return self.calls

    def release(self, reference=None):
        self.host.send("release", *(reference or self.host.references["layer"]), OBJECT, "Release")

    def leave(self, status=None):
        self.process.wait(LIMIT)
        self.arrangement.processes.remove(self.process)
        self.listen(0)
        self.calls = [call for call in self.calls if not call.isdigit()]  # the signal of a kill
        wait_for(lambda: not self.bus.name_has_owner(ADD_IN), LIMIT, "the name to be free")
        self.bus.close()
        os.close(self.reading)
        if status is not None and self.process.returncode != status:
            raise RuntimeError(f"the add-in ended with status {self.process.returncode}")


class Writer:
    """Another add-in that writes its row again and again."""

    def __init__(self, file):
        self.process = subprocess.Popen(["/usr/bin/python3", WRITER, file, OTHER], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE, text=True)
        self.process.stdout.readline()

    def end(self):
        """Gives what it has written last."""
        written = self.process.communicate(timeout=LIMIT)[0].strip()
        if self.process.returncode:
            raise RuntimeError(f"the other writer ended with status {self.process.returncode}")
        return written


def kill_batch(arrangement, _, task):
    """So many kills one behind the other in one installation, whose register is left as each has left it."""
    mode, seed, count = task
    chance = random.Random(seed)
    file = database_file(arrangement, "Register.mdb")
    add_others(file)
    register = Register(file, OLD, NEW, writer_of=OTHER if mode.endswith(BESIDE) else None)
    address = arrangement.environment["DBUS_SESSION_BUS_ADDRESS"]
    result = {"mode": mode, "seed": seed, "count": 0, "last": Counter(), "journals": 0, "faults": []}
    kill = kill_at_a_moment if mode.startswith(AT_A_MOMENT) else kill_at_a_call
    writer = Writer(file) if mode.endswith(BESIDE) else None
    try:
        for number in range(count):
            last = kill(arrangement, address, chance, number)
            result["count"] += 1
            result["last"][last] += 1
            result["journals"] += Path(f"{file}-journal").exists()
            damage = register.damage() if writer else damage_of_copy(register, arrangement.folder / "copy")
            if damage:
                result["faults"].append(f"seed {seed}, kill {number}, at {last}: {damage}")
    finally:
        written = writer.end() if writer else None
    if writer and register.version(OTHER) != written:
        result["faults"].append(f"seed {seed}: the other add-in wrote {written}, its row is {register.version(OTHER)}")
    AddIn(arrangement, address, "a").write_whole()
    if register.damage() or register.version() != NEW:
        result["faults"].append(f"seed {seed}: after the last kill a start leaves {register.version()}, {register.damage()}")
    return result


def kill_at_a_moment(arrangement, address, chance, _):
    """Mostly in the last calls, which are those that write."""
    call = chance.choice([chance.randrange(CALLS_OF_A_WRITE), LAST_CALLS, LAST_CALLS])
    return AddIn(arrangement, address, "a").kill_at(call, chance.uniform(0, SHORTLY))


def kill_at_a_call(arrangement, address, _, number):
    return AddIn(arrangement, address, "a", f"kill:{number + 1}:0").die()


def damage_of_copy(register, folder):
    """Looks at a copy, so that the next add-in finds the journal that was left."""
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    for file in register.file.parent.glob("Register.mdb*"):
        shutil.copy(file, folder)
    return register.damage(folder / register.file.name)


def write_together(arrangement, _, task):
    """Two add-ins, each on a bus of its own, write at once, beside another writer."""
    mode, seed, count = task
    file = database_file(arrangement, "Register.mdb")
    add_others(file)
    register = Register(file, OLD, NEW, writer_of=OTHER)
    addresses = [arrangement.environment["DBUS_SESSION_BUS_ADDRESS"],
                 arrangement.start_bus(f"bus-{seed}", arrangement.environment)]
    result = {"mode": mode, "seed": seed, "count": 0, "last": Counter(), "journals": 0, "faults": []}
    add_ins = [AddIn(arrangement, address, name) for address, name in zip(addresses, "ab")]
    writer = Writer(file)
    try:
        for number in range(count):
            for add_in in add_ins:
                add_in.create()
            for add_in in add_ins:
                add_in.listen_until(add_in.created, f"creation {number}")
                add_in.host.answers_to.clear()
                if number:
                    add_in.release()
                else:
                    add_in.first = add_in.host.references["layer"]  # keeps the process
            result["count"] += len(add_ins)
            if damage := register.damage():
                result["faults"].append(f"seed {seed}, round {number}: {damage}")
        for add_in in add_ins:
            add_in.release(add_in.first)
            add_in.leave(status=0)
    finally:
        written = writer.end()
        for add_in in add_ins:
            add_in.process.kill()
    if (register.version(), register.version(OTHER)) != (NEW, written):
        result["faults"].append(f"seed {seed}: the rows are {register.version()} and {register.version(OTHER)}, "
                                f"not {NEW} and {written}")
    return result


def work(arrangement, driver, task):
    return (write_together if task[0] == TOGETHER else kill_batch)(arrangement, driver, task)


def main():
    parser = campaign.arguments("register", __doc__)
    parser.add_argument("--kills", type=campaign.positive, help="how many (default: 1,000; 80 with --short)")
    options = campaign.parse(parser)
    batches = -(-(options.kills or (80 if options.short else 1000)) // BATCH)
    tasks = [((AT_A_MOMENT, AT_A_CALL)[number % 2] + (BESIDE if number % 8 >= 6 else ""), options.seed + number, BATCH)
             for number in range(batches)]
    tasks += [(TOGETHER, options.seed + number, BATCH) for number in range(-(-batches // 10))]
    report = campaign.Report("register", options, "What", "Times", "Journals left behind", "Last call before the kill")
    sums = defaultdict(lambda: [0, 0, Counter()])
    for result in work_off(campaign.BUILD, campaign.BUILD / "campaigns/register", tasks, work):
        total = sums[result["mode"]]
        total[0] += result["count"]
        total[1] += result["journals"]
        total[2] += result["last"]
        for fault in result["faults"]:
            report.fault(f"{result['mode']}: {fault}")
    for mode, (count, journals, last) in sorted(sums.items()):
        report.row(mode, count, journals, ", ".join(f"{number} {call}" for call, number in last.most_common()))
    for mode in (AT_A_MOMENT, AT_A_CALL):
        if not (options.kills or sums[mode][1]):
            report.fault(f"{mode}: no kill came in the middle of a write")
    kills = sum(total[0] for mode, total in sums.items() if mode != TOGETHER)
    return report.finish(f"{kills:,} kills, {sums[TOGETHER][0]:,} writes at once")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

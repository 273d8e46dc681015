"""Databases that are damaged, cut off, swapped while open, out of reach or on a full disk.

Each page of each database is inverted and hit by single bits, each file is cut off at and within each page, changed
in several ways while the add-in has it open, made unreadable and unwritable, and moved to a disk without room. Each
time the add-in lives as ever or shows the notice of the routine; there is no crash and no hang. What a single bit
makes of a text is the text from then on.

A fault tells its case; --only CASE takes that one again.
"""
import argparse
import os
import random
import re
import shutil
import sqlite3
import subprocess
import sys
from collections import Counter, defaultdict
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
from side_by_side import work_off  # noqa: E402
from version_register import Register, add_others, database_file  # noqa: E402
from whole_run import WholeRun  # noqa: E402

COMMON, OURS, REGISTER = "Common.LNG", "Horalink.lng", "Register.mdb"
NAMES = (COMMON, OURS, REGISTER)
PAGE = 4096
BITS = 12  # single bits for each page
SAMPLE = 45
STEPS = ("create", "register", "background", "lookup 0")  # what the add-in is asked for next when a file is swapped
SWAPS = ("replaced", "removed", "overwritten", "emptied", "locked")
DENIALS = ("unreadable", "read-only", "directory read-only", "directory instead", "pipe instead")
# Root is above all modes, unless it gives that up.
AS_ANYBODY = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.getuid() == 0 else ()


class Case:
    """One thing that is done to one database. `text` names it, in words that lead back to it."""

    def __init__(self, text):
        self.text = text
        self.kind, self.name, *self.rest = text.split("/")
        self.prefix, self.step, self.undo = (), None, lambda: None

    def prepare(self, arrangement):
        self.file = database_file(arrangement, self.name)
        getattr(self, "_" + self.kind)(*self.rest)

    def before(self, step):
        if step == self.step:
            self.swap()

    def _change(self, change):
        content = bytearray(self.file.read_bytes())
        change(content)
        self.file.write_bytes(content)

    def _inverted(self, page):
        first = int(page) * PAGE

        def invert(content):
            content[first:first + PAGE] = bytes(byte ^ 0xFF for byte in content[first:first + PAGE])
        self._change(invert)

    def _bit(self, place):
        byte, bit = divmod(int(place), 8)

        def flip(content):
            content[byte] ^= 1 << bit
        self._change(flip)

    def _cut(self, length):
        os.truncate(self.file, int(length))

    def _swapped(self, how, step):
        self.step = step
        self.swap = getattr(self, "_be_" + how)

    def _be_replaced(self):
        other = self.file.with_name("other")
        other.write_bytes(b"This is no database. " * 1000)
        other.rename(self.file)

    def _be_removed(self):
        self.file.unlink()

    def _be_overwritten(self):
        with open(self.file, "r+b") as file:
            file.write(b"\xA5" * self.file.stat().st_size)

    def _be_emptied(self):
        os.truncate(self.file, 0)

    def _be_locked(self):
        """By a writer that never ends; the lock lies in a process of its own, as those of one process don't count."""
        program = ("import sqlite3, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
                   "d.execute('BEGIN EXCLUSIVE'); print(flush=True); sys.stdin.read()")
        locker = subprocess.Popen(["/usr/bin/python3", "-c", program, self.file], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE)
        locker.stdout.readline()
        self.undo = locker.communicate

    def _denied(self, how):
        self.prefix = AS_ANYBODY
        if how == "directory instead":
            self.file.unlink()
            self.file.mkdir()
        elif how == "pipe instead":
            self.file.unlink()
            os.mkfifo(self.file)
        elif how == "directory read-only":
            self.file.parent.chmod(0o500)
            self.undo = lambda: self.file.parent.chmod(0o700)
        else:
            self.file.chmod(0o000 if how == "unreadable" else 0o400)

    def _full(self):
        """A disk of its own, with hardly a page to spare behind the database."""
        folder = self.file.parent
        saved = folder.with_name("saved")
        folder.rename(saved)
        folder.mkdir()
        pages = sum(-(-file.stat().st_size // PAGE) for file in saved.iterdir())
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={pages * PAGE}", "none", folder], check=True)
        self.undo = lambda: subprocess.run(["umount", "-l", folder], check=True)
        for file in saved.iterdir():
            shutil.copy(file, folder)


def sizes():
    files = {name: next(campaign.BUILD.glob(f"data/en/{name}"), campaign.BUILD / "data" / name) for name in NAMES}
    return {name: file.stat().st_size for name, file in files.items()}


def can_mount():
    """A mount of our own needs root, and a system that lets it."""
    return os.getuid() == 0 and subprocess.run(["unshare", "-m", "mount", "-t", "tmpfs", "none", "/mnt"], check=False,
                                               capture_output=True).returncode == 0


def names_a_control(name, byte):
    """Whether a byte belongs to a text by which the driver finds a button, which then has another name."""
    file = campaign.BUILD / f"data/en/{name}"
    if name != OURS:
        return False
    content = file.read_bytes()
    database = sqlite3.connect(file)
    names = [text.encode() for (text,) in database.execute("SELECT ToolTipText FROM tControls") if text and text != "-1"]
    database.close()
    around = content[max(0, byte - 200):byte + 200]
    at = min(byte, 200)
    return any(start <= at < start + len(each) for each in names
               for start in (found.start() for found in re.finditer(re.escape(each), around)))


def all_cases(chance, report):
    for name, size in sizes().items():
        for page in range(size // PAGE):
            yield f"inverted/{name}/{page}"
            yield f"cut/{name}/{page * PAGE}"
            yield f"cut/{name}/{page * PAGE + PAGE // 2}"
            for _ in range(BITS):
                place = page * PAGE * 8 + chance.randrange(PAGE * 8)
                if not names_a_control(name, place // 8):
                    yield f"bit/{name}/{place}"
        yield from (f"swapped/{name}/{how}/{step}" for how in SWAPS for step in STEPS)
        yield from (f"denied/{name}/{how}" for how in DENIALS)
        if can_mount():
            yield f"full/{name}"
    if not can_mount():
        report.row("full", "not tried: no disk can be mounted here", 0, "")


def case_named(text):
    """What --only tells."""
    name, how, step, denial = (f"({'|'.join(each)})" for each in (NAMES, SWAPS, STEPS, DENIALS))
    form = rf"(inverted|cut|bit)/{name}/\d+|swapped/{name}/{how}/{step}|denied/{name}/{denial}|full/{name}"
    if not re.fullmatch(form, text):
        raise argparse.ArgumentTypeError(f"there is no case '{text}'")
    return text


def live(arrangement, driver, text):
    file = database_file(arrangement, REGISTER)
    case = Case(text)
    case.prepare(arrangement)
    # One that was damaged beforehand is not what the add-in has to answer for.
    register = None
    if case.name != REGISTER or case.kind == "full":
        add_others(file) if case.kind not in ("full", "denied") else None
        register = Register(file, "0.0.0", "13.0.1")
    try:
        seen = WholeRun(arrangement, driver, lookups=1, before=case.before, prefix=case.prefix).run()
        damage = register.damage() if register else None
    finally:
        case.undo()
    return text, seen, damage


def outcome_of(text, seen, damage, good):
    """A word for what came of a case; (None, why) where that must not be."""
    if seen.ill or damage:
        return None, seen.ill or damage
    difference = seen.difference(good)
    if not difference:
        return "unchanged", ""
    if seen.has_notice:
        return "notice", ""
    if text.startswith("bit/") and seen.steps == good.steps:
        return "other texts", ""
    return None, f"nobody was told: {difference}"


def main():
    parser = campaign.arguments("files", __doc__)
    parser.add_argument("--only", metavar="CASE", type=case_named, help="this case alone, and all that was seen of it")
    options = campaign.parse(parser)
    report = campaign.Report("files", options, "What was done", "To", "Times", "What came of it")
    cases = [options.only] if options.only else list(all_cases(random.Random(options.seed), report))
    if options.short and not options.only:
        cases = random.Random(options.seed).sample(cases, SAMPLE)
    folder = campaign.BUILD / "campaigns" / ("files-only" if options.only else "files")
    _, good, _ = next(iter(work_off(campaign.BUILD, folder, [f"cut/{OURS}/{sizes()[OURS]}"], live, workers=1)))
    if good.ill or good.boxes[0][0] != "PBX Clock":
        report.fault(f"the life without damage isn't good: {good}")
        return report.finish()
    counts = defaultdict(Counter)
    for text, seen, damage in work_off(campaign.BUILD, folder, cases, live):
        outcome, why = outcome_of(text, seen, damage, good)
        kind, name = text.split("/")[:2]
        counts[kind, name][outcome or "fault"] += 1
        if not outcome:
            report.fault(f"--only '{text}': {why}")
        if options.only:
            print(seen)
    for (kind, name), outcomes in sorted(counts.items()):
        report.row(kind, name, outcomes.total(), ", ".join(f"{n} {what}" for what, n in outcomes.most_common()))
    return report.finish(f"{len(cases)} cases")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

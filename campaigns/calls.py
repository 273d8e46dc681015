"""The n-th call of SQLite, sd-bus or the disk fails, for every n of a whole life of the add-in.

Each life ends in what is promised: as if nothing had been, or in a box, an error for the host, a line on standard
error; after a failure on the bus the next lookup succeeds, or the process has ended by itself. Never is there a crash,
a hang or a damaged register.

A fault tells the call as FAMILY:N:VARIANT; --only FAMILY:N:VARIANT takes that one again.
"""
import argparse
import random
import re
import sys
from collections import Counter, defaultdict
from dataclasses import dataclass, field
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
from version_register import Register, add_others, database_file  # noqa: E402
from side_by_side import work_off  # noqa: E402
from whole_run import Seen, WholeRun  # noqa: E402

LIBRARY = campaign.BUILD / "campaigns/failing-calls.so"
FAMILIES = ("file", "sqlite", "bus")
SAMPLE = {"file": 6, "sqlite": 20, "bus": 30}
# The codes that a function can give: the variants of FailingCalls.cpp, counted from 0.
VARIANTS = {"pwrite64": 2, "sqlite3_bind_text16": 2, "sqlite3_exec": 4, "sqlite3_prepare_v2": 4, "sqlite3_step": 5,
            "sqlite3_open_v2": 3, "sd_bus_open_user": 2, "sd_bus_add_match_async": 2, "sd_bus_call_async": 3,
            "sd_bus_get_unique_name": 2, "sd_bus_process": 3, "sd_bus_request_name": 3, "sd_bus_send": 3,
            "sd_bus_message_enter_container": 2, "sd_bus_message_peek_type": 2, "sd_bus_message_new_method_call": 2}
ONE_LINE = re.compile(r"(\S*horalink: [^\n]+\n)?")


@dataclass
class Life:
    """What came of one life; `failed` is the line of the trace that tells of the failure."""
    family: str
    number: int
    variant: int
    seen: Seen
    damage: str
    trace: list = field(repr=False)
    marks: dict = field(repr=False)

    @property
    def name(self):
        return f"{self.family}:{self.number}:{self.variant}"

    @property
    def failed(self):
        return next((line for line in self.trace if " " in line), None)


def live(arrangement, driver, task):
    """One life, in a worker."""
    family, number, variant = task
    file = database_file(arrangement, "Register.mdb")
    add_others(file)
    register = Register(file, "0.0.0", "13.0.1")
    trace = arrangement.folder / "trace"
    trace.write_text("")
    marks = {}
    environment = {"LD_PRELOAD": str(LIBRARY), "FAILING_CALLS": f"{family}:{number}:{variant}",
                   "FAILING_CALLS_TRACE": str(trace)}
    seen = WholeRun(arrangement, driver, environment,
                   before=lambda step: marks.setdefault(step, trace.read_bytes().count(b"\n"))).run()
    damage = register.damage()
    if not damage and any(step.startswith("show") for step in seen.steps) and register.version() != "13.0.1" \
            and not seen.has_notice:
        damage = "the dialog was opened, but the version isn't in the register"
    return Life(family, number, variant, seen, damage, trace.read_text().splitlines(), marks)


class Judge:
    """Holds each life against one in which nothing failed."""

    def __init__(self, good):
        self.good = good

    def outcome(self, life):
        """A word for what came of it; (None, why) where that must not be."""
        if life.seen.ill or life.damage:
            return None, life.seen.ill or life.damage
        difference = life.seen.difference(self.good.seen)
        if not life.failed:
            return (None, f"no failure, and yet {difference}") if difference else ("not reached", "")
        if not difference:
            return "unchanged", ""
        return self.of_bus(life) if life.family == "bus" else self.of_data(life, difference)

    def of_data(self, life, difference):
        if life.seen.has_notice:
            return "notice", ""
        # Without names of a set, the pictures are those of the first set: nobody is told.
        if life.family == "sqlite" and life.number in self.silent():
            return "silent", ""
        return None, f"nobody was told: {difference}"

    def silent(self):
        """The calls from the mark of the background up to the end of the first query in it."""
        first = self.good.marks["background"]
        return range(first + 1, self.good.marks["lookup 0"] + 1)

    def of_bus(self, life):
        seen, good = life.seen, self.good.seen
        if not ONE_LINE.fullmatch(seen.errors):
            return None, f"standard error: {seen.errors!r}"
        if seen.ended_early:
            # Together with the bus, all who could be told are gone.
            told = seen.errors or life.number > self.good.marks["create"] or life.failed.startswith("sd_bus_process")
            return ("ended", "") if told else (None, "ended without a word")
        host_was_told = any(": org." in step or step.startswith("register: [1") for step in seen.steps)
        # No two lives make quite the same calls: this one may fail in its last lookup, behind which comes no other.
        is_last = life.number > life.marks.get("lookup 1", life.number)
        if good.steps[-2] not in seen.steps and not is_last:
            gave_up = host_was_told and not any(step.startswith("lookup") for step in seen.steps)
            return ("host gave up", "") if gave_up else (None, f"not usable afterwards: {seen.steps}")
        if any(box not in good.boxes for box in seen.boxes):
            return "box", ""
        return "error for the host" if host_was_told else "passed over", ""


def failure_named(text):
    """What --only tells."""
    found = re.fullmatch(rf"({'|'.join(FAMILIES)}):(\d+):(\d+)", text)
    if not found:
        raise argparse.ArgumentTypeError(f"'{text}' is no failure")
    return found[1], int(found[2]), int(found[3])


def tasks_of(good, options):
    """Every call with every code, or a sample of them. The second lookup repeats the first, and isn't failed."""
    first, last = good.marks["lookup 1"], good.marks["release"]
    every = [(good.family, number, variant) for number, line in enumerate(good.trace, 1) if not first < number <= last
             for variant in range(VARIANTS.get(line, 1))]
    # Behind the end: what this finds is that the whole passes untouched.
    end = [(good.family, len(good.trace) + 100, 0)]
    if options.short:
        every = random.Random(options.seed).sample(every, SAMPLE[good.family])
    return every + end


def run_family(family, options, report, folder):
    good = next(iter(work_off(campaign.BUILD, folder, [(family, 0, 0)], live, workers=1)))
    if good.seen.ill or good.seen.status or good.damage or good.failed:
        report.fault(f"the life without a failure isn't good: {good}")
        return
    judge, counts = Judge(good), defaultdict(Counter)
    tasks = tasks_of(good, options)
    print(f"  {family}: {len(good.trace)} calls in one life, {len(tasks)} failures", flush=True)
    for life in work_off(campaign.BUILD, folder, tasks, live):
        outcome, why = judge.outcome(life)
        function, _, code = (life.failed or "none").partition(" ")
        counts[function][outcome or "fault"] += 1
        if not outcome:
            report.fault(f"--only {life.name} ({function} gives {code}): {why}; it had come to {life.seen.steps[-1:]}")
        if options.verbose:
            print(f"    {life.name} {function} {code}: {outcome or why}", flush=True)
    for function in sorted(counts):
        outcomes = counts[function]
        report.row(function, sum(outcomes.values()), ", ".join(f"{n} {what}" for what, n in outcomes.most_common()))


def main():
    parser = campaign.arguments("calls", __doc__)
    parser.add_argument("--only", metavar="FAMILY:N:VARIANT", type=failure_named,
                        help="this failure alone, and all that was seen of it")
    parser.add_argument("--family", choices=FAMILIES, help="one family alone")
    parser.add_argument("--verbose", action="store_true", help="a line for each life")
    options = campaign.parse(parser)
    folder = campaign.BUILD / "campaigns" / ("calls-only" if options.only else "calls")
    if options.only:
        tasks = [(options.only[0], 0, 0), options.only]
        good, life = work_off(campaign.BUILD, folder, tasks, live, workers=1)
        outcome, why = Judge(good).outcome(life)
        print(life, f"\n{life.failed}: {outcome or why}")
        return 0 if outcome else 1
    report = campaign.Report("calls", options, "Function", "Failures", "What came of them")
    for family in [options.family] if options.family else FAMILIES:
        run_family(family, options, report, folder)
    return report.finish(f"{sum(int(row[1]) for row in report.rows):,} calls that fail")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

"""What all campaigns share: their arguments, and the Markdown report that tells what came of one."""
import argparse
import fcntl
import os
import random
import shlex
import sys
import time
from datetime import datetime
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
from interruption import run  # noqa: E402, F401: what each campaign gives its main to
from machine import machine  # noqa: E402

BUILD = Path(os.environ["HORALINK_BUILD"]).resolve()


def arguments(name, description):
    """A parser with what every campaign takes; add to it, then call `parse`."""
    parser = argparse.ArgumentParser(prog=f"campaigns/run {name}", description=description,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--short", action="store_true", help="a sample that takes a minute or two")
    parser.add_argument("--seed", type=int, help="the course to take (default: another one each time)")
    return parser


def parse(parser):
    """`is_part` is true for what is less than the long form: it proves nothing of the whole."""
    options, given = parser.parse_args(), sys.argv[1:]
    if not (BUILD / "src/horalink").exists():
        parser.error(f"there is no build of the add-in in {BUILD}")
    have_for_itself(parser)
    options.is_part = any(value != parser.get_default(name) for name, value in vars(options).items()
                          if name not in ("seed", "verbose"))
    if options.seed is None:
        options.seed = random.SystemRandom().randrange(1_000_000)
        given = [*given, "--seed", str(options.seed)]
    options.command = command(parser, given)
    return options


def have_for_itself(parser):
    """Two runs of one campaign would clear each other's installations away; the lock ends with the process."""
    name = parser.prog.split()[-1]
    (BUILD / "campaigns").mkdir(exist_ok=True)
    lock = os.open(BUILD / f"campaigns/{name}.lock", os.O_CREAT | os.O_WRONLY | os.O_CLOEXEC)
    try:
        fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except BlockingIOError:
        parser.error(f"'{name}' is running in {BUILD} already")


def positive(text):
    """A number of what is to be done."""
    number = int(text)
    if number < 1:
        raise ValueError
    return number


def command(parser, given):
    """The words by which all that was done can be done again."""
    return shlex.join([*parser.prog.split(), *given])


class Report:
    """Collects rows and faults; `finish` writes build/campaigns/NAME.md, or NAME-part.md where it was but a part, and
    gives the exit status."""

    def __init__(self, name, options, *columns):
        self.name, self.columns = name, columns
        self.command, self.is_part = options.command, options.is_part
        self.began = time.monotonic()
        self.rows, self.faults = [], []
        print(f"{self.command}, on {machine()}", flush=True)

    def row(self, *cells):
        self.rows.append([str(cell).replace("|", "\\|").replace("\n", " ") for cell in cells])
        print("  " + " | ".join(self.rows[-1]), flush=True)

    def fault(self, what):
        """Something that must not be: one line that says how to see it again."""
        self.faults.append(what)
        print(f"  FAULT: {what}", flush=True)

    def text(self, summary):
        minutes, seconds = divmod(round(time.monotonic() - self.began), 60)
        lines = [f"# Campaign `{self.name}`", "",
                 f"{datetime.now():%Y-%m-%d %H:%M}, {machine()}, {minutes}:{seconds:02} minutes.", "",
                 f"    {self.command}", "", "| " + " | ".join(self.columns) + " |",
                 "|" + "---|" * len(self.columns), *("| " + " | ".join(row) + " |" for row in self.rows), ""]
        if self.faults:
            lines += [f"**Failed.** {len(self.faults)} faults", "", *(f"- {fault}" for fault in self.faults)]
        else:
            lines += [f"**Passed.** {summary}".rstrip()]
        return "\n".join(lines) + "\n"

    def finish(self, summary=""):
        """The summary is what the table of all campaigns tells beside the outcome."""
        if not self.rows:
            self.fault("nothing was done")
        (BUILD / "campaigns").mkdir(exist_ok=True)
        report = BUILD / "campaigns" / f"{self.name}{'-part' if self.is_part else ''}.md"
        report.write_text(self.text(summary), encoding="utf-8")
        print(f"{len(self.faults)} faults" if self.faults else "passed", f"- see {report}", flush=True)
        return 1 if self.faults else 0

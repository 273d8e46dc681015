"""The second half of ./bench/run, after the build: measures each row beside its floor and prints the table."""
import argparse
import re
import shutil
import statistics
import subprocess
import sys
import time
from datetime import date
from pathlib import Path

SOURCES = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(SOURCES / "scripts"))
import manual  # noqa: E402
from sandbox import CLASS_NAMES, Sandbox, wait_for  # noqa: E402
from interruption import run  # noqa: E402
from machine import machine  # noqa: E402

ADD_IN_CLASS, EXCHANGE_CLASS = CLASS_NAMES
SPAN = 2  # seconds of idleness
PEERS = ("lxqt-admin-time", "mate-time-admin")  # programs that set a clock, measured where they are installed


class Bench:
    def __init__(self, build, sandbox, runs):
        self.folder, self.sandbox, self.runs = build / "bench", sandbox, runs
        self.text_dialog = self.folder / "text-dialog"

    def output(self, *command):
        return subprocess.run([str(part) for part in command], env=self.sandbox.environment, text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, check=True, timeout=900).stdout

    def columns(self, program, *arguments):
        """The numbers that a measuring program prints, a line for each run."""
        lines = self.output(self.folder / program, *arguments).splitlines()
        wait_for(lambda: ADD_IN_CLASS not in self.names(), 20, "the add-in to end")
        return list(zip(*([float(word) for word in line.split()] for line in lines)))

    def names(self):
        return self.output("busctl", "--user", "--no-legend", "list", "--acquired")

    def starts(self):
        """Starts in turn, so that other load on the machine affects all of them.

        A host serves the exchange object beforehand: stand-alone runs create one, and its start isn't the add-in's.
        """
        host = self.sandbox.start([self.sandbox.host])
        wait_for(lambda: EXCHANGE_CLASS in self.names(), 20, "the exchange object's class")
        commands = {"text": [self.text_dialog], "alone": [self.sandbox.add_in, "Main Office"],
                    "created": [], **{peer: [peer] for peer in PEERS if shutil.which(peer)}}
        # The first round fills the disk cache.
        rounds = [{name: self.columns("first-paint", *command) for name, command in commands.items()}
                  for _ in range(self.runs + 1)][1:]
        self.sandbox.end(host)
        times, resident, shares = ({name: [each[name][column][0] for each in rounds] for name in commands}
                                  for column in range(3))
        yield "start", "time to first paint, started alone", "ms", times["alone"], times["text"], 1.4
        yield "start-created", "time to first paint, created by a host", "ms", times["created"], times["text"], 1.4
        yield "memory", "resident memory", "KiB", resident["created"], resident["text"], 1.2
        yield "memory-proportional", "proportional memory", "KiB", shares["created"], shares["text"], 1.25
        for peer in list(commands)[3:]:
            yield f"start-{peer}", f"start, against {peer}", "ms", times["alone"], times[peer], 1
            yield f"memory-{peer}", f"resident memory, against {peer}", "KiB", resident["alone"], resident[peer], 1

    def calls(self):
        late, typed, ping = self.columns("calls", self.runs)
        yield "call", "late-bound call, against Ping", "µs", late, ping, 1.2
        yield "call-typed", "typed call, against Ping", "µs", typed, ping, 1.2

    def lookups(self):
        ways, bare_ways, exchanges, bare_exchanges = self.columns("click-to-box", self.runs, self.folder / "bare-lookup")
        yield "click-to-box", "click to painted box, less timer steps", "ms", ways, bare_ways, 1.5
        yield "exchange", "a lookup's calls, against as many bare ones", "ms", exchanges, bare_exchanges, 1.8

    def routines(self):
        messages, sqlite, copy, reads = self.columns("routines", self.runs)
        yield "messages", "32,767 messages read, against SQLite's calls", "µs", messages, sqlite, 1.4
        yield "list-copy", "answer copied, against its late-bound reads", "µs", copy, reads, 1.5

    def idle(self):
        programs = [self.sandbox.start(command).pid for command in
                    ([self.sandbox.add_in, "Main Office"], [self.text_dialog])]
        time.sleep(3)  # until the start is over
        wakes = []
        for _ in range(self.runs):
            before = [wake_ups(program) for program in programs]
            time.sleep(SPAN)
            wakes.append([(wake_ups(each) - then) / SPAN for each, then in zip(programs, before)])
        yield "idle", "wake-ups, following the time", "/s", *zip(*wakes), 1.1


def wake_ups(process):
    """How often its threads went to sleep voluntarily, which is how often they woke up."""
    return sum(int(re.search(r"^voluntary_ctxt_switches:\s*(\d+)", each.read_text(), re.M)[1])
               for each in Path(f"/proc/{process}/task").glob("*/status"))


def number(value):
    return f"{value:,.0f}" if value >= 1000 else f"{value:.4g}"


def row(name, what, unit, measured, floors, limit):
    """A line of the table, and whether the limit holds."""
    low, ratio, high = statistics.quantiles([a / b for a, b in zip(measured, floors)], n=4)
    holds = ratio <= limit
    return (f"| {name} | {what} | {number(statistics.median(measured))} {unit} | "
            f"{number(statistics.median(floors))} {unit} | {ratio:.2f}{'' if holds else ' (!)'} | "
            f"{low:.2f}–{high:.2f} | {limit} |"), holds


def main():
    groups = {each.__name__: each for each in (Bench.starts, Bench.calls, Bench.lookups, Bench.routines, Bench.idle)}
    parser = argparse.ArgumentParser(prog="bench/run")
    parser.add_argument("build", type=lambda path: Path(path).resolve())
    parser.add_argument("names", nargs="*", choices=[*groups, []], metavar="NAME")
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_intermixed_args()
    with Sandbox(options.build, options.build / "bench/sandbox", own_display=True, readable=False,
                     managed=False).lay_out() as sandbox:
        bench = Bench(options.build, sandbox, options.runs)
        rows = [row(*each) for name in options.names or groups for each in groups[name](bench)]
    content = "\n".join([f"{date.today()}, {machine()}, {options.runs} runs.\n",
                         "| Name | What | Measured | Floor | Ratio | Quartiles | At most |",
                         "|---|---|---:|---:|---:|---:|---:|", *(line for line, _ in rows)])
    print(content)
    if options.record:
        manual.write(SOURCES / "docs/measurements.md", "./bench/run --record", content)
    return 0 if all(holds for _, holds in rows) else 1


if __name__ == "__main__":
    sys.exit(run(main))

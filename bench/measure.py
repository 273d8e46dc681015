"""What ./bench/run does once everything is built: measures, prints a table, writes JSON and a plot."""
import argparse
import json
import os
import platform
import statistics
import subprocess
import sys
from dataclasses import asdict, dataclass
from datetime import date
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "scripts"))
from arrangement import CLASS_NAMES, Arrangement, wait_for  # noqa: E402
from plot import plot  # noqa: E402

ADD_IN_CLASS, EXCHANGE_CLASS = CLASS_NAMES
EXCHANGE = "Main Office"


@dataclass
class Figure:
    """A ratio of what was measured to its floor; both in `unit`, with the spread of the ratio between quartiles."""
    name: str
    what: str
    unit: str
    measured: float
    floor: float
    ratio: float
    low: float
    high: float
    limit: float

    @classmethod
    def of(cls, name, what, unit, measured, floors, limit):
        ratios = sorted(value / floor for value, floor in zip(measured, floors))
        low, _, high = statistics.quantiles(ratios, n=4)
        return cls(name, what, unit, statistics.median(measured), statistics.median(floors),
                   statistics.median(measured) / statistics.median(floors), low, high, limit)

    @property
    def holds(self):
        return self.ratio <= self.limit


class Bench:
    def __init__(self, build, arrangement, runs):
        self.programs = build / "bench"
        self.arrangement = arrangement
        self.runs = runs

    def output(self, *command):
        done = subprocess.run([str(part) for part in command], env=self.arrangement.environment, text=True,
                              stdout=subprocess.PIPE, check=True, timeout=600)
        return done.stdout

    # --- whole processes --------------------------------------------------------------------------

    def first_paint(self, *command):
        """Milliseconds to the first paint, private and shared KiB."""
        values = [float(word) for word in self.output(self.programs / "first-paint", *command).split()]
        wait_for(self.nothing_served, 20, "the add-in to end")
        return values

    def nothing_served(self):
        return ADD_IN_CLASS not in self.names()

    def names(self):
        """What the bus serves now."""
        return self.output("busctl", "--user", "--no-legend", "list", "--acquired")

    def starts(self):
        """The programs in turn, so that what else the machine does meets all of them.

        A stand-alone run creates the exchange object, whose own start is not the add-in's: it is there already.
        """
        self.arrangement.start([self.arrangement.host])
        wait_for(lambda: EXCHANGE_CLASS in self.names(), 20, "the exchange object's class")
        commands = {
            "empty": [self.programs / "empty-dialog"],
            "alone": [self.arrangement.add_in, EXCHANGE],
            "created": ["--create", ADD_IN_CLASS, EXCHANGE],
        }
        for command in commands.values():
            self.first_paint(*command)  # fills the disk cache
        results = {name: [] for name in commands}
        for _ in range(self.runs):
            for name, command in commands.items():
                results[name].append(self.first_paint(*command))
        column = {name: list(zip(*rows)) for name, rows in results.items()}
        floor = column["empty"]
        yield Figure.of("start", "start to first paint, stand-alone", "ms", column["alone"][0], floor[0], 1.5)
        yield Figure.of("start-created", "creation by a host to first paint", "ms", column["created"][0], floor[0], 1.5)
        for name, index, what in (("memory-private", 1, "private memory"), ("memory-shared", 2, "shared memory")):
            yield Figure.of(name, f"{what} of the running add-in", "KiB", column["created"][index], floor[index], 1.3)

    # --- programs of Google Benchmark -------------------------------------------------------------

    def benchmark(self, program):
        """The times of each of its benchmarks, one per repetition, in microseconds."""
        text = self.output(self.programs / program, "--benchmark_format=json", f"--benchmark_repetitions={self.runs}",
                           "--benchmark_min_time=0.1", "--benchmark_enable_random_interleaving=true")
        times = {}
        for entry in json.loads(text)["benchmarks"]:
            if entry["run_type"] == "iteration":
                name = entry["run_name"].removesuffix("/real_time").split("/repeats")[0]
                scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3}[entry["time_unit"]]
                times.setdefault(name, []).append(entry["real_time"] * scale)
        return times

    def calls(self):
        times = self.benchmark("calls")
        for name, key, what, limit in (
                ("call", "LateBound", "late-bound call against Ping", 1.3),
                ("call-typed", "Typed", "typed call against Ping", 1.3),
                ("call-1000", "LateBoundAmongObjects/1000", "late-bound call among 1,000 objects", 1.3)):
            yield Figure.of(name, what, "µs", times[key], times["Ping"], limit)


GROUPS = {"starts": ("start", "start-created", "memory-private", "memory-shared"),
          "calls": ("call", "call-typed", "call-1000")}


def machine():
    model = next((line.split(":")[1].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                  if line.startswith("model name")), platform.machine())
    return f"{os.cpu_count()} x {model}"


def table(figures):
    lines = ["| Name | What | Measured | Floor | Ratio | Quartiles | At most |", "|---|---|---:|---:|---:|---:|---:|"]
    for figure in figures:
        mark = "" if figure.holds else " (!)"
        lines.append(f"| {figure.name} | {figure.what} | {figure.measured:.4g} {figure.unit} | "
                     f"{figure.floor:.4g} {figure.unit} | {figure.ratio:.2f}{mark} | "
                     f"{figure.low:.2f}–{figure.high:.2f} | {figure.limit} |")
    return "\n".join(lines)


def main():
    names = [name for group in GROUPS.values() for name in group]
    parser = argparse.ArgumentParser(prog="bench/run")
    parser.add_argument("build", type=Path)
    parser.add_argument("names", nargs="*", metavar="NAME")
    parser.add_argument("--runs", type=int, default=15)
    options = parser.parse_intermixed_args()
    if unknown := set(options.names) - set(names):
        parser.error(f"there is no figure {', '.join(sorted(unknown))}; there are {', '.join(names)}")
    wanted = options.names or names
    folder = options.build.resolve() / "bench"
    arrangement = Arrangement(options.build, folder / "arrangement", own_display=True, readable=False).lay_out()
    figures = []
    with arrangement:
        bench = Bench(options.build.resolve(), arrangement, options.runs)
        for group, members in GROUPS.items():
            if not set(members).isdisjoint(wanted):
                figures += [figure for figure in getattr(bench, group)() if figure.name in wanted]
    print(f"{date.today()}, {machine()}, {options.runs} runs\n\n{table(figures)}")
    result = {"date": str(date.today()), "machine": machine(), "runs": options.runs,
              "figures": [asdict(figure) for figure in figures]}
    (folder / "figures.json").write_text(json.dumps(result, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
    (folder / "figures.svg").write_text(plot(figures), encoding="utf-8")
    return 0 if all(figure.holds for figure in figures) else 1


if __name__ == "__main__":
    sys.exit(main())

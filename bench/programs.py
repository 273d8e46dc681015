"""Measurements of whole programs from outside: the add-in on its own bus and display."""
import json
import os
import subprocess

from arrangement import CLASS_NAMES, wait_for

from figure import Figure

ADD_IN_CLASS, EXCHANGE_CLASS = CLASS_NAMES
EXCHANGE = "Main Office"
LEAST_SPANS = 10  # of two seconds each, for events once a second


class Bench:
    """Runs the measuring programs in the environment of an arrangement."""

    def __init__(self, build, arrangement, runs):
        self.programs = build / "bench"
        self.arrangement = arrangement
        self.runs = runs
        self.bare = self.programs / "bare-dialog"
        self.silence, self._kept_open = os.pipe()  # for programs that end when their input does

    def output(self, *command):
        done = subprocess.run([str(part) for part in command], env=self.arrangement.environment, text=True,
                              stdin=self.silence, stdout=subprocess.PIPE, check=True, timeout=900)
        return done.stdout

    def benchmark(self, program, clock="real_time"):
        """The times of each benchmark of a program, one for each repetition, in microseconds."""
        text = self.output(self.programs / program, "--benchmark_format=json", f"--benchmark_repetitions={self.runs}",
                           "--benchmark_min_time=0.1", "--benchmark_enable_random_interleaving=true")
        times = {}
        for entry in json.loads(text)["benchmarks"]:
            if entry.get("error_occurred"):
                raise RuntimeError(f"{entry['name']}: {entry['error_message']}")
            if entry["run_type"] == "iteration":
                name = entry["run_name"].removesuffix("/real_time").split("/repeats")[0].split("/iterations")[0]
                scale = {"ns": 1e-3, "us": 1.0, "ms": 1e3}[entry["time_unit"]]
                times.setdefault(name, []).append(entry[clock] * scale)
        return times

    # --- start and memory -------------------------------------------------------------------------

    def first_paint(self, *command):
        """Milliseconds to the first paint; private, shared and total KiB."""
        time, private, shared = [float(word) for word in self.output(self.programs / "first-paint", *command).split()]
        self.wait_for_end()
        return time, private, shared, private + shared

    def wait_for_end(self):
        wait_for(lambda: ADD_IN_CLASS not in self.names(), 20, "the add-in to end")

    def names(self):
        """The names now on the bus."""
        return self.output("busctl", "--user", "--no-legend", "list", "--acquired")

    def starts(self):
        """Runs the programs in turn, so that other load on the machine affects all of them.

        A host serves the exchange object beforehand: stand-alone runs create one, and its start isn't the add-in's.
        """
        host = self.arrangement.start([self.arrangement.host])
        wait_for(lambda: EXCHANGE_CLASS in self.names(), 20, "the exchange object's class")
        commands = {
            "empty": [self.programs / "empty-dialog"],
            "text": [self.bare],
            "alone": [self.arrangement.add_in, EXCHANGE],
            "created": ["--create", ADD_IN_CLASS, EXCHANGE],
        }
        for command in commands.values():
            self.first_paint(*command)  # fills the disk cache
        results = {name: [] for name in commands}
        for _ in range(self.runs):
            for name, command in commands.items():
                results[name].append(self.first_paint(*command))
        self.arrangement.end(host)
        column = {name: list(zip(*rows)) for name, rows in results.items()}
        floor = column["empty"]
        yield Figure.of("start", "start to first paint, stand-alone", "ms", column["alone"][0], floor[0], 1.5)
        yield Figure.of("start-created", "creation by a host to first paint", "ms", column["created"][0], floor[0], 1.5)
        for name, index, what in (("memory-private", 1, "private memory"), ("memory-shared", 2, "shared memory"),
                                  ("memory", 3, "all memory")):
            yield Figure.of(name, f"{what} of the running add-in", "KiB", column["created"][index], floor[index], 1.3)
        yield Figure.of("memory-text", "all memory, against a dialog that shows text", "KiB", column["created"][3],
                        column["text"][3], 1.3)

    # --- calls ------------------------------------------------------------------------------------

    def calls(self):
        times = self.benchmark("calls")
        for name, key, what in (("call", "LateBound", "late-bound call against Ping"),
                                ("call-typed", "Typed", "typed call against Ping"),
                                ("call-1000", "LateBoundAmongObjects/1000", "late-bound call among 1,000 objects")):
            yield Figure.of(name, what, "µs", times[key], times["Ping"], 1.3)

    def records(self):
        times = self.benchmark("record-reads")
        self.wait_for_end()
        yield Figure.of("record-reads", "a host's read of a record's field, of 10,000", "µs", times["ReadField"],
                        times["Ping"], 1.3)

    # --- a lookup ---------------------------------------------------------------------------------

    def lookups(self):
        lines = self.output(self.programs / "click-to-box", self.runs + 1, self.bare).splitlines()
        self.wait_for_end()
        # Leaves out the first box, which loads what the others share.
        way, exchange, calls, bare = zip(*([float(word) for word in line.split()] for line in lines[1:]))
        yield Figure.of("exchange", "a lookup's calls, against them alone", "ms", exchange, calls, 1.5)
        yield Figure.of("click-to-box", "click to painted box, less two steps", "ms", way,
                        [sum(pair) for pair in zip(calls, bare)], 1.5)

    # --- at rest ----------------------------------------------------------------------------------

    def idle(self):
        """Each span is a run. Where nothing changes, the floor is the one tick per second."""
        spans = max(self.runs, LEAST_SPANS)
        wakes, paints = {}, {}
        for line in self.output(self.programs / "idle", spans, self.bare).splitlines():
            state, wake_ups, painted = line.split()
            wakes.setdefault(state, []).append(float(wake_ups))
            paints.setdefault(state, []).append(float(painted))
        self.wait_for_end()
        yield Figure.of("idle-following", "wake-ups, following the time", "/s", wakes["following"], wakes["bare"], 1.2)
        yield Figure.of("idle-still", "wake-ups, nothing to show", "/s", wakes["still"], 1.0, 1.2)
        yield Figure.of("idle-hidden", "wake-ups, hidden", "/s", wakes["hidden"], 1.0, 1.2)
        yield Figure.of("paints-following", "paints, following the time", "/s", paints["following"], paints["bare"],
                        1.2)
        yield Figure.of("paints-still", "paints, nothing to show", "/s", paints["still"], 1.0, 0)
        yield Figure.of("paints-hidden", "paints, hidden", "/s", paints["hidden"], 1.0, 0)

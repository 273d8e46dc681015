"""Measurements inside a process: routines of the add-in, by processor time."""
from figure import Figure

GROWTH = 1.5  # an item at the largest size against one at the smallest


def sizes(times, benchmark):
    """The times of a benchmark at each of its sizes."""
    return {int(name.split("/")[1]): taken for name, taken in times.items() if name.split("/")[0] == benchmark}


def of_largest(times, benchmark, name, what, floor, limit):
    taken = sizes(times, benchmark)
    largest = max(taken)
    return Figure.of(name, what, "µs", taken[largest], times[f"{floor}/{largest}"], limit)


def growth(times, benchmark, name, what):
    return Figure.of_growth(name, what, "µs", sizes(times, benchmark), GROWTH)


def tables(bench):
    times = bench.benchmark("tables", "cpu_time")
    for name, benchmark, what in (("messages", "Messages", "32,767 messages"),
                                  ("controls", "Controls", "10,000 controls"),
                                  ("pictures", "Pictures", "1,000 pictures")):
        yield of_largest(times, f"{benchmark}ByAddIn", name, f"{what} read, against SQLite's calls",
                         f"{benchmark}BySqlite", 2)
        yield growth(times, f"{benchmark}ByAddIn", f"{name}-growth", f"time of a row, up to {what}")


def lists(bench):
    times = bench.benchmark("lists", "cpu_time")
    yield of_largest(times, "FillRecord", "list-fill", "record filled, against vectors", "FillVectors", 2)
    yield growth(times, "FillRecord", "list-fill-growth", "time of an item filled, up to the last")
    yield of_largest(times, "CopyByCallBack", "list-copy", "record copied, against its late-bound reads",
                     "ReadLateBound", 2)
    yield of_largest(times, "CopyByCallBack", "list-copy-plain", "record copied, against vectors", "CopyVectors", 20)
    yield growth(times, "CopyByCallBack", "list-copy-growth", "time of an item copied, up to the last")


def answers(bench):
    nanoseconds = {name: [time * 1000 for time in taken]
                   for name, taken in bench.benchmark("answer-texts", "cpu_time").items()}
    yield Figure.of("lookup-answer", "lookup of an answer's text, against memcmp", "ns", nanoseconds["LookUp"],
                    nanoseconds["Memcmp"], 1.5)

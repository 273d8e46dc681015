"""The second half of ./bench/run, after the build: measures, prints a table, writes JSON and a plot."""
import argparse
import json
import sys
from dataclasses import asdict
from datetime import date
from pathlib import Path

SOURCES = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(SOURCES / "scripts"))
import manual  # noqa: E402
import routines  # noqa: E402
from arrangement import Arrangement  # noqa: E402
from figure import growth_table, table  # noqa: E402
from interruption import run  # noqa: E402
from machine import machine  # noqa: E402
from plot import plot  # noqa: E402
from programs import Bench  # noqa: E402

# The figures of each measurement.
GROUPS = {
    Bench.starts: ("start", "start-created", "memory-private", "memory-shared", "memory", "memory-text"),
    Bench.calls: ("call", "call-typed", "call-1000"),
    Bench.records: ("record-reads",),
    Bench.lookups: ("exchange", "click-to-box"),
    routines.tables: ("messages", "messages-growth", "controls", "controls-growth", "pictures", "pictures-growth"),
    routines.lists: ("list-fill", "list-fill-growth", "list-copy", "list-copy-plain", "list-copy-growth"),
    routines.answers: ("lookup-answer",),
    Bench.idle: ("idle-following", "idle-still", "idle-hidden", "paints-following", "paints-still", "paints-hidden"),
}
NAMES = [name for members in GROUPS.values() for name in members]
REPORT, PICTURE = SOURCES / "docs/measurements.md", SOURCES / "docs/pictures/figures.svg"


def arguments():
    parser = argparse.ArgumentParser(prog="bench/run", usage="%(prog)s [NAME...] [--runs N] [--record]")
    parser.add_argument("build", type=Path)
    parser.add_argument("names", nargs="*", metavar="NAME")
    parser.add_argument("--runs", type=int, default=15)
    parser.add_argument("--record", action="store_true")
    options = parser.parse_intermixed_args()
    if unknown := set(options.names) - set(NAMES):
        parser.error(f"unknown figure {', '.join(sorted(unknown))}; known are {', '.join(NAMES)}")
    if options.runs < 2:
        parser.error("quartiles need at least two runs")
    if options.record and options.names:
        parser.error("--record needs all figures, from one run")
    return options


def measure(bench, wanted):
    for group, members in GROUPS.items():
        if not set(members).isdisjoint(wanted):
            for figure in group(bench):
                if figure.name in wanted:
                    print(f"{figure.name}: {figure.ratio:.2f}", file=sys.stderr, flush=True)
                    yield figure


def main():
    options = arguments()
    build = options.build.resolve()
    folder = build / "bench"
    with Arrangement(build, folder / "arrangement", own_display=True, readable=False).lay_out() as arrangement:
        figures = list(measure(Bench(build, arrangement, options.runs), options.names or NAMES))
    today = str(date.today())
    content = "\n\n".join(filter(None, [f"{today}, {machine()}, {options.runs} runs.", table(figures),
                                        growth_table(figures)]))
    print(content)
    result = {"date": today, "machine": machine(), "runs": options.runs, "figures": [asdict(each) for each in figures]}
    (folder / "figures.json").write_text(json.dumps(result, indent=2, ensure_ascii=False) + "\n", encoding="utf-8")
    picture = plot(figures)
    (folder / "figures.svg").write_text(picture, encoding="utf-8")
    if options.record:
        manual.write(REPORT, "./bench/run --record", content)
        PICTURE.write_text(picture, encoding="utf-8")
    return 0 if all(figure.holds for figure in figures) else 1


if __name__ == "__main__":
    sys.exit(run(main))

"""Puts what the long forms of the campaigns came to into the manual: a row for each report in the build folder.

A campaign that has no report there keeps the row that it has.
"""
import re
import sys
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "scripts"))
import manual  # noqa: E402

PAGE, COMMAND = SOURCES / "docs/measurements.md", "./campaigns/run --record"
HEAD = "| Campaign | Command | Date and machine | Minutes | Outcome |\n|---|---|---|---:|---|"
REPORT = re.compile(r"# Campaign `(?P<name>\w+)`\n\n(?P<date>\S+) \S+, (?P<machine>[^\n]+), (?P<minutes>\S+) minutes\.\n\n"
                    r" {4}(?P<command>[^\n]+)\n.*?\*\*(?P<outcome>Passed|Failed)", re.S)


def row(report):
    outcome = report["outcome"].lower()
    return f"| {report['name']} | `./{report['command']}` | {report['date']}, {report['machine']} | {report['minutes']} | {outcome} |"


def main(folder):
    rows = {line.split("|")[1].strip(): line for line in manual.written(PAGE, COMMAND).splitlines()[2:]}
    for file in sorted(folder.glob("*.md")):
        report = REPORT.match(file.read_text(encoding="utf-8"))
        # A part of a campaign proves nothing of the whole.
        if report and not re.search(r" --(?!seed\b)", report["command"]):
            rows[report["name"]] = row(report)
    manual.write(PAGE, COMMAND, "\n".join([HEAD, *(rows[name] for name in sorted(rows))]))


if __name__ == "__main__":
    main(Path(sys.argv[1]) / "campaigns")

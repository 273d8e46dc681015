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
REPORT = re.compile(r"# Campaign `(?P<name>[\w-]+)`\n\n(?P<date>\S+) \S+, (?P<machine>[^\n]+), (?P<minutes>\S+) minutes\.\n\n"
                    r" {4}(?P<command>[^\n]+)\n.*?\*\*(?P<outcome>Passed|Failed)\.\*\* ?(?P<summary>[^\n]*)", re.S)


def is_part(command):
    """A part of a campaign, or a fuzzer's hunt of less than an hour, proves nothing of the whole."""
    hunt = re.fullmatch(r"tests/fuzz/run \w+ (\d+)", command)
    return int(hunt[1]) < 3600 if hunt else re.search(r" --(?!seed\b)", command)


def row(report):
    outcome = report["outcome"].lower() + (report["summary"] and f": {report['summary']}")
    return f"| {report['name']} | `./{report['command']}` | {report['date']}, {report['machine']} | {report['minutes']} | {outcome} |"


def main(folder):
    rows = {line.split("|")[1].strip(): line for line in manual.written(PAGE, COMMAND).splitlines()[2:]}
    for file in sorted(folder.glob("*.md")):
        report = REPORT.match(file.read_text(encoding="utf-8"))
        if report and not is_part(report["command"]):
            rows[report["name"]] = row(report)
    manual.write(PAGE, COMMAND, "\n".join([HEAD, *(rows[name] for name in sorted(rows))]))


if __name__ == "__main__":
    main(Path(sys.argv[1]) / "campaigns")

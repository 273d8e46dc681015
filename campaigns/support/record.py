"""Puts what the long forms of the campaigns came to into the manuals: a row for each report in the build folder, and
the page of faults that `states` has written.

A campaign that has no report there keeps the row that it has.
"""
import re
import shutil
import sys
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "scripts"))
import manual  # noqa: E402

PAGE, COMMAND = SOURCES / "docs/measurements.md", "./campaigns/run --record"
FAULTS_PAGE = SOURCES / "docs/faults.md"
HEAD = "| Campaign | Command | Date and machine | Minutes | Outcome |\n|---|---|---|---:|---|"
REPORT = re.compile(r"# Campaign `(?P<name>[\w-]+)`\n\n(?P<date>\S+) \S+, (?P<machine>[^\n]+), (?P<minutes>\S+) minutes\.\n\n"
                    r" {4}(?P<command>[^\n]+)\n.*?\*\*(?P<outcome>Passed|Failed)\.\*\* ?(?P<summary>[^\n]*)", re.S)


def row(report):
    outcome = report["outcome"].lower() + (report["summary"] and f": {report['summary']}")
    return f"| {report['name']} | `./{report['command']}` | {report['date']}, {report['machine']} | {report['minutes']} | {outcome} |"


def reports(folder):
    for file in sorted(folder.glob("*.md")):
        if not file.name.endswith("-part.md") and (report := REPORT.match(file.read_text(encoding="utf-8"))):
            yield report


def main(folder):
    rows = {line.split("|")[1].strip(): line for line in manual.written(PAGE, COMMAND).splitlines()[2:]}
    found = {report["name"]: row(report) for report in reports(folder)}
    if not found:
        print(f"campaigns/run: there is no report of a long form in {folder}", file=sys.stderr)
        return 1
    rows |= found
    manual.write(PAGE, COMMAND, "\n".join([HEAD, *(rows[name] for name in sorted(rows))]))
    print("recorded:", ", ".join(found))
    if (page := folder / "states/faults.md").exists():
        shutil.copy(page, FAULTS_PAGE)
    return 0


if __name__ == "__main__":
    sys.exit(main(Path(sys.argv[1]) / "campaigns"))

"""Lets one of the fuzzers in this folder look for faults, and reports for how long it did and over how many inputs."""
import argparse
import re
import resource
import subprocess
import sys
from pathlib import Path

SOURCES = Path(__file__).resolve().parents[2]
sys.path.insert(0, str(SOURCES / "campaigns"))
import campaign  # noqa: E402

INPUTS = re.compile(r"stat::number_of_executed_units: (\d+)")
AN_HOUR = 3600  # seconds
HANG = 120  # seconds for one input: beside other work a fuzzer may stand still for long


def hunt(name, seconds):
    """Gives the status of the fuzzer and how many inputs it went through."""
    corpora = [f"{name}.corpus", SOURCES / "tests/fuzz/corpus" / name]
    command = [f"./fuzz-{name}", f"-max_total_time={seconds}", "-max_len=4096", f"-timeout={HANG}",
               f"-report_slow_units={HANG}", "-print_final_stats=1", f"-artifact_prefix={name}-", *corpora]
    inputs = 0
    with subprocess.Popen(command, stderr=subprocess.PIPE, text=True, errors="replace") as fuzzer:
        for line in fuzzer.stderr:
            print(line, end="")
            if told := INPUTS.match(line):
                inputs = int(told[1])
    return fuzzer.returncode, inputs


def main():
    parser = argparse.ArgumentParser(prog="tests/fuzz/run", description=__doc__)
    parser.add_argument("name")
    parser.add_argument("seconds", type=int)
    options = parser.parse_args()
    options.command = campaign.command(parser, sys.argv[1:])
    options.is_part = options.seconds < AN_HOUR
    report = campaign.Report(f"fuzz-{options.name}", options, "Inputs", "Minutes of a processor")
    status, inputs = hunt(options.name, options.seconds)
    used = resource.getrusage(resource.RUSAGE_CHILDREN)
    minutes = f"{(used.ru_utime + used.ru_stime) / 60:.0f}"
    report.row(f"{inputs:,}", minutes)
    if status:
        report.fault(f"the fuzzer ended with {status}; what it found lies in {Path.cwd()}")
    return report.finish(f"{inputs:,} inputs, {minutes} minutes of a processor")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

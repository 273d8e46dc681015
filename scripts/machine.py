"""Names this machine, for records of measurements and tests."""
import os
import platform
from pathlib import Path


def machine():
    model = next((line.split(":")[1].strip() for line in Path("/proc/cpuinfo").read_text().splitlines()
                  if line.startswith("model name")), platform.machine())
    return f"{os.cpu_count()} x {model}"

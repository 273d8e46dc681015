#!/usr/bin/env python3
"""Checks that includes lead from a layer to one below it, and that the add-in's folders include no library.

  scripts/check-layers.py          fails if an include leads elsewhere
  scripts/check-layers.py --draw   also prints the folders and where their includes lead
"""
import collections
import pathlib
import re
import sys

TOP = pathlib.Path(__file__).resolve().parent.parent
# From the top down. Folders of one layer may not include each other.
LAYERS = [
    ["src"],
    ["src/shell"],
    ["src/exchange"],
    ["src/clock", "src/language", "src/locator", "src/pictures", "src/request"],
    ["src/common"],
    ["src/platform/automation/dbus", "src/platform/data/sqlite", "src/platform/qt", "src/platform/headless"],
    ["src/platform/desktop"],
    ["src/platform/automation", "src/platform/data", "src/platform/forms"],
    ["src/platform/runtime"],
]
RANK = {folder: rank for rank, layer in enumerate(LAYERS) for folder in layer}
IMPLEMENTATIONS = LAYERS[5]  # main.cpp chooses them
ON_A_LIBRARY = IMPLEMENTATIONS[:3]
LIBRARY = re.compile(r"Q[A-Z]|Qt|sqlite3|systemd/|dbus/|fontconfig/")
INCLUDE = re.compile(r'^#include [<"]([^">]+)[">]', re.MULTILINE)


def includes():
    """Each include as (file, folder, name, folder of the included file or None)."""
    for root in ("src", "host"):
        for file in sorted((TOP / root).rglob("*.[hc]*")):
            if file.suffix not in (".h", ".cpp"):
                continue
            for name in INCLUDE.findall(file.read_text()):
                bases = (TOP / "src", TOP, file.parent)
                found = next((base / name for base in bases if (base / name).is_file()), None)
                folder = str(file.parent.relative_to(TOP))
                yield file.relative_to(TOP), folder, name, found and str(found.parent.relative_to(TOP))


def fault(folder, name, target):
    """Why an include is wrong, or None."""
    if folder in RANK and folder != "src" and folder not in ON_A_LIBRARY and LIBRARY.match(name):
        return "a library, outside the folders that may use one"
    if target in (None, folder):
        return None
    if folder == "host":
        return None if target.startswith("src/platform/") else "the companion host may only include the platform"
    if target in IMPLEMENTATIONS and folder != "src":
        return "an implementation, which only main.cpp may include"
    return None if RANK[target] > RANK[folder] else "not below"


def draw(arrows):
    for layer in LAYERS:
        for folder in layer:
            print(f"{folder:30}", " ".join(sorted(arrows[folder], key=RANK.get)))
        print()


faults, arrows = [], collections.defaultdict(set)
for file, folder, name, target in includes():
    if target not in (None, folder):
        arrows[folder].add(target)
    if why := fault(folder, name, target):
        faults.append(f"{file} includes {name}: {why}")
if "--draw" in sys.argv:
    draw(arrows)
sys.exit("\n".join(faults) or None)

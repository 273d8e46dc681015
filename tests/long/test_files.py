"""Databases that are damaged, cut off, swapped while they are open, or out of reach.

The add-in lives as ever, or shows the notice; what a single bit makes of a text is the text from then on.
"""
import os
import random
import subprocess
import unittest

from life import Life
from end_to_end import BUILD, chosen, database_file
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from register import Register
from stage import EndToEndTest

FILES = {"Common.LNG": "en/Common.LNG", "Horalink.lng": "en/Horalink.lng", "Register.mdb": "Register.mdb"}
PAGE, BITS, SAMPLE = 4096, 12, 45
STEPS = ("create", "register", "background", "press 0")  # what the add-in is asked for next when a file is swapped
# Root is above all modes, unless it gives that up.
AS_ANYBODY = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.getuid() == 0 else ()
LOCKER = ("import sqlite3, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
          "d.execute('BEGIN EXCLUSIVE'); print(flush=True); sys.stdin.read()")


def change(file, places, change_byte):
    content = bytearray(file.read_bytes())
    for place in places:
        content[place] = change_byte(content[place])
    file.write_bytes(content)


def invert(file, page):
    change(file, range(page * PAGE, (page + 1) * PAGE), lambda byte: byte ^ 0xFF)


def flip(file, bit):
    change(file, [bit // 8], lambda byte: byte ^ 1 << bit % 8)


def replace(file):
    other = file.with_name("other")
    other.write_bytes(b"This is no database. " * 1000)
    other.rename(file)


def overwrite(file):
    with open(file, "r+b") as opened:
        opened.write(b"\xA5" * file.stat().st_size)


def lock(file):
    """For ever, by another process: the locks of one don't count in it."""
    locker = subprocess.Popen(["/usr/bin/python3", "-c", LOCKER, file], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    locker.stdout.readline()
    return locker.communicate


def put_instead(make):
    def swap(file):
        file.unlink()
        make(file)
    return swap


def make_directory_read_only(file):
    file.parent.chmod(0o500)
    return lambda: file.parent.chmod(0o700)


SWAPS = {"replaced": replace, "removed": os.unlink, "overwritten": overwrite, "emptied": lambda file: os.truncate(file, 0),
         "locked": lock}
DENIALS = {"unreadable": lambda file: file.chmod(0), "read-only": lambda file: file.chmod(0o400),
           "directory read-only": make_directory_read_only, "directory": put_instead(os.mkdir), "pipe": put_instead(os.mkfifo)}
DAMAGES = {"inverted": invert, "bit": flip, "cut": os.truncate}


def all_cases():
    chance = random.Random(1)
    for name, built in FILES.items():
        size = (BUILD / "data" / built).stat().st_size
        for first in range(0, size, PAGE):
            yield name, "inverted", first // PAGE
            yield from ((name, "cut", first + part) for part in (0, PAGE // 2))
            yield from ((name, "bit", first * 8 + chance.randrange(PAGE * 8)) for _ in range(BITS))
        yield from ((name, how, step) for how in SWAPS for step in STEPS)
        yield from ((name, how, "from the start") for how in DENIALS)


class Files(EndToEndTest):
    def live(self, name, how, detail):
        file, undo = database_file(name), []
        # A register that was damaged beforehand is not what the add-in has to answer for.
        register = Register() if name != "Register.mdb" else None
        if how in DAMAGES:
            DAMAGES[how](file, detail)
        elif how in DENIALS:
            undo.append(DENIALS[how](file))
        life = Life(prefix=AS_ANYBODY if how in DENIALS else (),
                    before=lambda step: undo.append(SWAPS[how](file)) if step == detail else None)
        try:
            life.run()
        finally:
            for each in filter(None, undo):
                each()
        if register:
            register.check(self)
        return life

    def test_what_comes_of_it(self):
        good, every = Life().run(), list(all_cases())
        self.assertEqual((good.ill, [title for title, _ in good.boxes]), ("", [stage.CLOCK_READ]))
        for name, how, detail in chosen(random.Random(1).sample(every, SAMPLE), every):
            with self.case(f"{name}/{how}/{detail}"):
                life = self.live(name, how, detail)
                self.assertEqual(life.ill, "")
                is_another_text = how == "bit" and life.steps == good.steps
                self.assertTrue(life.has_notice or is_another_text or not life.differs_from(good), life.differs_from(good))


if __name__ == "__main__":
    unittest.main()

"""Databases that are damaged, cut off, swapped while they are open, or out of reach.

The add-in lives as ever, or shows the notice; what a single bit makes of a text is the text from then on.
"""
import os
import random
import subprocess
import sys

import testbed
from life import Life
from register import Register
from testbed import BUILD, chosen, database_file
from testbed import set_up_without_service as setUpModule  # noqa: F401

FILES = {"Common.LNG": "en/Common.LNG", "Horalink.lng": "en/Horalink.lng", "Register.mdb": "Register.mdb"}
PAGE, BITS, SAMPLE = 4096, 12, 45
STEPS = ("create", "register", "background", "press 0")  # what the add-in is asked for next when a file is swapped
# Root is above all modes, unless it gives that up.
AS_ANYBODY = ("setpriv", "--bounding-set=-dac_override,-dac_read_search") if os.getuid() == 0 else ()
LOCKER = ("import signal, sqlite3, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
          "d.execute('BEGIN EXCLUSIVE'); print(flush=True); signal.pause()")


def change(file, places, mask):
    content = bytearray(file.read_bytes())
    for place in places:
        content[place] ^= mask
    file.write_bytes(content)


def replace(file):
    other = file.with_name("other")
    other.write_bytes(b"This is no database. " * 1000)
    other.rename(file)


def lock(file):
    """For ever, by another process: the locks of one don't count in it."""
    testbed.sandbox.start([sys.executable, "-c", LOCKER, file], stdout=subprocess.PIPE).stdout.readline()


DAMAGES = {"inverted": lambda file, page: change(file, range(page * PAGE, (page + 1) * PAGE), 0xFF),
           "bit": lambda file, bit: change(file, [bit // 8], 1 << bit % 8), "cut": os.truncate}
SWAPS = {"replaced": replace, "removed": os.unlink, "emptied": lambda file: os.truncate(file, 0), "locked": lock,
         "overwritten": lambda file: change(file, range(file.stat().st_size), 0xA5)}
DENIALS = {"unreadable": lambda file: file.chmod(0), "read-only": lambda file: file.chmod(0o400),
           "directory read-only": lambda file: file.parent.chmod(0o500),
           "directory": lambda file: file.unlink() or file.mkdir(), "pipe": lambda file: file.unlink() or os.mkfifo(file)}


def all_cases():
    chance = random.Random(1)
    for name, built in FILES.items():
        for first in range(0, (BUILD / "data" / built).stat().st_size, PAGE):
            yield name, "inverted", first // PAGE
            yield from ((name, "cut", first + part) for part in (0, PAGE // 2))
            yield from ((name, "bit", first * 8 + chance.randrange(PAGE * 8)) for _ in range(BITS))
        yield from ((name, how, step) for how in SWAPS for step in STEPS)
        yield from ((name, how, "start") for how in DENIALS)


class Files(testbed.EndToEndTest):
    def test_what_comes_of_it(self):
        good, every = Life(), list(all_cases())
        self.assertEqual((good.ill, [title for title, _ in good.boxes]), ("", [testbed.CLOCK_READ]))
        for name, how, detail in chosen(random.Random(1).sample(every, SAMPLE), every):
            with self.case(f"{name}/{how}/{detail}"):
                file = database_file(name)
                # A register that was damaged beforehand is not what the add-in has to answer for.
                register = Register() if name != "Register.mdb" else None
                if how in DAMAGES:
                    DAMAGES[how](file, detail)
                life = Life(prefix=AS_ANYBODY if how in DENIALS else (),
                            before=lambda step: step == detail and (SWAPS | DENIALS)[how](file))
                file.parent.chmod(0o700)
                if register:
                    register.check(self)
                is_another_text = how == "bit" and life.steps == good.steps
                difference = life.differs_from(good)
                self.assertEqual(life.ill, "")
                self.assertTrue(life.has_notice or is_another_text or not difference, difference)

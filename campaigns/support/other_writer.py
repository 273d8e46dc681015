"""Another add-in that writes its row of a register again and again: `other_writer.py FILE NAME`. It tells when it
has written for the first time, stops when its standard input is closed, and then tells the number that it has written
last."""
import itertools
import select
import sqlite3
import sys
import time


def write_on(file, name):
    """Leaves the register free for as long as it has held it; the others, who wait for two seconds and then tell their
    user that it is locked, would often not find it free otherwise."""
    for number in itertools.count(1):
        began = time.monotonic()
        database = sqlite3.connect(file, timeout=30)
        with database:
            database.execute("UPDATE Registry SET Version = ? WHERE AppName = ?", [str(number), name])
        database.close()
        if number == 1:
            print("begun", flush=True)
        if select.select([sys.stdin], [], [], time.monotonic() - began)[0]:
            return number


if __name__ == "__main__":
    print(write_on(*sys.argv[1:]))

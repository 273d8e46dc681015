"""A long life: thousands of exchanges, objects, backgrounds and strangers in one process, which stays as it was.

A round is a hundred exchanges, four of them by clicks and the others answers that nobody asked for, of which the calls
are the same but for those up to SendRequest.
"""
import os
import re
import unittest
from collections import namedtuple
from pathlib import Path
from statistics import median

import life  # noqa: F401
from end_to_end import SHARE, OwnHostTest
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from driver import Role
from host import BUS, CALL, CONTRACT, LIMIT, connect, result
from stage import ADD_IN, LOOKUP

ROUNDS, GROWTH = (100, 512) if SHARE else (10, 2048)  # KiB over the second half; the allocator takes some to settle
PART = 3 + ROUNDS // 20  # that a figure is the median of
CLICKS, ANSWERS, OBJECTS, BACKGROUNDS = 4, 96, 10, 4  # the last is the number of sets
MESSAGE_STANDS = 99  # code of an answer after which there is no box

Sample = namedtuple("Sample", "memory descriptors rules")


class LongLife(OwnHostTest):
    def start_all(self):
        self.process, self.host = self.start_add_in(), self.join()
        self.layer = self.host.open()
        self.dialog()

    def round(self, number):
        self.look_up_by_clicks()
        for _ in range(ANSWERS):
            result(self.host.call_back(self.key))
        for _ in range(OBJECTS):
            result(self.host.send(result(self.host.create()), "Object", "Release"))
        self.come_and_go(number)
        result(self.host.invoke(self.layer, "SetBackGround", CALL, number % BACKGROUNDS))

    def look_up_by_clicks(self):
        stage.driver.aim(stage.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON))
        for click in range(CLICKS):
            self.host.code = 0 if click == CLICKS - 1 else MESSAGE_STANDS
            before = len(self.host.calls)
            stage.driver.click_here()
            self.wait_for(lambda: any(call.startswith("LogOut") for _, call in self.host.calls[before:]), "the log-out")
            self.give_back(self.host.clients[self.key])
        self.close_box(stage.CLOCK_READ)
        self.host.code = MESSAGE_STANDS

    @property
    def key(self):
        return f"L{len(self.host.clients)}"

    def give_back(self, target):
        self.assertEqual(result(self.host.send(target, "Object", "Release")), None)

    def come_and_go(self, number):
        """A stranger creates objects, holds another's, and is away before it can have heard of that."""
        stranger = connect(self.address)
        for _ in range(number % 3 + 1):
            stranger.call(stage.ADD_IN_CLASS, "/Factory", CONTRACT + "Factory", "CreateInstance", None, None, 0, -1, None, None)
            stranger.call(*self.layer, CONTRACT + "Object", "Retain", None, None, 0, -1, None, None)
        stranger.flush_sync()
        stranger.close_sync()

    # --- what is measured -------------------------------------------------------------------------

    def sample(self):
        told = Path(f"/proc/{self.process.pid}/smaps_rollup").read_text(encoding="utf-8")
        memory = sum(map(int, re.findall(r"^(?:Private_Dirty|Swap): +(\d+) kB", told, re.M)))
        about = self.host.ask(BUS, "/org/freedesktop/DBus", f"{BUS}.Debug.Stats", "GetConnectionStats", self.layer[0])
        return Sample(memory, len(os.listdir(f"/proc/{self.process.pid}/fd")), about["MatchRules"])

    def test_long_life(self):
        self.start_all()
        samples = []
        for number in range(ROUNDS):
            self.round(number)
            # Nobody holds the dialog or a record any more, and the strangers nothing.
            self.wait_for(lambda: self.host.objects(self.layer) == {self.layer[1]}, "all but the first object to go")
            samples.append(self.sample())
        self.wait_for(lambda: +self.host.kept == {"/Host": 1}, f"the host's objects to be given back: {self.host.kept}")
        middle, end = (Sample(*map(median, zip(*samples[at:at + PART]))) for at in (ROUNDS // 2, ROUNDS - PART))
        self.assertLessEqual(end.memory, middle.memory + GROWTH)
        self.assertEqual(end[1:], middle[1:])
        self.host.send(self.layer, "Object", "Release")
        self.assertEqual(self.process.wait(LIMIT), 0)
        self.wait_for(lambda: not +self.host.kept, "the last releases, which arrive after the end")


if __name__ == "__main__":
    unittest.main()

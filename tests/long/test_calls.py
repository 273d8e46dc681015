"""The n-th call of SQLite, sd-bus or the disk fails, for every n of a life of the add-in.

Each life ends as if nothing had been, or in a notice, an error for the host, a line on standard error; after a failure on
the bus the next lookup succeeds, or the process has ended by itself. There is no crash, hang or damaged register.
"""
import random

from end_to_end import chosen
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from life import LOOKUP, Life, failing
from register import NEW, Register

SAMPLE = {"file": 5, "full": 3, "sqlite": 12, "bus": 16}


class FailingLife(Life):
    """`marks` has the number of calls before each step, `failed` the call that failed with its code."""

    def __init__(self, family, number):
        stage.arrangement.install()
        self.family, self.number, self.marks, self.register = family, number, {}, Register()
        self.trace = stage.arrangement.folder / "trace"
        self.trace.write_text("")
        super().__init__(before=self.mark, presses=(LOOKUP, LOOKUP), **failing(f"{family}:{number}", self.trace))
        self.calls = self.trace.read_text().splitlines()
        self.failed = next((call for call in self.calls if " " in call), "")

    def mark(self, step):
        self.marks.setdefault(step, self.trace.read_bytes().count(b"\n"))


class Calls(stage.EndToEndTest):
    def test_what_comes_of_it(self):
        good = {family: FailingLife(family, 0) for family in SAMPLE}
        sample, every = [], []
        for family, life in good.items():
            self.assertEqual((life.ill, life.status, life.errors, life.failed), ("", 0, "", ""))
            self.assertEqual([title for title, _ in life.boxes], [stage.CLOCK_READ] * 2)
            # The second lookup repeats the first: no call of it fails. What is one after the last call fails nothing.
            numbers = [*range(1, life.marks["press 1"] + 1), *range(life.marks["release"] + 1, len(life.calls) + 2)]
            every += [(family, number) for number in numbers]
            sample += random.Random(1).sample(every[-len(numbers):], SAMPLE[family])
        for case in chosen(sample, every):
            life = FailingLife(*case)
            with self.subTest("/".join(map(str, case)), failed=life.failed):
                self.judge(life, good[case[0]])

    def judge(self, life, good):
        self.assertEqual(life.ill, "")
        life.register.check(self)
        if any(step.startswith("show") for step in life.steps) and not life.has_notice:
            self.assertEqual(life.register.version(), NEW)
        difference = life.differs_from(good)
        if difference and life.family == "bus":
            self.judge_bus(life, good, difference)
        elif difference and not life.has_notice:
            # Without the names of a set, the pictures are those of the first set, without a message.
            self.assertIn(life.number, range(good.marks["background"] + 1, good.marks["press 0"] + 1), difference)

    def judge_bus(self, life, good, difference):
        self.assertTrue(life.failed, difference)
        self.assertRegex(life.errors, r"^(\S*horalink: [^\n]+\n)?$")
        if life.ended_early:
            # Without the bus nobody is left to hear of it.
            self.assertTrue(life.errors or life.number > good.marks["create"] or "sd_bus_process" in life.failed, difference)
        elif any(step.startswith("press") for step in life.steps):
            is_last = life.number > life.marks.get("press 1", life.number)
            self.assertTrue(good.steps[-1] in life.steps or is_last, difference)
        else:
            self.assertTrue(any("org." in step or step == "register: True" for step in life.steps), difference)

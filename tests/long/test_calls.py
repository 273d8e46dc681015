"""The n-th call of SQLite, sd-bus or the disk fails, for every n of a life of the add-in.

Each life ends as if nothing had been, or in a notice, an error for the host, a line on standard error; after a failure on
the bus the next lookup succeeds, or the process has ended by itself. There is no crash, hang or damaged register.
"""
import random
import re
import unittest

from life import LOOKUP, Life
from end_to_end import BUILD, chosen
from end_to_end import open_own_stage as setUpModule  # noqa: F401

import stage
from register import NEW, Register
from stage import EndToEndTest

SAMPLE = {"file": 5, "full": 3, "sqlite": 12, "bus": 16}
ONE_LINE = re.compile(r"(\S*horalink: [^\n]+\n)?")


class FailingLife(Life):
    """`marks` has the number of calls before each step, `failed` the call that failed with its code."""

    def __init__(self, family, number):
        stage.arrangement.install()
        self.family, self.number, self.marks = family, number, {}
        self.trace = stage.arrangement.folder / "trace"
        self.trace.write_text("")
        super().__init__({"LD_PRELOAD": str(BUILD / "tests/long/failing-calls.so"),
                          "FAILING_CALLS": f"{family}:{number}", "FAILING_CALLS_TRACE": str(self.trace)},
                         before=self.mark, presses=(LOOKUP, LOOKUP))
        self.register = Register()
        self.run()
        self.calls = self.trace.read_text().splitlines()
        self.failed = next((call for call in self.calls if " " in call), "")

    def mark(self, step):
        self.marks.setdefault(step, self.trace.read_bytes().count(b"\n"))


class Calls(EndToEndTest):
    @classmethod
    def setUpClass(cls):
        cls.good = {family: FailingLife(family, 0) for family in SAMPLE}

    def cases(self, family):
        """The second lookup repeats the first, and no call of it fails. What is one behind the last call fails nothing."""
        good = self.good[family]
        first, last = good.marks["press 1"], good.marks["release"]
        return [(family, number) for number in range(1, len(good.calls) + 2) if not first < number <= last]

    def test_what_comes_of_it(self):
        sample, every = [], []
        for family, count in SAMPLE.items():
            good, cases = self.good[family], self.cases(family)
            self.assertEqual((good.ill, good.status, good.errors, good.failed), ("", 0, "", ""))
            self.assertEqual([title for title, _ in good.boxes], [stage.CLOCK_READ] * 2)
            sample += random.Random(1).sample(cases, count)
            every += cases
        for case in chosen(sample, every):
            life = FailingLife(*case)
            with self.subTest("/".join(map(str, case)), failed=life.failed):
                self.judge(life, self.good[case[0]])

    def judge(self, life, good):
        self.assertEqual(life.ill, "")
        life.register.check(self)
        if any(step.startswith("show") for step in life.steps) and not life.has_notice:
            self.assertEqual(life.register.version(), NEW)
        difference = life.differs_from(good)
        if difference and life.family == "bus":
            self.judge_bus(life, good, difference)
        elif difference and not life.has_notice:
            # Without the names of a set, the pictures are those of the first set: nobody is told.
            self.assertIn(life.number, range(good.marks["background"] + 1, good.marks["press 0"] + 1), difference)

    def judge_bus(self, life, good, difference):
        self.assertTrue(life.failed, difference)
        self.assertRegex(life.errors, rf"^{ONE_LINE.pattern}$")
        if life.ended_early:
            # Without the bus there is nobody left to be told.
            self.assertTrue(life.errors or life.number > good.marks["create"] or "sd_bus_process" in life.failed, difference)
        elif any(step.startswith("press") for step in life.steps):
            is_last = life.number > life.marks.get("press 1", life.number)
            self.assertTrue(good.steps[-1] in life.steps or is_last, difference)
        else:
            self.assertTrue(any("org." in step or step == "register: True" for step in life.steps), difference)


if __name__ == "__main__":
    unittest.main()

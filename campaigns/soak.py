"""A long life: 100,000 exchanges, 10,000 objects and 1,000 backgrounds in one process, which stays as it was.

A round is a hundred exchanges, ten creations and releases of cOLELayer and a new background. A click, its timer and
the wait take a fifth of a second, so that four exchanges of a round are asked for by real clicks, up to SendRequest
and the answer to it; the last of these brings its box, which is closed by a click too. The other answers are brought
unasked: CallBack, the reading of the answer, ShowResults, ShowMessage, ShowCode and LogOut are the same then.

Behind each round the add-in is measured: private memory, open descriptors, rules for signals at the bus, and the
time that an exchange takes, to the clock and to the processor, of which the second hangs less on what else the
computer does. A row has the medians over a tenth of the rounds.
"""
import os
import re
import sys
import time
from collections import namedtuple
from pathlib import Path
from statistics import median

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
from arrangement import Arrangement  # noqa: E402
from contract import METHOD  # noqa: E402
from driver import Driver, Role  # noqa: E402
from life import BUS  # noqa: E402
from peers import Operator  # noqa: E402
from plain_life import MESSAGE_STANDS, SUCCESS, PlainLife  # noqa: E402
from stage import ADD_IN, LOOKUP  # noqa: E402

ROUNDS, SHORT_ROUNDS = 1000, 10
CLICKS, ANSWERS, OBJECTS, BACKGROUNDS = 4, 96, 10, 4  # of a round; the last is the number of sets
PARTS = 10
GROWTH, SHORT_GROWTH = 512, 2048  # KiB, over the second half of the rounds; the allocator takes some to settle
SLOWER = 2  # times, the last tenth against the first; other work on the computer makes 1.5 of it

Sample = namedtuple("Sample", "memory descriptors rules clicked answered busy")


class LongLife(PlainLife):
    """One process, measured behind each round."""

    def run(self, rounds):
        """Yields the medians of each part, as soon as it is over."""
        self.open()
        parts = min(PARTS, rounds)
        ends = [rounds * part // parts for part in range(parts + 1)]
        for begin, end in zip(ends, ends[1:]):
            samples = [self.round_of(number) for number in range(begin, end)]
            yield end, Sample(*map(median, zip(*samples)))
        self.check_objects()
        self.check_calls(rounds)
        self.release_all()

    def round_of(self, number):
        busy = self.processor_time()
        began = time.monotonic()
        self.look_up()
        began_answers = time.monotonic()
        for _ in range(ANSWERS):
            self.answer(MESSAGE_STANDS)
        ended = time.monotonic()
        busy = self.processor_time() - busy
        for _ in range(OBJECTS):
            self.create_and_release()
        self.tell(self.anchor, self.layers[0], "SetBackGround", METHOD, [("n", number % BACKGROUNDS)], "SetBackGround")
        self.settle()
        return Sample(self.private_memory(), len(os.listdir(f"/proc/{self.process.pid}/fd")), self.rules(),
                      (began_answers - began) / CLICKS, (ended - began_answers) / ANSWERS, busy / (CLICKS + ANSWERS))

    # --- what is done -----------------------------------------------------------------------------

    def look_up(self):
        """All clicks of a round, with the pointer on the button until the box comes."""
        button = self.operator.driver.find(ADD_IN, LOOKUP, Role.PUSH_BUTTON)
        self.operator.driver.aim(button)
        for click in range(CLICKS):
            self.request()
            self.end_request(SUCCESS if click == CLICKS - 1 else MESSAGE_STANDS)
        self.wait(self.operator.close_boxes, "the answer's box")
        self.wait(lambda: not self.operator.boxes(), "the answer's box to close")

    def create_and_release(self):
        self.create(self.anchor)
        self.settle()
        self.release(self.anchor, self.layers.pop().path)
        self.settle()

    # --- what is measured -------------------------------------------------------------------------

    def private_memory(self):
        """KiB that the process has written to. The files that it maps may be another's as well, at times."""
        told = Path(f"/proc/{self.process.pid}/smaps_rollup").read_text(encoding="utf-8")
        return sum(int(size) for size in re.findall(r"^(?:Private_Dirty|Swap): +(\d+) kB", told, re.M))

    def rules(self):
        """Rules for the signals that the bus sends to the add-in; 0 where it doesn't tell."""
        told = self.anchor.ask(BUS, "/org/freedesktop/DBus", f"{BUS}.Debug.Stats", "GetConnectionStats", "s",
                               (self.owner,))
        return 0 if told.error else dict(told.body[0])["MatchRules"][1]

    def check_calls(self, rounds):
        """As many as were asked for."""
        clicks = rounds * CLICKS
        wanted = {"SendRequest": clicks, "LogOut": rounds * (CLICKS + ANSWERS),
                  "ShowMessage": 2 * clicks + rounds * (CLICKS + ANSWERS)}
        seen = {name: self.host.calls[name] for name in wanted}
        if seen != wanted:
            self.report.fault(f"the host was called {seen}, not {wanted}")


def judge(report, parts, is_short):
    first, middle, last = parts[0], parts[len(parts) // 2], parts[-1]
    if last.memory > middle.memory + (SHORT_GROWTH if is_short else GROWTH):
        report.fault(f"the memory grew by {last.memory - middle.memory:,.0f} KiB over the second half")
    for what in ("descriptors", "rules"):
        if getattr(last, what) > getattr(middle, what):
            report.fault(f"there are {getattr(last, what):.0f} {what}, half way there were {getattr(middle, what):.0f}")
    if not is_short and last.busy > SLOWER * first.busy:
        report.fault(f"an exchange takes the processor {last.busy * 1000:.2f} ms, in the beginning it took "
                     f"{first.busy * 1000:.2f}")


def live(life, report, options):
    parts = []
    for rounds, part in life.run(options.rounds):
        parts.append(part)
        report.row(f"{rounds * (CLICKS + ANSWERS):,}", f"{rounds * OBJECTS:,}", f"{rounds:,}", f"{part.memory:,.0f}",
                   f"{part.descriptors:.0f}", f"{part.rules:.0f}", f"{part.clicked * 1000:.0f}",
                   f"{part.answered * 1000:.1f}", f"{part.busy * 1000:.2f}")
    judge(report, parts, options.short)


def main():
    parser = campaign.arguments("soak", __doc__)
    parser.add_argument("--rounds", type=campaign.positive,
                        help=f"how many (default {ROUNDS:,}; {SHORT_ROUNDS} with --short)")
    options = campaign.parse(parser)
    options.rounds = options.rounds or (SHORT_ROUNDS if options.short else ROUNDS)
    report = campaign.Report("soak", options, "Exchanges", "Objects", "Backgrounds", "Memory (KiB)", "Descriptors",
                             "Rules", "A click (ms)", "An unasked answer (ms)", "Processor (ms)")
    with Arrangement(campaign.BUILD, campaign.BUILD / "campaigns/soak", own_display=True).lay_out() as arrangement:
        life = LongLife(arrangement, Operator(Driver(arrangement)), report, options.seed,
                        arrangement.folder / "errors.txt")
        with life.lived("long life"):
            live(life, report, options)
    return report.finish(f"{options.rounds * (CLICKS + ANSWERS):,} exchanges")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

"""The bus as an enemy: a random walk over all objects, members, arguments and references, then the extremes.

Each life is a process of the add-in, started here so that its exit status is seen, and as many peers as come and go,
each with a connection of its own. Calls go out in rounds of some hundred at once. What each has to come to is foretold
from the add-in's own introspection and from the conversions that the contract tells (support/contract.py), and records
are kept in mind, so that a read has to give what was written last: what introspection lists has to take the listed
signature, and what it doesn't list has to be refused. A call without an answer for a minute is a hang. A seed draws
the same peers and calls again; in which order the calls of different peers arrive is the daemon's affair.

Boxes that would wait for an operator: the host of the walk answers whatever it is asked, late at times but always, so
that no box of a wait comes up by itself. The boxes of answers do come up. Between two rounds, and whenever nothing has
come for a second, the operator of support/peers.py looks at the screen and clicks each open box away.
"""
import sys
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
import extremes  # noqa: E402
from arrangement import Arrangement  # noqa: E402
from contract import ANY, METHOD, PUT  # noqa: E402
from driver import Driver  # noqa: E402
from peers import HOST, Operator  # noqa: E402
from walk import Walk  # noqa: E402
from life import Lost  # noqa: E402

CALLS, SHORT_CALLS = 1_000_000, 30_000
LIVES, SHORT_LIVES = 8, 4
CALLS_IN_A_ROUND = 500
RECORDS = 3  # that the walk has at its beginning, by as many requests
LOOKUP_EVERY = 20_000
ENDS = ("released", "left", "window closed", "count taken down")
QUIET = 0.5  # seconds; the box of an answer comes a tenth of a second behind it
# What the process may grow by from its middle to its end: the allocator's pieces, and pictures of the last set.
GROWTH = 3072


class WalkingLife(Walk):
    """The course of one life, from the first object to the last reference."""

    def run(self, calls, end):
        self.start()
        for _ in range(RECORDS):
            self.lookup()
        next_lookup, first, sizes = LOOKUP_EVERY, self.asked, []
        for quarter in (1, 2, 3, 4):
            while self.asked - first < calls * quarter / 4:
                self.round(CALLS_IN_A_ROUND)
                if self.asked - first > next_lookup:
                    next_lookup += LOOKUP_EVERY
                    self.lookup()
            self.check_objects()
            sizes.append(self.memory())
        self.check_growth(sizes)
        self.host.honest = True
        self.check_count()
        {"released": self.release_all, "left": self.leave_all, "window closed": self.close_window,
         "count taken down": self.take_count_down}[end]()
        self.wait_for_end()
        return sizes

    # --- a request --------------------------------------------------------------------------------

    def invoke(self, peer, target, name, kind, *arguments):
        self.member(peer, target, name, kind, list(arguments))
        self.settle()

    def be_ready(self):
        """The dialog is there for a click: with a host, a name and no box before it."""
        self.host.honest, self.nesting, self.slow = True, 9, 9
        self.invoke(self.anchor, self.layers[0], "RegisterPBX", METHOD, ("s", "Main Office"),
                    ("(so)", (self.host.name, HOST)), ("n", 1))
        self.invoke(self.anchor, self.layers[0], "Visible", PUT, ("b", True))
        quiet = time.monotonic() + QUIET

        def is_quiet():
            nonlocal quiet
            if self.operator.boxes():
                self.operator.close_boxes()
                quiet = time.monotonic() + QUIET
            return time.monotonic() > quiet
        self.wait(is_quiet, "all boxes to close")

    def lookup(self):
        """A whole lookup, whose record the host keeps; as it ends, the dishonest host goes on."""
        self.be_ready()
        self.host.record = None
        told = self.host.calls["ShowMessage"] + 2
        self.operator.press()
        # Behind the second message the dialog waits for its answer; one that came before would be none.
        try:
            self.wait(lambda: self.host.record and self.host.calls["ShowMessage"] >= told, "a record")
        except Lost:
            self.operator.driver.picture(self.arrangement.folder / "no-record.png")
            raise
        self.settle()
        if "cListRequest" not in self.described:
            self.describe("cListRequest", self.host.record[1])
            self.records[0].described = self.described["cListRequest"]
        while len(self.records) > RECORDS + 3:
            oldest = self.records[0]
            for peer in self.peers:
                while peer.held[oldest.path]:
                    self.release(peer, oldest.path)
            self.bury()
        closed = sum(self.operator.closed.values())
        answer = "(so)", (self.host.name, self.host.response())
        self.member(self.host, self.dialog, "CallBack", METHOD, [answer])
        self.settle()
        self.wait(lambda: self.operator.close_boxes() or sum(self.operator.closed.values()) > closed,
                  "the answer's box")
        self.wait(lambda: not self.operator.boxes(), "the answer's box to close")
        self.host.honest = False

    # --- what must hold at the end ----------------------------------------------------------------

    def check_growth(self, sizes):
        quarter, half, _, last = sizes
        if last - half > GROWTH:
            self.report.fault(f"life {self.seed}: grew from {quarter} KiB over {half} to {last}")

    def check_count(self):
        """The dialog counts as many objects as are held, after all that was created, left and given back."""
        wanted = len(self.layers) + self.extra
        self.tell(self.host, self.dialog, "IncrementCount", METHOD, [], "IncrementCount")
        self.tell(self.host, self.dialog, "DecrementCount", METHOD, [], "DecrementCount of the end",
                  result=("n", wanted), arguments=[])
        for i in range(self.extra):
            self.tell(self.host, self.dialog, "DecrementCount", METHOD, [], "DecrementCount to put right",
                      result=("n", wanted - i - 1), arguments=[])
        self.extra = 0
        self.settle()

    def release_all(self):
        """Every reference, the first object's behind all others."""
        last = self.layers[0].path
        for peer in (*self.peers[2:], self.host, self.anchor):
            for path in peer.held:
                while peer.held[path] > (peer is self.anchor and path == last):
                    self.release(peer, path)
        self.settle()
        self.release(self.anchor, last)
        self.settle()

    def leave_all(self):
        for peer in list(self.peers):
            if peer is not self.host:
                peer.leave()
        self.peers = [self.host]
        for path in list(self.host.held):
            while self.host.held[path]:
                self.release(self.host, path)
        self.host.pending.clear()

    def close_window(self):
        """The operator closes the window in the midst of calls; what is called behind that may fail, but is answered.

        A dialog that is shown again begins to count anew, so that any of the objects may turn out to be the last.
        """
        self.be_ready()
        before = self.host.calls["UnloadChild"]
        self.operator.close_window()
        self.wait(lambda: self.host.calls["UnloadChild"] > before, "UnloadChild")
        for i in range(200):
            layer = self.random.choice(self.layers)
            for name, kind, arguments in (("Visible", PUT, [("b", True)]), ("SetBackGround", METHOD, [("n", i % 4)])):
                if name == "Visible" or i == 0:
                    self.tell(self.anchor, layer, name, kind, arguments, f"{name} without a window", number=ANY)
        self.settle()
        self.leave_all()

    def take_count_down(self):
        """A stranger takes objects off the count that aren't his; the next one to go then ends the process."""
        stranger = self.join("stranger")
        for i in range(len(self.layers) - 1):
            self.tell(stranger, self.dialog, "DecrementCount", METHOD, [], "DecrementCount of a stranger",
                      result=("n", len(self.layers) - i - 1), arguments=[])
        self.create(stranger)
        self.settle()
        self.tell(stranger, self.dialog, "DecrementCount", METHOD, [], "DecrementCount of a stranger",
                  result=("n", 1), arguments=[])
        self.settle()
        self.release(stranger, self.layers[-1].path)
        stranger.pending.clear()


def walk(arrangement, operator, report, options):
    seen = {}
    lives = SHORT_LIVES if options.short else LIVES
    for number in range(lives):
        end = ENDS[number % len(ENDS)]
        seed = options.seed * 100 + number
        life = WalkingLife(arrangement, operator, report, seed, arrangement.folder / "errors.txt")
        sizes = []
        try:
            sizes = life.run(options.calls // lives, end)
        except (Lost, TimeoutError, ConnectionError) as lost:
            report.fault(f"life {life.seed}, step {life.steps}: {lost}{life.how_it_ended()}")
        finally:
            life.close()
        for key, count in life.seen.items():
            seen[key] = seen.get(key, 0) + count
        report.row(f"life {number + 1}: {end}", f"{life.asked:,} calls, {sum(life.host.calls.values()):,} of the host, "
                   f"{life.born} peers, {life.host.logins} logins, longest answer {life.longest:.2f} s",
                   " → ".join(f"{size / 1024:.1f}" for size in sizes) + " MiB")
        if report.faults:
            return
    check_coverage(report, life.described, seen)


def stand_extremes(arrangement, operator, report, options):
    life = WalkingLife(arrangement, operator, report, options.seed * 100 + 99, arrangement.folder / "errors.txt")
    try:
        extremes.run(life, report, options)
    except (Lost, TimeoutError, ConnectionError) as lost:
        report.fault(f"life {life.seed}, step {life.steps}: {lost}{life.how_it_ended()}")
    finally:
        life.close()


def check_coverage(report, described, seen):
    """Each member that introspection lists was reached both ways."""
    for name, each in described.items():
        ways = ("late", "typed") if each.typed else ("late",)
        missed = [f"{way} {slot.typed_name}" for slot in each.slots for way in ways
                  if not seen.get((name, way, slot.typed_name, slot.is_write))]
        if missed:
            report.fault(f"{name}: the walk never reached {', '.join(missed)}")
        counts = {way: sum(count for key, count in seen.items() if key[0] == name and key[1] == way)
                  for way in ("late", "typed", "late, refused")}
        report.row(f"members of {name}", f"{len(each.slots)} forms: {counts['late']:,} late-bound calls and "
                   f"{counts['typed']:,} typed ones taken, {counts['late, refused']:,} refused", "")


def main():
    parser = campaign.arguments("walker", __doc__)
    parser.add_argument("--calls", type=campaign.positive,
                        help=f"calls of the walk (default {CALLS:,}; {SHORT_CALLS:,} in the short form)")
    parser.add_argument("--only", choices=("walk", "extremes"), help="leave the other half out")
    options = campaign.parse(parser)
    options.calls = options.calls or (SHORT_CALLS if options.short else CALLS)
    report = campaign.Report("walker", options, "What", "Calls", "Memory")
    with Arrangement(campaign.BUILD, campaign.BUILD / "campaigns/walker", own_display=True).lay_out() as arrangement:
        operator = Operator(Driver(arrangement))
        if options.only != "extremes":
            walk(arrangement, operator, report, options)
        if options.only != "walk" and not report.faults:
            stand_extremes(arrangement, operator, report, options)
    return report.finish(f"{options.calls:,} calls")


if __name__ == "__main__":
    sys.exit(campaign.run(main))

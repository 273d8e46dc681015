"""Time as an enemy: midnights, leap days, ends of years, summer time, zones, and a clock that jumps under the dialog.

The add-in runs on a clock of its own (libfaketime, which Debian's package faketime brings); its timers, the bus and
the display stay on the computer's. At each moment it starts shortly before it, is set back to that point when the
dialog is open, and goes over the moment under the eyes of the operator. Then the clock of one process jumps: while a
click is armed, with a request out, and back again. Each time date and time in the dialog and the items of an update
have to be those that Python's calendar gives for the zone; the waits keep their limits, and a processor that is kept
busy tells of timers that make up for what was jumped over.
"""
import os
import random
import sys
import time
from collections import namedtuple
from datetime import datetime
from pathlib import Path
from zoneinfo import ZoneInfo

sys.path.insert(0, str(Path(__file__).parent / "support"))
import campaign  # noqa: E402
from arrangement import Arrangement, wait_for  # noqa: E402
from contract import GET  # noqa: E402
from driver import LIMIT, Driver, GLib, Role  # noqa: E402
from life import Lost  # noqa: E402
from peers import OBJECT, Operator  # noqa: E402
from plain_life import MESSAGE_STANDS, PlainLife  # noqa: E402
from stage import ADD_IN, UPDATE  # noqa: E402

LIBRARY = next(Path("/usr/lib").glob("*/faketime/libfaketimeMT.so.1"), None)
LEAD = 4  # seconds ahead of a moment
LAG = 5  # seconds that the dialog may be behind on a busy computer
WAIT_LIMIT = 20  # seconds until a box offers to give up a request
BUSY = 0.5  # of the time; a clock that ticks once a second takes hardly any
SECTIONS = ("Hour", "Minute", "Second", "AM or PM")
SAMPLE = 3

Moment = namedtuple("Moment", "what zone ahead")
MOMENTS = [Moment(what, zone, datetime.fromisoformat(ahead)) for what, zone, ahead in (
    ("midnight", "UTC", "2026-11-25 23:59:56"),
    ("noon", "UTC", "2026-11-25 11:59:56"),
    ("end of a month of 31 days", "UTC", "2027-01-31 23:59:56"),
    ("into a leap day", "UTC", "2028-02-28 23:59:56"),
    ("out of a leap day", "UTC", "2028-02-29 23:59:56"),
    ("no leap day", "UTC", "2027-02-28 23:59:56"),
    ("leap day of a century", "UTC", "2000-02-28 23:59:56"),
    ("turn of the century", "UTC", "1999-12-31 23:59:56"),
    ("seconds beyond 31 bits", "UTC", "2038-01-19 03:14:03"),
    ("last day that is taken", "UTC", "2099-12-31 12:00:00"),
    ("summer time begins", "Europe/Berlin", "2027-03-28 01:59:56"),
    ("summer time ends", "Europe/Berlin", "2026-10-25 02:59:56"),
    ("a day without midnight", "America/Sao_Paulo", "2018-11-03 23:59:56"),
    ("a day that isn't there", "Pacific/Apia", "2011-12-29 23:59:56"),
    ("half an hour of summer time", "Australia/Lord_Howe", "2027-04-04 01:59:56"),
    ("the earliest zone", "Pacific/Kiritimati", "2026-12-31 23:59:56"),
    ("the latest zone", "Etc/GMT+12", "2026-12-31 23:59:56"),
    ("quarters of an hour", "Asia/Kathmandu", "2026-12-31 23:59:56"))]

Jump = namedtuple("Jump", "what seconds")
HOUR, DAY = 3600, 86400
JUMPS = [Jump("an hour ahead", HOUR), Jump("a day and a half back", -36 * HOUR), Jump("40 days ahead", 40 * DAY),
         Jump("a second back", -1), Jump("70 years ahead", 25567 * DAY), Jump("27 years back", -9862 * DAY)]


class ClockedLife(PlainLife):
    """A process with a clock that can be set."""

    def begin(self, zone, at):
        self.zone = ZoneInfo(zone)
        self.setting = self.arrangement.folder / "clock"
        self.set(at)
        self.open({**self.arrangement.environment, "TZ": zone, "LD_PRELOAD": str(LIBRARY), "NO_FAKE_STAT": "1",
                   "FAKETIME_TIMESTAMP_FILE": str(self.setting), "FAKETIME_NO_CACHE": "1",
                   "FAKETIME_DONT_FAKE_MONOTONIC": "1"})
        driver = self.operator.driver
        self.sections = [driver.find(ADD_IN, name, Role.TEXT) for name in SECTIONS]
        self.day = driver.calendar(ADD_IN)

    def set(self, at):
        """Sets the clock, in seconds since 1970. The file must never be read half written."""
        self.offset, self.since = at - time.time(), int(at)
        new = self.setting.with_suffix(".new")
        new.write_text(f"{self.offset:+.6f}", encoding="ascii")
        os.replace(new, self.setting)

    def now(self):
        return time.time() + self.offset

    # --- what is shown ----------------------------------------------------------------------------

    def shown(self):
        try:
            self.day.clear_cache()
            return [self.day.get_name(), *map(self.operator.driver.value, self.sections)]
        except GLib.Error:
            return None

    def possible(self, since):
        """The local times that may be shown since a second: none from before the clock was set."""
        first = max(self.since, int(since) - LAG)
        return [datetime.fromtimestamp(second, self.zone) for second in range(first, int(self.now()) + 1)]

    def wait_until_right(self):
        """Until the dialog shows the time that it is."""
        def look():
            self.pump(0)
            before, shown = self.now(), self.shown()
            return shown in [as_shown(each) for each in self.possible(before)]
        try:
            wait_for(look, LIMIT, "the right time")
        except TimeoutError as error:
            raise Lost(f"{error}; shown is {self.shown()}, it is {as_shown(self.possible(self.now())[-1])}") from error

    # --- what is sent -----------------------------------------------------------------------------

    def aim(self):
        self.operator.driver.aim(self.operator.driver.find(ADD_IN, UPDATE, Role.PUSH_BUTTON))

    def sent(self):
        """The values of the three items of the record, as the host reads them."""
        values = []
        for index in range(3):
            self.send(self.host, (*self.host.record, OBJECT, "Invoke", "sqav", ("SecondData", GET, [("n", index)])),
                      "SecondData", answered=lambda answer: values.append(answer.body[0][1]))
            self.settle()
        return values

    def update(self):
        """An update that has to send the time that it is."""
        self.aim()
        before = self.now()
        self.request()
        self.check_sent(self.possible(before))
        self.end_request(MESSAGE_STANDS)

    def check_sent(self, times):
        sent = self.sent()
        if sent not in [as_sent(each) for each in times]:
            raise Lost(f"an update sent {sent}, it is {as_sent(times[-1])}")


def as_shown(moment):
    half = "AM" if moment.hour < 12 else "PM"
    return [f"{moment:%A}, {moment.day} {moment:%B} {moment.year}", f"{moment.hour % 12 or 12:02}", f"{moment:%M}",
            f"{moment:%S}", half]


def as_sent(moment):
    return [f"{moment.year}", f"{moment:%m%d}0{moment.isoweekday() % 7}", f"{moment:%H%M%S}"]


def go_over(life, moment):
    """Returns what the dialog showed on either side."""
    ahead = moment.ahead.replace(tzinfo=ZoneInfo(moment.zone)).timestamp()
    life.begin(moment.zone, ahead)
    life.wait_until_right()
    life.set(ahead)
    life.wait_until_right()
    before = life.shown()
    life.wait(lambda: life.now() >= ahead + LEAD, "the moment")
    life.since = int(ahead + LEAD)
    life.wait_until_right()
    behind = life.shown()
    life.update()
    life.release_all()
    return before, behind


def jump(life, seconds):
    """While a click is armed, so that the request is out when the dialog shows the new time."""
    life.aim()
    began, busy, before = time.monotonic(), life.processor_time(), life.now()
    times = []

    def set_clock():
        times.extend(life.possible(before))
        life.set(life.now() + seconds)
    life.request(set_clock)
    life.check_sent(times + life.possible(life.now()))
    life.wait_until_right()
    boxes = life.operator.boxes()
    if boxes and time.monotonic() - began < WAIT_LIMIT:
        raise Lost(f"the boxes {boxes} came up before their time")
    life.end_request(MESSAGE_STANDS)
    life.update()
    share = (life.processor_time() - busy) / (time.monotonic() - began)
    if share > BUSY:
        raise Lost(f"the processor is busy for {share:.0%} of the time")
    return share


def life_of(arrangement, operator, report, options, what):
    log = arrangement.folder / "errors.txt"
    return ClockedLife(arrangement, operator, report, options.seed, log).lived(what)


def main():
    parser = campaign.arguments("clock", __doc__)
    parser.add_argument("--only", choices=[each.what for each in MOMENTS] + ["jumps"], metavar="WHAT",
                        help="this moment, or 'jumps'")
    options = campaign.parse(parser)
    report = campaign.Report("clock", options, "What", "Zone", "Before", "Behind")
    if not LIBRARY:
        report.fault("libfaketime isn't there (Debian's package faketime)")
        return report.finish()
    chance = random.Random(options.seed)
    moments = [each for each in MOMENTS if options.only in (None, each.what)]
    jumps = JUMPS if options.only in (None, "jumps") else []
    if options.short and not options.only:
        moments, jumps = chance.sample(moments, SAMPLE), chance.sample(jumps, SAMPLE)
    with Arrangement(campaign.BUILD, campaign.BUILD / "campaigns/clock", own_display=True).lay_out() as arrangement:
        operator = Operator(Driver(arrangement))
        for moment in moments:
            with life_of(arrangement, operator, report, options, moment.what) as life:
                report.row(moment.what, moment.zone, *map(" ".join, go_over(life, moment)))
        if jumps:
            with life_of(arrangement, operator, report, options, "jumps") as life:
                take_jumps(life, report, jumps)
    return report.finish(f"{len(report.rows)} moments and jumps")


def take_jumps(life, report, jumps):
    life.begin("Europe/Berlin", time.time())
    life.wait_until_right()
    for each in jumps:
        before = life.shown()
        share = jump(life, each.seconds)
        report.row(f"{each.what}, processor {share:.0%}", "Europe/Berlin", " ".join(before), " ".join(life.shown()))
    life.release_all()


if __name__ == "__main__":
    sys.exit(campaign.run(main))

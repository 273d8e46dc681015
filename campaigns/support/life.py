"""One life of the add-in: a process, its peers, what is known of its objects, and what its answers have to be."""
import random
import select
import time
import xml.etree.ElementTree as xml
from collections import Counter
from dataclasses import dataclass, field
from pathlib import Path

import contract
from arrangement import wait_for
from contract import ANY, DIALOG, DONE
from driver import LIMIT
from peers import BUSY, FACTORY, OBJECT, Client, Host
from stage import ADD_IN_CLASS
from toolkit import without_harmless
from wire import CALL

INTROSPECTABLE, PROPERTIES = "org.freedesktop.DBus.Introspectable", "org.freedesktop.DBus.Properties"
BUS = "org.freedesktop.DBus"
ANSWER_LIMIT = 60  # seconds; a box that only the operator can close is in it
IDLE = 1.0  # seconds without an answer after which the operator looks whether a box is in the way


@dataclass
class Target:
    """An object of the add-in's."""
    path: str
    described: contract.Class
    safe: int = 1  # references that may go in this round
    peer: object = None  # who alone calls a record in this round
    fields: dict = field(default_factory=dict)
    items: dict = field(default_factory=dict)
    count: int = 0

    def apply(self, slot, values):
        """What the member does to a record; gives the content of its result, or ANY."""
        name = slot.name.lower()
        if name == "count":
            return self.count
        if name == "clear":
            self.count, self.items = 0, {}
        elif name == "addtolist":
            for each, value in zip(("cmd", "firstdata", "seconddata", "extradata", "descriptiondata"), values):
                self.items[each, self.count] = value
            for each in ("ck", "ermfp", "msgfp"):
                self.items[each, self.count] = ANY
            self.count += 1
        elif len(slot.parameters) == (2 if slot.is_write else 1) and slot.parameters[0] == "n" and not slot.is_property:
            inside = 0 <= values[0] < self.count
            if not slot.is_write:
                return self.items.get((name, values[0])) if inside else ""
            if inside:
                self.items[name, values[0]] = values[1]
        elif slot.is_write:
            self.fields[name] = values[0]
        else:
            return self.fields.get(name)
        return ANY


@dataclass
class Expected:
    """What a call must come to: a number of an error or DONE, or ANY; and what the answer carries, ANY where
    unknown."""
    step: int
    what: str
    number: int = DONE
    result: object = ANY  # of the members' own: pair of signature and content, "" for none
    arguments: object = ANY
    answered: object = None  # called with the answer
    busy: bool = False  # may be refused as busy
    sent: float = 0.0


class Lost(Exception):
    """The life can't go on: the process is gone, or doesn't answer."""


class Life:
    def __init__(self, arrangement, operator, report, seed, log):
        self.arrangement, self.operator, self.report, self.seed = arrangement, operator, report, seed
        self.random = random.Random(seed)
        self.address = arrangement.environment["DBUS_SESSION_BUS_ADDRESS"]
        self.steps = self.asked = self.faults = self.refused = 0
        self.longest, self.looked = 0.0, 0.0
        self.seen = Counter()  # what succeeded and what was refused, by class, way and member
        self.peers, self.layers, self.records = [], [], []
        self.dialog, self.extra, self.born = None, 0, 0
        self.leaving = False  # a peer has left, and the add-in may not have heard of it
        self.dying, self.dead = [], []  # paths of objects that ended, and of those that are known to be gone
        self.described, self.texts = {DIALOG.name: DIALOG}, {}
        self.log = Path(log)

    # --- start ------------------------------------------------------------------------------------

    def start(self, environment=None, under=()):
        """The process, and an object that keeps it; `under` is a command that runs it."""
        self.operator.meanwhile = lambda: self.pump(0.02)
        self.errors = open(self.log, "w", encoding="utf-8")
        self.process = self.arrangement.start([*under, self.arrangement.add_in, "-Embedding"], environment,
                                              stderr=self.errors)
        self.host = Host(self.address, self.seed, self.retained_by_host)
        self.peers.append(self.host)
        self.anchor = self.join("anchor")
        self.wait(lambda: self.anchor.ask(BUS, "/", BUS, "NameHasOwner", "s", (ADD_IN_CLASS,)).body[0], "the add-in")
        self.owner = self.anchor.ask(BUS, "/", BUS, "GetNameOwner", "s", (ADD_IN_CLASS,)).body[0]
        self.create(self.anchor)
        self.settle()
        self.describe("cOLELayer", self.layers[0].path)
        self.layers[0].described = self.described["cOLELayer"]

    def join(self, title):
        peer = Client(self.address, title)
        self.peers.append(peer)
        return peer

    def describe(self, name, path):
        text = self.anchor.ask(self.owner, path, INTROSPECTABLE, "Introspect").body[0]
        self.described[name] = contract.of_introspection(name, text)
        self.texts[name] = text

    def create(self, peer):
        def created(answer):
            owner, path = answer.body[0]
            if not peer.is_open:
                return
            peer.held[path] += 1
            self.layers.append(Target(path, self.described.get("cOLELayer")))
        self.send(peer, (ADD_IN_CLASS, "/Factory", FACTORY, "CreateInstance"), "CreateInstance", answered=created)

    def retained_by_host(self, host, what, reference):
        """The host keeps what it was lent: the dialog at its login, the record of a request."""
        owner, path = reference
        self.send(host, (owner, path, OBJECT, "Retain"), f"Retain {path}")
        host.held[path] += 1
        if what == "record":
            record = Target(path, self.described.get("cListRequest"), count=3)
            self.records.append(record)
        elif self.dialog is None or self.dialog.path != path:
            self.dialog = Target(path, DIALOG)

    # --- messages ---------------------------------------------------------------------------------

    def send(self, peer, message, what, **expected):
        self.steps += 1
        serial = peer.call(*message)
        peer.pending[serial] = Expected(self.steps, f"{peer.title}: {what}", sent=time.monotonic(), **expected)
        self.asked += 1

    def pump(self, seconds):
        """Sends and receives once; True where anything came."""
        peers = [peer for peer in self.peers if peer.is_open]
        readable, writable, _ = select.select(peers, [peer for peer in peers if peer.out], [], seconds)
        for peer in writable:
            peer.send()
        for peer in readable:
            for message in peer.receive():
                if message.type == CALL and peer is self.host:
                    self.host.serve(message)
                elif message.reply in peer.pending:
                    self.check(peer.pending.pop(message.reply), message)
            peer.send()
        return bool(readable)

    def waiting(self):
        return [expected for peer in self.peers if peer.is_open for expected in peer.pending.values()]

    def settle(self, keeps_boxes=False):
        """Goes on until every call has its answer; where that takes long, the operator closes what is open."""
        last = looked = time.monotonic()
        while any(peer.pending for peer in self.peers if peer.is_open):
            if self.pump(0.005 if self.host.late else 0.05):
                last = time.monotonic()
                continue
            if self.process.poll() is not None:
                if self.pump(LIMIT):
                    continue  # the bus still had an answer
                raise Lost(f"the process ended with {self.process.returncode} while it was called; last calls: "
                           f"{'; '.join(each.what for each in self.waiting()[:5])}")
            if not self.host.silent:
                self.host.catch_up()
            now = time.monotonic()
            if now - last > ANSWER_LIMIT:
                raise Lost(f"no answer for {ANSWER_LIMIT} s to step {self.waiting()[0].step}, {self.waiting()[0].what}")
            if not keeps_boxes and now - last > IDLE and now - looked > IDLE:
                self.operator.close_boxes()
                looked = time.monotonic()
        if not self.host.silent:
            self.host.catch_up()

    def wait(self, condition, what, seconds=LIMIT):
        end = time.monotonic() + seconds
        while not condition():
            self.pump(0.05)
            if not self.host.silent:
                self.host.catch_up()
            if time.monotonic() > end:
                raise Lost(f"waited {seconds} s for {what}")
            if self.process.poll() is not None:
                raise Lost(f"the process ended with {self.process.returncode}; wanted was {what}")

    # --- judging ----------------------------------------------------------------------------------

    def fault(self, expected, why):
        self.faults += 1
        self.report.fault(f"life {self.seed}, step {expected.step}, {expected.what}: {why}"[:600])
        if self.faults >= 10:
            raise Lost("too many faults")

    def check(self, expected, answer):
        self.longest = max(self.longest, time.monotonic() - expected.sent)
        number = DONE
        if answer.error == BUSY and expected.busy:
            self.refused += 1
            return None
        if answer.error:
            if answer.error == BUSY or len(answer.body) != 2 or answer.signature != "si":
                return self.fault(expected, f"{answer.error} {answer.body}")
            number = answer.body[1]
        if expected.number is not ANY and number != expected.number:
            return self.fault(expected, f"{number} instead of {expected.number}: {str(answer.body)[:200]}")
        if number == DONE:
            self._check_content(expected, answer)
        if expected.answered and number == DONE:
            expected.answered(answer)
        return None

    def _check_content(self, expected, answer):
        values = answer.body
        if expected.arguments is not ANY:
            if answer.signature != "vav" or not _same(values[1], expected.arguments):
                return self.fault(expected, f"came back with {str(values)[:200]}")
            values = values[:1]
        if expected.result is ANY:
            return None
        if expected.result == "":
            return self.fault(expected, f"a result: {values}") if answer.signature else None
        kind, content = expected.result
        signature, given = values[0] if expected.arguments is not ANY else (answer.signature, values[0])
        if signature != kind or content is not ANY and given != content:
            return self.fault(expected, f"gives {signature} {str(given)[:200]} instead of {kind} {str(content)[:200]}")
        return None

    # --- counting ---------------------------------------------------------------------------------

    def objects(self):
        """The paths that the add-in has objects at."""
        text = self.anchor.ask(self.owner, "/Object", INTROSPECTABLE, "Introspect").body[0]
        return {f"/Object/{node.get('name')}" for node in xml.fromstring(text).iter("node") if node.get("name")}

    def check_objects(self):
        """As many objects as are held, and none besides. From now on others may call those that are gone."""
        wanted = {target.path for target in self.targets()}
        try:
            self.wait(lambda: self.objects() == wanted, "the objects that nobody holds to go")
            self.leaving = False
            self.dead, self.dying = (self.dead + self.dying)[-20:], []
        except Lost as lost:
            self.report.fault(f"life {self.seed}, step {self.steps}: {lost}; there are {sorted(self.objects())}, "
                              f"held are {sorted(wanted)}")

    def memory(self):
        """KiB in RAM."""
        return int(Path(f"/proc/{self.process.pid}/statm").read_text().split()[1]) * 4

    # --- end --------------------------------------------------------------------------------------

    def wait_for_end(self):
        def ended():
            self.pump(0.02)
            self.host.catch_up()
            return self.process.poll() is not None
        try:
            wait_for(ended, LIMIT, "the process to end with its last object")
        except TimeoutError as error:
            return self.report.fault(f"life {self.seed}: {error}")
        if self.process.returncode != 0:
            self.report.fault(f"life {self.seed}: the process ended with {self.process.returncode} in the end")
        while self.pump(0.2):
            continue
        if kept := +self.host.kept:
            self.report.fault(f"life {self.seed}: of the host's objects were never given back: {dict(kept)}")
        return None

    def how_it_ended(self):
        status = self.process.poll()
        return "" if status is None else f"; the process has ended with {status}"

    def close(self):
        for peer in self.peers:
            if peer.is_open:
                peer.leave()
        self.arrangement.end(self.process)
        self.errors.close()
        if said := without_harmless(self.log.read_text(encoding="utf-8")):
            self.report.fault(f"life {self.seed}: the process said: {said[:300]}")


def _same(values, others):
    """NaN is like itself here."""
    return values == others or repr(values) == repr(others)

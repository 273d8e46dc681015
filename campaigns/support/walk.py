"""A random walk through one life of the add-in.

What a call has to come to is worked out when it is drawn. That holds where calls may overtake each other, since in
one round a record is called by one peer alone and no object ends in the midst of it.
"""
import re
import string
import time

import contract
from contract import ANY, DONE, EMPTY, GET, METHOD, MISSING, NOTHING, NULL, PUT, PUT_OBJECT, Failure
from life import BUS, INTROSPECTABLE, PROPERTIES, Life
from peers import EXCHANGE, FACTORY, HOST, OBJECT
from stage import ADD_IN_CLASS

LOOK_EVERY = 2.0  # seconds between two looks of the operator at the screen
# These ask the host before they answer, and lie one on top of the other meanwhile.
NESTING = {"RegisterPBX", "FrmMove", "FrmPositionSave", "CallBack", "TurnFlow"}
SLOW = {"SetBackGround", "BackGround", "Visible"}  # they paint
NESTING_IN_A_ROUND, SLOW_IN_A_ROUND = 12, 3
LARGEST_RECORD = 300
NAMES = ["", "Main Office", "Warehouse", "Zweigstelle Süd", "本社", "x" * 1000, "a(b)", "%s%n", "O'Neil; drop table"]
TEXTS = NAMES + ["0", "1", "2", "-1", " 12 ", "+7", "2.5", "1e3", "1e999", "32768", "True", "false", "abc", "12abc",
                 "&", "\n", "02", "OK", "LOOKUP_CLOCK", "BUSY", "\ufffe"]
OTHERS = [("y", 0), ("y", 255), ("q", 65535), ("u", 2**31 - 1), ("u", 2**32 - 1), ("x", -5), ("x", -2**62), ("t", 7),
          ("t", 2**63), ("d", 0.0), ("d", 2.5), ("d", -1.5), ("d", 1e300), ("d", float("inf")), ("d", float("nan")),
          ("(d)", (0.0,)), ("(d)", (46000.25,)), ("(d)", (1e9,)), EMPTY, NULL, MISSING, ("(y)", (3,)), ("as", ["a"]),
          ("a{sv}", [("a", ("i", 1))]), ("o", "/x"), ("g", "sqav"), ("v", ("n", 1)), ("(ii)", (1, 2)), ("ay", [1, 2])]
WORDS = ["", "Invisible", "Invoke", "Retain", "Put_CMD", "Get", "Größe", "RegisterPBX ", "Count\n", "x" * 300, "1"]


class Walk(Life):
    # --- rounds -----------------------------------------------------------------------------------

    def round(self, calls):
        """So many calls at once, by all peers in turn, and their answers."""
        self.begin_round()
        end = self.steps + calls
        callers = [peer for peer in self.peers if peer.is_open]
        while self.steps < end:
            self.step(self.random.choice(callers))
            if self.steps % 32 == 0:
                self.pump(0)
        self.settle()
        if self.random.random() < 0.1:
            self.check_objects()
        if time.monotonic() - self.looked > LOOK_EVERY:
            self.operator.close_boxes()
            self.looked = time.monotonic()

    def begin_round(self):
        self.nesting, self.slow = NESTING_IN_A_ROUND, SLOW_IN_A_ROUND
        if self.random.random() < 0.2 and len(self.peers) < 9:
            self.born += 1
            self.join(f"peer {self.born}")
        if self.random.random() < 0.12:
            self.someone_leaves()
        self.release_last()
        for target in self.targets():
            target.safe = sum(peer.held[target.path] for peer in self.peers)
        for record in self.records:
            record.peer = self.random.choice(self.peers)
            if record.count > LARGEST_RECORD:
                self.member(record.peer, record, "Clear", METHOD, [])

    def targets(self):
        return [*self.layers, *self.records, *([self.dialog] if self.dialog else [])]

    def someone_leaves(self):
        """In the midst of its calls, and with all that it holds."""
        leaving = [peer for peer in self.peers if peer not in (self.host, self.anchor)]
        if not leaving:
            return
        peer = self.random.choice(leaving)
        for _ in range(self.random.randrange(40)):
            target = self.random.choice(self.layers)
            self.tell(peer, target, "Visible", GET, [], "Visible, and leaves")
        if self.random.random() < 0.5:
            self.send(peer, (ADD_IN_CLASS, "/Factory", FACTORY, "CreateInstance"), "CreateInstance, and leaves")
        peer.send()
        self.leave(peer)

    def leave(self, peer):
        peer.leave()
        self.peers.remove(peer)
        self.leaving = True
        self.bury()

    def bury(self):
        """Objects that nobody holds are none any more."""
        for target in self.targets():
            if not any(peer.held[target.path] for peer in self.peers):
                self.dying.append(target.path)
                for known in (self.layers, self.records):
                    if target in known:
                        known.remove(target)
                if target is self.dialog:
                    self.dialog = None

    def release_last(self):
        """Now and then an object goes, ahead of all calls of the round."""
        if self.random.random() > 0.3:
            return
        candidates = [target for target in self.layers[1:] + self.records[4:]
                      if sum(peer.held[target.path] > 0 for peer in self.peers) == 1]
        if candidates:
            target = self.random.choice(candidates)
            peer = next(peer for peer in self.peers if peer.held[target.path])
            while peer.held[target.path]:
                self.release(peer, target.path)
            self.bury()
            if not self.leaving:
                self.send(peer, (self.owner, target.path, OBJECT, "Retain"), f"Retain of {target.path}, which is gone",
                          number=462)

    def release(self, peer, path):
        number = DONE if peer.held[path] else 5
        self.send(peer, (self.owner, path, OBJECT, "Release"), f"Release {path}", number=number)
        peer.held[path] -= number == DONE

    def step(self, peer):
        records = [record for record in self.records if record.peer is peer]
        dialog = [self.dialog] if self.dialog else []
        kinds = self.random.choices((self.layers, records or self.layers, dialog or self.layers), (3, 5, 2))[0]
        target, dice = self.random.choice(kinds), self.random.random()
        if dice < 0.60:
            self.late_bound(peer, target)
        elif dice < 0.78:
            self.typed(peer, target)
        elif dice < 0.90:
            self.count_references(peer, target)
        elif dice < 0.92 and len(self.layers) < 12:
            self.create(peer)
        elif dice < 0.94:
            self.send(peer, (self.owner, target.path, INTROSPECTABLE, "Introspect"), "Introspect",
                      result=("s", self.texts.get(target.described.name, ANY)))
        else:
            self.nonsense(peer, target)

    def count_references(self, peer, target):
        if self.random.random() < 0.5:
            if peer.held[target.path] < 50:
                self.send(peer, (self.owner, target.path, OBJECT, "Retain"), f"Retain {target.path}")
                peer.held[target.path] += 1
        elif not peer.held[target.path]:
            self.release(peer, target.path)
        elif target.safe > 1 and (target is not self.layers[0] or peer is not self.anchor):
            target.safe -= 1
            self.release(peer, target.path)

    # --- calls of members -------------------------------------------------------------------------

    def invocation(self, target, name, kind, arguments):
        return self.owner, target.path, OBJECT, "Invoke", "sqav", (name, kind, arguments)

    def tell(self, peer, target, name, kind, given, what, **expected):
        """A late-bound call of which the caller knows what it has to come to."""
        self.send(peer, self.invocation(target, name, kind, given), what, **expected)

    def late_bound(self, peer, target):
        slot = self.random.choice(target.described.slots)
        name, kind = self.spelled(slot.name), self.random.choice((PUT, PUT_OBJECT) if slot.is_write else (METHOD, GET))
        if self.random.random() < 0.08:
            name = self.random.choice(WORDS + [each.name for each in self.described["cListRequest"].slots])
        if self.random.random() < 0.06:
            kind = self.random.choice((0, 1, 2, 3, 4, 5, 8, 16, 65535))
        arguments = [self.argument(parameter) for parameter in slot.parameters]
        if self.random.random() < 0.08:
            arguments = arguments[:-1] if self.random.random() < 0.5 else arguments + [self.argument("s")]
        self.member(peer, target, name, kind, arguments)

    def member(self, peer, target, name, kind, arguments):
        """A late-bound call, whatever comes of it."""
        what = f"{target.described.name}.{name[:40]!r}, kind {kind}, {str(arguments)[:200]}"
        message = self.invocation(target, name, kind, arguments)
        try:
            slot, values, given = contract.late_bound(target.described, name, kind, arguments, self.knows)
        except Failure as failure:
            self.seen[target.described.name, "late, refused", name.lower()] += 1
            return self.send(peer, message, what, number=failure.number)
        if not self.may(slot):
            return None
        number, content = self.effect(target, slot, values)
        if slot.name == "CallBack":
            given = [NOTHING]
        result = (slot.result, content) if slot.result else EMPTY
        self.seen[target.described.name, "late", slot.typed_name, slot.is_write] += 1
        return self.send(peer, message, what, number=number, result=result, arguments=given)

    def typed(self, peer, target):
        described = target.described
        if not described.typed:
            return
        slot = self.random.choice(described.slots)
        name = slot.typed_name if self.random.random() < 0.93 else self.random.choice(WORDS[1:6] + [slot.name.lower()])
        values = [self.argument(parameter, True) for parameter in slot.parameters]
        if slot.is_property:
            return self.property(peer, target, slot, name, values)
        signature = "".join(slot.parameters)
        if self.random.random() < 0.05:
            signature, values = self.random.choice((("", []), ("s", [("s", "x")]), ("v", [("v", ("n", 1))])))
        # A member's name has letters of the bus alone, or the daemon drops the peer.
        if not re.fullmatch(r"[A-Za-z_]\w*", name, re.A):
            return
        number, result = self.foretell(target, signature, values,
                                       [each for each in described.slots
                                        if not each.is_property and each.typed_name == name])
        if number == "skip":
            return
        is_named = self.random.random() < 0.9 or name in ("Invoke", "Retain", "Release", "Get")
        interface = described.typed if is_named else ""
        self.send(peer, (self.owner, target.path, interface, name, signature, [value for _, value in values]),
                  f"{described.typed}.{name} {signature} {str(values)[:200]}", number=number, result=result)

    def foretell(self, target, signature, values, slots):
        if not slots:
            return 438, ANY
        (slot,) = slots
        if signature != "".join(slot.parameters):
            return 13, ANY
        try:
            converted = [contract.converted(contract.received(value, self.knows), kind)
                         for value, kind in zip(values, slot.parameters)]
        except Failure as failure:
            return failure.number, ANY
        if not self.may(slot):
            return "skip", ANY
        number, content = self.effect(target, slot, converted)
        self.seen[target.described.name, "typed", slot.typed_name, slot.is_write] += 1
        return number, (slot.result, content) if slot.result else ""

    def property(self, peer, target, slot, name, values):
        described = target.described
        known = {each.is_write: each for each in described.slots if each.is_property and each.name == name}
        address = (self.owner, target.path, PROPERTIES)
        what = f"{'Set' if slot.is_write else 'Get'} {described.typed}.{name} {str(values)[:200]}"
        if not slot.is_write:
            if not known.get(False):
                return self.send(peer, (*address, "Get", "ss", (described.typed, name)), what, number=438)
            number, content = self.effect(target, known[False], [])
            self.seen[described.name, "typed", name, False] += 1
            # A variant: the pair of signature and content is itself the content.
            result = ("v", ANY if content is ANY else (known[False].result, content))
            return self.send(peer, (*address, "Get", "ss", (described.typed, name)), what, number=number, result=result)
        value = values[0] if self.random.random() < 0.7 else self.argument(self.random.choice("snib"))
        number = DONE
        try:
            content = contract.received(value, self.knows)
            if not known.get(True):
                number = 383 if known.get(False) else 438
            elif content == MISSING:
                number = 450
            else:
                content = contract.converted(content, slot.parameters[0])
        except Failure as failure:
            number = failure.number if known.get(True) else 383 if known.get(False) else 438
        if number == DONE:
            if not self.may(known[True]):
                return None
            self.effect(target, known[True], [content])
            self.seen[described.name, "typed", name, True] += 1
        return self.send(peer, (*address, "Set", "ssv", (described.typed, name, value)), what + f" {value}",
                         number=number, result="" if number == DONE else ANY)

    def may(self, slot):
        """Whether the round has room for one more of those that take long."""
        if slot.name in NESTING:
            self.nesting -= 1
            return self.nesting >= 0
        if slot.name in SLOW and (slot.is_write or not slot.is_property):
            self.slow -= 1
            return self.slow >= 0
        if slot.name == "DecrementCount":
            return self.extra > 0
        return True

    def effect(self, target, slot, values):
        """What the call has to come to, and what of it is kept in mind."""
        if target.described.name == "cListRequest":
            return DONE, target.apply(slot, values)
        if slot.name == "TurnFlow":
            return ANY, ANY
        if slot.name == "IncrementCount":
            self.extra += 1
        if slot.name == "DecrementCount":
            self.extra -= 1
        if slot.name in ("RegisterPBX", "CheckLoadError"):
            return DONE, False
        return DONE, ANY

    def nonsense(self, peer, target):
        cases = [
            (("/Object/0", OBJECT, "Retain"), 462), (("/", OBJECT, "Invoke"), 438),
            ((target.path, "com.example.Other", "Invoke"), 438), ((target.path, OBJECT, "Evoke"), 438),
            ((target.path, OBJECT, "Invoke"), 13), ((target.path, OBJECT, "Invoke", "sqas", ("Count", 2, ["1"])), 13),
            ((target.path, OBJECT, "Retain", "s", ("x",)), 13),
            (("/Factory", FACTORY, "CreateInstance", "i", (1,)), 13),
            (("/Factory", FACTORY, "Create"), 438), (("/Object", OBJECT, "Release"), 438),
            ((target.path, PROPERTIES, "GetAll", "s", ("com.example.Other",)), 438),
            ((target.path, PROPERTIES, "Get", "ss", (OBJECT, "Age")), 438),
            ((target.path, PROPERTIES, "Get", "s", (OBJECT,)), 13), ((target.path, PROPERTIES, "Change"), 438),
            ((target.path, INTROSPECTABLE, "Introspect", "s", ("",)), 13),
        ]
        message, number = self.random.choice(cases)
        if self.dead and self.random.random() < 0.2:
            message, number = (self.random.choice(self.dead), OBJECT, self.random.choice(("Retain", "Release"))), 462
        self.send(peer, (self.owner, *message), f"nonsense {message}", number=number)

    # --- arguments --------------------------------------------------------------------------------

    def spelled(self, name):
        return self.random.choice((name, name, name.lower(), name.upper(), name.swapcase()))

    def argument(self, kind, exact=False):
        if not exact and self.random.random() < 0.15:
            return self.random.choice(OTHERS + [("s", text) for text in TEXTS])
        if kind == "s":
            return "s", self.random.choice(TEXTS) if self.random.random() < 0.98 else self.long_text()
        if kind == "b":
            return "b", self.random.random() < 0.5
        if kind == "n":
            return "n", self.random.choice((0, 1, 2, 3, 5, 20, 100, 299, -1, -2**15, 2**15 - 1))
        if kind == "i":
            return "i", self.random.choice((0, 1, -1, 99, 70000, -2**31, 2**31 - 1))
        return "(so)", self.reference()

    def long_text(self):
        return "".join(self.random.choices(string.ascii_letters + "äß漢", k=self.random.choice((100, 1000, 20000))))

    def reference(self):
        """An object of the host's, one of the add-in's own, or none at all."""
        dice = self.random.random()
        if dice < 0.4:
            return self.host.name, HOST
        if dice < 0.6:
            return self.host.name, self.random.choice(sorted(self.host.answers) or [EXCHANGE])
        if dice < 0.7:
            return self.owner, self.layers[0].path
        return self.random.choice((NOTHING[1], (self.owner, "/Object/0"), (":1.99999", "/x"), (BUS, "/nowhere"),
                                   ("", "/x"), ("no name", "/"), ("org.example.Nobody", "/")))

    def knows(self, owner, path):
        return owner != self.owner or path == self.layers[0].path

"""What lies at the limits of the bus: messages of every signature and size, floods, and peers that stop reading.

One life stands all of it. Behind each extreme a client that is new to the bus has its call answered, and in the end a
new host has a whole lookup.
"""
import random
import socket
import time

from contract import ANY, DONE, GET, METHOD, PUT
from life import PROPERTIES, Lost
from peers import FACTORY, HOST, OBJECT, Client, Host
from stage import ADD_IN_CLASS, CLOCK_READ, WAIT_BOX
from wire import Peer, types_of

DEEPEST = 32  # arrays, or structures, in one another
LONGEST_SIGNATURE = 255
LARGEST = 10_000_000
NEAR_THE_LIMIT = 31 << 20  # bytes; daemons are built to take messages up to 32 MiB
MOST_ITEMS = 32_767
KEPT_EACH_TIME = 64 << 10  # KiB; the allocator joins its pieces by chance
BASICS = "ybnqiuxtdsog"
VALUES = ("(y)", "(d)", "(so)")  # structures that are values of this system
SAMPLES = {"y": 1, "b": 1, "n": -2, "q": 2, "i": -3, "u": 3, "x": -4, "t": 4, "d": 0.5, "s": "text", "o": "/a/b",
           "g": "a{sv}", "v": ("i", 5)}


# --- messages ---------------------------------------------------------------------------------------

def any_type(chance, depth=0, arrays=0):
    """A single complete type, seldom deep and at times as deep as can be."""
    dice = chance.random()
    if dice < 0.35 and arrays < DEEPEST:
        if dice < 0.08:
            return f"a{{{chance.choice(BASICS)}{any_type(chance, depth + 1, arrays + 1)}}}" if depth < DEEPEST else "as"
        return "a" + any_type(chance, depth, arrays + 1)
    if dice < 0.55 and depth < DEEPEST:
        return "(" + "".join(any_type(chance, depth + 1, arrays) for _ in range(chance.randint(1, 3))) + ")"
    return chance.choice(BASICS + "v")


def any_signature(chance):
    if chance.random() < 0.1:
        depth = chance.randint(1, DEEPEST)
        half = depth // 2
        return chance.choice(("a" * depth + "i", "(" * depth + "i" + ")" * depth, "a(" * half + "s" + ")" * half))
    while True:
        signature = "".join(any_type(chance) for _ in range(chance.randint(1, 4)))
        if len(signature) <= LONGEST_SIGNATURE:
            return signature


def sample(kind):
    """A value of a type, with one entry in each array."""
    if kind[0] == "a":
        return [1] if kind == "ay" else [sample(kind[1:])]
    if kind[0] in "({":
        return tuple(sample(each) for each in types_of(kind[1:-1]))
    return SAMPLES[kind]


def signatures(life, short):
    """Values of every signature, in place of the arguments and as one of them."""
    chance = random.Random(life.seed)
    count = 400 if short else 5000
    for done in range(count):
        signature = any_signature(chance)
        values = [sample(each) for each in types_of(signature)]
        peer, layer = life.anchor, life.layers[0]
        first = types_of(signature)[0]
        life.send(peer, (life.owner, layer.path, OBJECT, "Invoke", signature, values), f"Invoke of {signature}",
                  number=13)
        life.send(peer, (life.owner, layer.path, layer.described.typed, "SetBackGround", signature, values),
                  f"SetBackGround of {signature}", number=DONE if signature == "n" else 13)
        if first not in SAMPLES and first not in VALUES:
            life.tell(peer, layer, "SetBackGround", METHOD, [(first, values[0])], f"argument of {first}",
                      number=13)
            life.send(peer, (life.owner, layer.path, PROPERTIES, "Set", "ssv",
                             (layer.described.typed, "Visible", (first, values[0]))), f"Visible of {first}", number=13)
        if done % 50 == 0:
            life.settle()
    nested = "n", 1
    for _ in range(30):  # a variant counts as much as a structure and what is in it
        nested = "v", nested
        life.tell(life.anchor, life.layers[0], "SetBackGround", METHOD, [nested], "nested variants", number=13)
    life.settle()
    return f"{count:,} signatures"


def sizes(life, short):
    """Over and over in the long form: memory is kept for the next of that size, but no more each time."""
    grown = []
    for _ in range(1 if short else 3):
        all_sizes(life, short)
        grown.append(life.memory())
    if grown[-1] - grown[-2:][0] > KEPT_EACH_TIME:
        life.report.fault(f"life {life.seed}: the same texts again made it grow, KiB: {grown}")
    return f"texts up to {(LARGEST if short else NEAR_THE_LIMIT) / 1e6:.0f} MB, 100,000 arguments, {MOST_ITEMS:,} items"


def all_sizes(life, short):
    """The longest texts and the most arguments, and a record of as many items as it can have."""
    layer, record = life.layers[0], life.records[0]
    long = "x" * LARGEST
    for text in (long, "ä" * (LARGEST // 2), *([] if short else ["x" * NEAR_THE_LIMIT])):
        for name, kind, arguments in (("Key", PUT, [("s", text)]), ("Key", GET, []), ("Key", PUT, [("s", "")])):
            life.invoke(life.anchor, record, name, kind, *arguments)
    for target, name, kind, arguments in (
            (layer, long, METHOD, []), (layer, "SetBackGround", METHOD, [("s", long)]),
            (layer, "SetBackGround", METHOD, [("n", 1)] * 100_000),
            (layer, "SetBackGround", METHOD, [("ai", [1] * 100_000)]),
            (layer, "SetBackGround", METHOD, [("as", ["x"] * 100_000)]),
            (layer, "RegisterPBX", METHOD, [("s", long), ("(so)", ("", "/")), ("n", 1)]),
            (layer, "RegisterPBX", METHOD, [("s", "Main Office"), ("(so)", (life.host.name, HOST)), ("n", 1)]),
            (record, "AddToList", METHOD, [("s", long[:LARGEST // 2])] * 5),
            (record, "SecondData", GET, [("n", record.count)]),
            (record, "Clear", METHOD, [])):
        life.nesting = life.slow = 1
        life.invoke(life.anchor, target, name, kind, *arguments)
    for i in range(MOST_ITEMS):
        life.member(life.anchor, record, "AddToList", METHOD, [("s", str(i))])
        if i % 1000 == 0:
            life.settle()
    life.invoke(life.anchor, record, "CMD", GET, ("n", MOST_ITEMS - 1))
    life.tell(life.anchor, record, "AddToList", METHOD, [("s", "one more")], "AddToList of one more", number=6)
    life.invoke(life.anchor, record, "Count", GET)
    life.invoke(life.anchor, record, "Clear", METHOD)


# --- floods -----------------------------------------------------------------------------------------

def flood_with_a_box(life, short):
    """Calls of all kinds, by many at once, while a box waits for the operator."""
    life.be_ready()
    open_box(life)
    crowd = [life.join(f"crowd {i}") for i in range(8)]
    count = 500 if short else 20_000
    chance, response = random.Random(life.seed), ("(so)", (life.host.name, life.host.response()))
    for done in range(count):
        for peer in crowd:
            dice = chance.random()
            if dice < 0.01:
                life.tell(peer, life.dialog, "CallBack", METHOD, [response], "CallBack", number=ANY, busy=True)
            elif dice < 0.02:
                life.tell(peer, life.dialog, "TurnFlow", METHOD, [("b", True)], "TurnFlow", number=ANY, busy=True)
            else:
                life.tell(peer, life.layers[0], "Visible", GET, [], "Visible", result=("b", ANY),
                          arguments=[], busy=True)
        if done % 50 == 0:
            life.pump(0)
        if done % 1000 == 0:
            life.settle(keeps_boxes=True)
    life.settle(keeps_boxes=True)
    boxes = life.operator.boxes()
    if boxes != [CLOCK_READ]:
        life.report.fault(f"life {life.seed}: one box was left open, and behind the flood there are {boxes}")
    for peer in crowd:
        life.leave(peer)
    life.wait(lambda: not life.operator.close_boxes() and not life.operator.boxes(), "the boxes to close")
    return f"{count * len(crowd):,} calls of {len(crowd)} peers, {life.refused:,} of them refused as busy"


def open_box(life):
    answer = "(so)", (life.host.name, life.host.response())
    life.nesting = 1
    life.invoke(life.host, life.dialog, "CallBack", METHOD, answer)
    life.wait(lambda: CLOCK_READ in life.operator.boxes(), "the answer's box")


def calls_inside_calls(life, short):
    """Each call makes the add-in ask a host that keeps silent: they pile up on its stack."""
    life.be_ready()
    life.host.silent = True
    refused, count = life.refused, 5_000 if short else 50_000
    for done in range(count):
        life.tell(life.anchor, life.dialog, "TurnFlow", METHOD, [("b", False)], "TurnFlow", number=ANY, busy=True)
        if done % 200 == 0:
            life.pump(0)
    life.wait(lambda: len(life.waiting()) <= len(life.host.late) + 1 and life.host.late, "the rest to be refused")
    asked, life.host.silent = len(life.host.late), False
    life.settle()
    return f"{count:,} calls, {asked} of them on top of one another, {life.refused - refused:,} refused as busy"


# --- peers ------------------------------------------------------------------------------------------

def deaf_caller(life, short):
    """A peer that asks for more than its socket takes, and never reads an answer."""
    record, deaf = life.records[0], life.join("deaf")
    life.invoke(life.anchor, record, "Key", PUT, ("s", "k" * 20_000))
    before, count = life.memory(), 3_000 if short else 30_000
    for _ in range(count):
        deaf.call(*life.invocation(record, "Key", GET, []))
    life.peers.remove(deaf)
    sent, longest, most = len(deaf.out), 0.0, before
    end = time.monotonic() + (5 if short else 40)
    while deaf.out and time.monotonic() < end:
        try:
            deaf.send()
        except ConnectionError:
            break
        began = time.monotonic()
        life.invoke(life.anchor, life.layers[0], "Visible", GET)
        longest, most = max(longest, time.monotonic() - began), max(most, life.memory())
    left = len(deaf.out)
    deaf.leave()
    life.invoke(life.anchor, record, "Key", PUT, ("s", ""))
    if most - before > 64 << 10:
        life.report.fault(f"life {life.seed}: a peer that reads nothing made it grow from {before} to {most} KiB")
    return (f"{sent - left:,} calls without reading; others waited {longest:.2f} s at most, "
            f"{most - before:,} KiB more meanwhile")


def deaf_host(life, short):
    """A host that stops reading its socket: others are served on, and the operator gives up for it."""
    deaf = life.join("deaf host")
    life.peers.remove(deaf)
    layer, calls = life.layers[0], 0
    life.nesting = 9
    life.invoke(life.anchor, layer, "RegisterPBX", METHOD, ("s", "Main Office"), ("(so)", ("", "/")), ("n", 1))
    waiting = life.join("waiting")
    arguments = [("s", "Main Office"), ("(so)", (deaf.name, HOST)), ("n", 1)]
    life.tell(waiting, layer, "RegisterPBX", METHOD, arguments, "RegisterPBX of a deaf host")
    while not (waiting.pending and WAIT_BOX in life.operator.boxes()):
        life.tell(life.anchor, layer, "Visible", GET, [], "Visible beside a deaf host", result=("b", ANY),
                  arguments=[])
        while life.anchor.pending:
            life.pump(0.05)
            if time.monotonic() - max(each.sent for each in life.waiting()) > 30:
                raise Lost("nobody is served beside a deaf host")
        calls += 1
    life.operator.close_boxes()
    life.settle()
    life.leave(waiting)
    deaf.leave()
    return f"{calls:,} calls of others answered until the operator was asked and gave up"


def comers_and_goers(life, short):
    """Peers that create an object and are gone, those that send no message of the bus, and those that say nothing."""
    count = 50 if short else 500
    for i in range(count):
        peer = Peer(life.address)
        for _ in range(i % 4):
            peer.call(ADD_IN_CLASS, "/Factory", FACTORY, "CreateInstance")
            peer.call(life.owner, life.layers[0].path, OBJECT, "Retain")
        peer.send()
        if i % 5 == 0:
            peer.socket.setblocking(True)
            peer.socket.send(bytes(random.Random(i).randbytes(200)))
        if i % 7 == 0:
            peer.socket.shutdown(socket.SHUT_WR)
        peer.leave()
        if i % 20 == 0:
            life.invoke(life.anchor, life.layers[0], "Visible", GET)
    life.check_objects()
    life.extra = 0
    life.check_count()
    return f"{count} peers; no object and no count of theirs is left"


EXTREMES = {"signatures": signatures, "sizes": sizes, "flood with a box open": flood_with_a_box,
            "calls inside calls": calls_inside_calls, "caller that reads nothing": deaf_caller,
            "host that reads nothing": deaf_host, "comers and goers": comers_and_goers}


def run(life, report, options):
    """All of them in one life, which `life` is to become."""
    life.start()
    life.lookup()
    life.host.honest = True
    for name, extreme in EXTREMES.items():
        what = extreme(life, options.short)
        stranger = Client(life.address, "stranger")
        answer = stranger.ask(*life.invocation(life.layers[0], "Visible", GET, []))
        stranger.leave()
        if answer.error:
            report.fault(f"behind '{name}' a new client's call ends in {answer.error} {answer.body}")
        report.row(name, what, f"{life.memory() / 1024:.1f} MiB")
    take_over(life)
    life.lookup()
    report.row("a new host", "a whole lookup in the same process", f"{life.memory() / 1024:.1f} MiB")
    life.host.honest = True
    life.check_objects()
    life.check_count()
    life.release_all()
    life.wait_for_end()


def take_over(life):
    """The host leaves with all that it held, and another one comes."""
    life.leave(life.host)
    life.host = Host(life.address, life.seed, life.retained_by_host)
    life.peers.insert(0, life.host)
    life.check_objects()

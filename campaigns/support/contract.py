"""What the add-in has to answer to any call: its members as introspection lists them, and the conversions of
values as the contract tells them.

A value is a pair of its signature in the variant and its content. A number is what a call fails with; DONE where it
succeeds.
"""
import math
import re
import xml.etree.ElementTree as xml
from dataclasses import dataclass, field

DONE = 0
ANY = None  # of a result that isn't known, and of a number that hangs on the host
EMPTY, NULL, MISSING = ("(y)", (0,)), ("(y)", (1,)), ("(y)", (10,))
NOTHING = ("(so)", ("", "/"))
METHOD, GET, PUT, PUT_OBJECT = 1, 2, 4, 8
READS, WRITES = (METHOD, GET), (PUT, PUT_OBJECT)
NUMBER = re.compile(r"-?(\d+\.?\d*|\.\d+)(e[+-]?\d+)?", re.I)
WHOLE = {"y": (0, 255), "n": (-2**15, 2**15 - 1), "i": (-2**31, 2**31 - 1)}
# Texts that aren't told by introspection: those that a late-bound call may leave out.
OPTIONAL = {"addtolist": 4}


class Failure(Exception):
    def __init__(self, number):
        super().__init__(number)
        self.number = number


@dataclass
class Slot:
    """One form of a member: to be called or read, or to be written."""
    name: str
    parameters: tuple
    result: str
    is_write: bool
    is_property: bool

    @property
    def typed_name(self):
        return f"Put_{self.name}" if self.is_write and not self.is_property else self.name

    @property
    def required(self):
        return len(self.parameters) - OPTIONAL.get(self.name.lower(), 0)


@dataclass
class Class:
    name: str
    typed: str  # the interface's name; empty where there is none
    slots: list
    by_name: dict = field(init=False)

    def __post_init__(self):
        self.by_name = {(slot.name.lower(), slot.is_write): slot for slot in self.slots}

    def slot(self, name, is_write):
        return self.by_name.get((name.lower(), is_write))


def of_introspection(name, text):
    """A public class, by the interface that belongs to no bus."""
    for node in xml.fromstring(text).iter("interface"):
        if not node.get("name").startswith("org."):
            return Class(name, node.get("name"), [slot for member in node for slot in _slots(member)])
    raise ValueError(f"{name} shows no interface of its own")


def _slots(node):
    name, kind = node.get("name"), node.get("type")
    if node.tag == "property":
        if "read" in node.get("access"):
            yield Slot(name, (), kind, False, True)
        if "write" in node.get("access"):
            yield Slot(name, (kind,), "", True, True)
    if node.tag == "method":
        given = tuple(each.get("type") for each in node if each.get("direction") == "in")
        result = "".join(each.get("type") for each in node if each.get("direction") == "out")
        is_write = name.startswith("Put_")
        yield Slot(name.removeprefix("Put_"), given, result, is_write, False)


def _method(name, *parameters, result=""):
    return Slot(name, parameters, result, False, False)


# It has no interface of its own, so that introspection tells nothing of it.
DIALOG = Class("dlgAddin", "", [
    _method("IncrementCount"), _method("DecrementCount", result="n"), Slot("PBXName", ("s",), "", True, True),
    _method("FrmMove", "(so)"), _method("FrmPositionSave"), Slot("Parent", ("(so)",), "", True, True),
    Slot("ID", ("n",), "", True, True), Slot("CheckLoadError", (), "b", False, True),
    _method("CallBack", "(so)"), _method("BackGround", "n"), _method("TurnFlow", "b")])


# --- values -----------------------------------------------------------------------------------------

def received(value, own):
    """What the add-in makes of a value that comes in. `own` tells whether a path is one of its objects."""
    kind, content = value
    if kind in ("s", "n", "i", "b", "d"):
        if kind == "s" and "\ufffe" in content:
            raise Failure(13)
        return value
    if kind == "y":
        return "n", content
    if kind in ("q", "u", "x", "t"):
        low, high = WHOLE["i"]
        if not low <= content <= high:
            raise Failure(6)
        return "i", content
    if kind == "(d)":
        if not -657435 < content[0] < 2958466:
            raise Failure(6)
        return value
    if kind == "(y)" and value in (EMPTY, NULL, MISSING):
        return value
    if kind == "(so)":
        owner, path = content
        if owner == "" and path != "/" or owner != "" and not re.fullmatch(r"[:\w.-]+", owner):
            raise Failure(13)
        if not own(owner, path):
            raise Failure(462)
        return value
    raise Failure(13)


def number_of(value):
    kind, content = value
    if value == NULL:
        raise Failure(94)
    if value == EMPTY:
        return 0
    if kind == "b":
        return -1 if content else 0
    if kind == "(d)":
        return content[0]
    if kind == "s":
        text = content.strip(" ").removeprefix("+")
        if not NUMBER.fullmatch(text):
            raise Failure(13)
        if math.isinf(float(text)):
            raise Failure(6)
        return float(text)
    if kind in ("n", "i", "d"):
        return content
    raise Failure(13)


def converted(value, kind):
    """A received value as a parameter of a type; ANY where the text of a date or a fraction isn't foretold."""
    if kind == "(so)":
        if value[0] != "(so)":
            raise Failure(424)
        return value[1]
    if kind == "s":
        return _text_of(value)
    if kind == "b":
        if value[0] == "s" and value[1].lower() in ("true", "false"):
            return value[1].lower() == "true"
        return number_of(value) != 0
    number, (low, high) = number_of(value), WHOLE[kind]
    if math.isnan(number) or not low - 0.5 <= number <= high + 0.5 or not low <= round(number) <= high:
        raise Failure(6)
    return round(number)


def _text_of(value):
    kind, content = value
    if kind == "s":
        return content
    if kind == "(d)":
        return ANY
    if kind == "b":
        return "True" if content else "False"
    number = number_of(value)
    if value == EMPTY:
        return ""
    return str(number) if isinstance(number, int) else ANY


# --- calls ------------------------------------------------------------------------------------------

def late_bound(described, name, kind, arguments, own):
    """The slot that a late-bound call reaches and what it gets; raises what the call has to fail with."""
    if kind not in READS + WRITES:
        raise Failure(5)
    given = [received(argument, own) for argument in arguments]
    is_write = kind in WRITES
    slot = described.slot(name, is_write)
    if slot is None:
        raise Failure(383 if is_write and described.slot(name, False) else 438)
    if len(given) > len(slot.parameters):
        raise Failure(450)
    values = []
    for i, parameter in enumerate(slot.parameters):
        value = given[i] if i < len(given) else MISSING
        if value == MISSING and i < slot.required:
            raise Failure(450)
        values.append("" if value == MISSING else converted(value, parameter))
    return slot, values, given

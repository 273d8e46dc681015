"""A peer of the bus without a library: every message as one wants it, as many at once as one wants, and reading
only when one wants.

A value in a variant is a pair of its signature and its content. Everything else is plain Python: a text, a number,
a list for an array (of pairs, for a dictionary), a tuple for a structure.
"""
import functools
import os
import select
import socket
import struct
import time
from collections import deque, namedtuple

CALL, RETURN, ERROR = 1, 2, 3
NO_ANSWER = 1  # a flag of a call
BASIC = {"y": "B", "n": "<h", "q": "<H", "i": "<i", "u": "<I", "x": "<q", "t": "<Q", "d": "<d", "b": "<I"}
SIZES = {"y": 1, "n": 2, "q": 2, "i": 4, "u": 4, "x": 8, "t": 8, "d": 8, "b": 4}
ALIGNMENTS = {**SIZES, "s": 4, "o": 4, "g": 1, "v": 1, "a": 4, "(": 8, "{": 8}
PATH, INTERFACE, MEMBER, ERROR_NAME, REPLY_SERIAL, DESTINATION, SENDER, SIGNATURE = range(1, 9)
LARGEST_READ = 1 << 20

Message = namedtuple("Message", "type flags serial reply sender path interface member error signature body")


@functools.lru_cache(maxsize=4096)
def types_of(signature):
    """The single complete types of a signature."""
    types, at = [], 0
    while at < len(signature):
        end = _end_of_type(signature, at)
        types.append(signature[at:end])
        at = end
    return tuple(types)


def _end_of_type(signature, at):
    while signature[at] == "a":
        at += 1
    if signature[at] not in "({":
        return at + 1
    depth = 0
    while True:
        depth += (signature[at] in "({") - (signature[at] in ")}")
        at += 1
        if depth == 0:
            return at


def append(data, kind, value):
    """Appends a value of one complete type to a message's body."""
    first = kind[0]
    data += b"\0" * (-len(data) % ALIGNMENTS[first])
    if first in "so":
        text = value.encode() if isinstance(value, str) else value
        data += struct.pack("<I", len(text)) + text + b"\0"
    elif first == "v":
        append(data, "g", value[0])
        for each in types_of(value[0]):
            append(data, each, value[1])
    elif first == "a":
        _append_array(data, kind[1:], value)
    elif first in "({":
        for each, part in zip(types_of(kind[1:-1]), value):
            append(data, each, part)
    elif first == "g":
        data += bytes([len(value)]) + value.encode() + b"\0"
    else:
        data += struct.pack(BASIC[first], value)


def _append_array(data, kind, values):
    data += b"\0\0\0\0"
    place = len(data) - 4
    data += b"\0" * (-len(data) % ALIGNMENTS[kind[0]])
    start = len(data)
    if kind == "y":
        data += bytes(values)
    else:
        for value in values:
            append(data, kind, value)
    struct.pack_into("<I", data, place, len(data) - start)


class Reader:
    def __init__(self, data, at=0):
        self.data, self.at = data, at

    def align(self, size):
        self.at += -self.at % size

    def read(self, kind):
        first = kind[0]
        self.align(ALIGNMENTS[first])
        if first in "so":
            return self._text(4)
        if first == "g":
            return self._text(1)
        if first == "v":
            signature = self._text(1)
            return signature, self.read(signature)
        if first == "a":
            return self._array(kind[1:])
        if first in "({":
            return tuple(self.read(each) for each in types_of(kind[1:-1]))
        (value,) = struct.unpack_from(BASIC[first], self.data, self.at)
        self.at += SIZES[first]
        return bool(value) if first == "b" else value

    def _text(self, size):
        length = int.from_bytes(self.data[self.at:self.at + size], "little")
        start = self.at + size
        self.at = start + length + 1
        return self.data[start:start + length].decode()

    def _array(self, kind):
        (length,) = struct.unpack_from("<I", self.data, self.at)
        self.at += 4
        self.align(ALIGNMENTS[kind[0]])
        end, values = self.at + length, []
        while self.at < end:
            values.append(self.read(kind))
        return values


class Peer:
    """One connection. `call` and `answer` only put a message down; `serve` sends and receives."""

    def __init__(self, address):
        place = address.split(",")[0].partition("=")[2]
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect("\0" + place if "abstract=" in address else place)
        self.socket.sendall(b"\0AUTH EXTERNAL " + str(os.getuid()).encode().hex().encode() + b"\r\n")
        while not self.socket.recv(4096).endswith(b"\r\n"):
            pass
        self.socket.sendall(b"BEGIN\r\n")
        self.socket.setblocking(False)
        self.serial, self.out, self.data = 0, deque(), bytearray()
        self.is_open = True
        self.name = self.ask("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "Hello").body[0]

    def fileno(self):
        return self.socket.fileno()

    def leave(self):
        """Without a word, whatever is under way."""
        self.socket.close()
        self.is_open = False

    # --- out --------------------------------------------------------------------------------------

    def call(self, destination, path, interface, member, signature="", arguments=(), flags=0):
        fields = [(PATH, ("o", path)), (MEMBER, ("s", member)), (DESTINATION, ("s", destination))]
        if interface:
            fields.append((INTERFACE, ("s", interface)))
        return self._put(CALL, flags, fields, signature, arguments)

    def answer(self, call, signature="", arguments=()):
        fields = [(REPLY_SERIAL, ("u", call.serial)), (DESTINATION, ("s", call.sender))]
        if not call.flags & NO_ANSWER:
            self._put(RETURN, NO_ANSWER, fields, signature, arguments)

    def refuse(self, call, name, text, number=None):
        fields = [(REPLY_SERIAL, ("u", call.serial)), (DESTINATION, ("s", call.sender)), (ERROR_NAME, ("s", name))]
        body = (text,) if number is None else (text, number)
        self._put(ERROR, NO_ANSWER, fields, "si"[:len(body)], body)

    def _put(self, kind, flags, fields, signature, arguments):
        self.serial += 1
        body = bytearray()
        for each, value in zip(types_of(signature), arguments, strict=True):
            append(body, each, value)
        if signature:
            fields.append((SIGNATURE, ("g", signature)))
        head = bytearray(struct.pack("<BBBBII", ord("l"), kind, flags, 1, len(body), self.serial))
        append(head, "a(yv)", fields)
        head += b"\0" * (-len(head) % 8)
        self.out.append(memoryview(bytes(head + body)))
        return self.serial

    def send(self):
        """Sends what the socket takes."""
        try:
            while self.out:
                part = self.out[0]
                sent = self.socket.send(part)
                if sent < len(part):
                    self.out[0] = part[sent:]
                else:
                    self.out.popleft()
        except BlockingIOError:
            pass

    # --- in ---------------------------------------------------------------------------------------

    def receive(self):
        """The messages that have come."""
        try:
            part = self.socket.recv(LARGEST_READ)
        except BlockingIOError:
            return []
        if not part:
            raise ConnectionError("the bus has closed the connection")
        self.data += part
        messages, at = [], 0
        while (end := self._end_of_message(at)) is not None:
            messages.append(self._message(bytes(self.data[at:end])))
            at = end
        del self.data[:at]
        return messages

    def _end_of_message(self, at):
        if len(self.data) < at + 16:
            return None
        body, = struct.unpack_from("<I", self.data, at + 4)
        fields, = struct.unpack_from("<I", self.data, at + 12)
        end = at + 16 + fields + -fields % 8 + body
        return end if len(self.data) >= end else None

    @staticmethod
    def _message(data):
        kind, flags, serial = data[1], data[2], struct.unpack_from("<I", data, 8)[0]
        reader = Reader(data, 12)
        fields = {code: value[1] for code, value in reader.read("a(yv)")}
        reader.align(8)
        body = Reader(data[reader.at:])
        values = [body.read(each) for each in types_of(fields.get(SIGNATURE, ""))]
        return Message(kind, flags, serial, fields.get(REPLY_SERIAL), fields.get(SENDER), fields.get(PATH),
                       fields.get(INTERFACE), fields.get(MEMBER), fields.get(ERROR_NAME),
                       fields.get(SIGNATURE, ""), values)

    def ask(self, *message, seconds=25):
        """Calls and waits for the answer; what else comes meanwhile is dropped."""
        serial, end = self.call(*message), time.monotonic() + seconds
        while time.monotonic() < end:
            self.send()
            select.select([self], [self] if self.out else [], [], 0.2)
            for answer in self.receive():
                if answer.reply == serial:
                    return answer
        raise TimeoutError(f"no answer to {message[3]}")

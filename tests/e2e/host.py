"""A host that is written against the contract alone and shares no code with the programs. It misbehaves on request."""
import contextlib
import re
import threading
from collections import Counter
from concurrent.futures import Future

from gi.repository import Gio, GLib

from sandbox import SOURCES

CONTRACT, ADD_IN_CLASS, EXCHANGE = "org.velmora.Automation1.", "Horalink10013.cOLELayer", "Main Office"
BUS, BUSY = "org.freedesktop.DBus", f"{CONTRACT}Error.Busy"
CALL, READ, WRITE = 1, 2, 4
EMPTY = (0,)
LIMIT = 40  # seconds; the add-in waits for 20 before it asks the operator
OBJECT = Gio.DBusNodeInfo.new_for_xml((SOURCES / "docs/introspection/host.xml").read_text()).interfaces[0]


def value(plain):
    kind = "(y)" if plain == EMPTY else {bool: "b", int: "n", str: "s", tuple: "(so)"}[type(plain)]
    return GLib.Variant(kind, plain)


def result(future):
    """What a call gives; of one that failed the name, the description and the number."""
    reply = future.result(LIMIT)
    body = reply.get_body().unpack() if reply.get_body() else (None,)
    return (reply.get_error_name(), *body) if reply.get_error_name() else body[0]


class Host:
    """Serves in a thread of its own. `clients` are those of the keys of logins, `kept` counts the references that the
    add-in holds, `delay` is what REGComData takes in milliseconds, `halts_at` a member that it halts in."""

    def __init__(self, address):
        self.calls, self.kept, self.clients, self.tags = [], Counter(), {}, {}
        self.calls_back, self.code, self.delay, self.halts_at = True, 0, 0, ""
        self.halted, self.wakes = threading.Event(), threading.Event()
        self.loop = GLib.MainLoop(GLib.MainContext())
        flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
        self.bus = Gio.DBusConnection.new_for_address_sync(address, flags, None, None)
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        self.loop.get_context().push_thread_default()
        for path in ("/Host", "/Exchange"):
            self.bus.register_object(path, OBJECT, self.serve, None, None)
        self.loop.run()

    def halt(self):
        """Blocks its thread until it is woken."""
        self.halted.set()
        self.wakes.wait()

    def leave(self):
        self.wakes.set()
        self.later(self.loop.quit)
        self.thread.join()
        if not self.bus.is_closed():
            self.bus.close_sync()

    def later(self, act, milliseconds=0):
        """In its own thread, at once where that is this one."""
        if self.loop.get_context().is_owner() and not milliseconds:
            return act()
        source = GLib.Timeout(milliseconds)
        source.set_callback(lambda *_: act() and False)
        source.attach(self.loop.get_context())

    def behave(self, sender, call, answer):
        self.calls.append((sender, call))
        if call.split()[0] == self.halts_at:
            self.halt()
        self.later(answer, self.delay if call == "REGComData" else 0)

    def asked_by(self, layer):
        return [call for sender, call in self.calls if sender == layer[0]]

    def serve(self, _bus, sender, path, _interface, method, parameters, invocation):
        if method != "Invoke":
            self.kept[path] += 1 if method == "Retain" else -1
            return invocation.return_value(None)
        member, _, arguments = parameters.unpack()

        def answer(plain):
            given = GLib.Variant("v", value(plain))
            invocation.return_value(GLib.Variant.new_tuple(given, parameters.get_child_value(2)))

        if path.startswith("/Response/"):
            return answer(self.respond(path.rpartition("/")[2], member, *arguments))
        if member == "SendRequest":
            return self.take(sender, arguments[0], answer)
        own = [each[1] if isinstance(each, tuple) else str(each) for each in arguments
               if not isinstance(each, tuple) or each[0] == self.bus.get_unique_name()]
        given = self.log_in(arguments[1]) if member == "Login" else self.at("/Exchange") if member == "oPBX" else EMPTY
        self.kept["/Exchange"] += member == "oPBX"
        self.behave(sender, member if member.endswith("ComData") else " ".join([member, *own]), lambda: answer(given))

    def log_in(self, client):
        key = f"L{len(self.clients) + 1}"
        self.clients[key] = client
        self.send(client, "Object", "Retain")
        self.bus.register_object(f"/Response/{key}", OBJECT, self.serve, None, None)
        return key

    def take(self, sender, record, answer):
        key = f"L{len(self.clients)}"

        def accept():
            answer("R")
            if self.calls_back:
                self.call_back()

        def tagged(reply):
            tag = result(reply)
            self.tags[key] = tag if isinstance(tag, str) else "LOOKUP_CLOCK"  # a read that failed
            self.behave(sender, f"SendRequest {self.tags[key]}", accept)
        self.invoke(record, "Tag", READ).add_done_callback(tagged)

    def respond(self, key, member, *arguments):
        item = arguments[0] if member.endswith("Data") else 0
        return {"Count": 3, "CMD": "02", "FirstData": str(item), "SecondData": ("2026", "07/04 SAT", "09:02:00")[item],
                "ExtraData": "OK", "ErrCode": self.code, "Message": "OK", "Tag": self.tags[key], "LoginID": key}[member]

    def send(self, target, interface, method, parameters=None):
        """Sends in the order of these calls; gives the reply that is to come."""
        message = Gio.DBusMessage.new_method_call(*target, CONTRACT + interface, method)
        message.set_body(parameters or GLib.Variant("()", ()))
        future = Future()

        def answered(bus, reply):
            with contextlib.suppress(GLib.Error):  # the connection was closed meanwhile
                future.set_result(bus.send_message_with_reply_finish(reply))
        self.later(lambda: self.bus.send_message_with_reply(
            message, Gio.DBusSendMessageFlags.NONE, GLib.MAXINT32, None, answered))
        return future

    def invoke(self, target, member, kind, *arguments):
        return self.send(target, "Object", "Invoke",
                         GLib.Variant("(sqav)", (member, kind, [value(each) for each in arguments])))

    def create(self):
        return self.send((ADD_IN_CLASS, "/Factory"), "Factory", "CreateInstance")

    def register(self, layer):
        return result(self.invoke(layer, "RegisterPBX", CALL, EXCHANGE, self.at("/Host"), 7))

    def open(self, layer=None):
        """Shows the dialog of an object, or of a new one."""
        layer = layer or result(self.create())
        self.register(layer)
        result(self.invoke(layer, "Visible", WRITE, True))
        return layer

    def client(self):
        return self.clients[f"L{len(self.clients)}"]

    def call_back(self):
        return self.invoke(self.client(), "CallBack", CALL, self.at(f"/Response/L{len(self.clients)}"))

    def ask(self, owner, path, interface, method, *arguments):
        asked = GLib.Variant("(s)", arguments) if arguments else None
        return self.bus.call_sync(owner, path, interface, method, asked, None, 0, LIMIT * 1000, None).unpack()[0]

    def objects(self, layer):
        tree = self.ask(layer[0], "/Object", f"{BUS}.Introspectable", "Introspect")
        return {f"/Object/{number}" for number in re.findall(r'node name="(\d+)"', tree)}

    def at(self, path):
        return self.bus.get_unique_name(), path

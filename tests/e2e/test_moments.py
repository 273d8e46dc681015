"""What a host and an operator do at awkward moments, seen by a host that shares no code with the programs."""
import threading
import unittest
from concurrent.futures import Future

from gi.repository import Gio, GLib

from end_to_end import open_stage as setUpModule  # noqa: F401

import stage
from stage import (ADD_IN, ADD_IN_CLASS, CLOCK_READ, CLOSE, EXCHANGE, GIVE_UP, LOGIN_FAILED, LOOKUP, UPDATE, WAIT_BOX,
                   EndToEndTest, dialog_title, pids)

CONTRACT, BUS = "org.velmora.Automation1.", "org.freedesktop.DBus"
CALL, READ, WRITE = 1, 2, 4
EMPTY = (0,)
LIMIT = 40  # seconds; the add-in waits for 20 before it asks the operator
INVOKE = Gio.DBusNodeInfo.new_for_xml(f"""<node><interface name="{CONTRACT}Object"><method name="Invoke">
  <arg type="s" direction="in"/><arg type="q" direction="in"/><arg type="av" direction="in"/>
  <arg type="v" direction="out"/><arg type="av" direction="out"/></method></interface></node>""").interfaces[0]
CLOCK = ("2026", "07/04 SAT", "09:02:03")

# What the add-in calls.
OPENED = ["GetComData"]


def asked(key, tag="LOOKUP_CLOCK"):
    return ["oPBX", f"Login {EXCHANGE}", f"ShowMessage PBX clock request: {key}",
            "oPBX", f"SendRequest {tag}", "ShowMessage PBX clock request: R"]


def told(key):
    return [f"ShowResults {dialog_title()} /Response/{key}", "ShowMessage OK", "ShowCode 0"]


def logged_out(key):
    return ["oPBX", f"LogOut {EXCHANGE} {key}"]


def good(key, tag="LOOKUP_CLOCK"):
    return asked(key, tag) + told(key) + logged_out(key)


def value(plain):
    kinds = {bool: "b", int: "n", str: "s", tuple: "(y)" if plain == EMPTY else "(so)"}
    return GLib.Variant(kinds[type(plain)], plain)


def connect():
    flags = Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION
    address = stage.arrangement.environment["DBUS_SESSION_BUS_ADDRESS"]
    return Gio.DBusConnection.new_for_address_sync(address, flags, None, None)


def result(future):
    """What a call gives; of one that failed the name, the description and the number."""
    reply = future.result(LIMIT)
    body = reply.get_body().unpack() if reply.get_body() else (None,)
    return (reply.get_error_name(), *body) if reply.get_error_name() else body[0]


class Host:
    """Serves in a thread of its own. `behaviours` holds for a member what becomes of its next answer: a routine that
    gets the routine that sends it."""

    def __init__(self):
        self.calls, self.behaviours, self.held = [], {}, []
        self.clients, self.tags, self.messages = {}, {}, {}  # by the keys of logins
        self.refusals, self.calls_back = [], True
        self.awake = threading.Event()
        self.context = GLib.MainContext()
        self.loop = GLib.MainLoop(self.context)
        self.bus = connect()
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        self.context.push_thread_default()
        for path in ("/Host", "/Exchange"):
            self.bus.register_object(path, INVOKE, self.serve, None, None)
        self.loop.run()

    def leave(self):
        self.awake.set()
        self.later(self.loop.quit)
        self.thread.join()
        if not self.bus.is_closed():
            self.bus.close_sync()

    def later(self, act, milliseconds=0):
        """In its own thread, at once where that is this one."""
        if self.context.is_owner() and not milliseconds:
            return act()
        source = GLib.Timeout(milliseconds)
        source.set_callback(lambda *_: act() and False)
        source.attach(self.context)

    def behave(self, sender, call, answer):
        self.calls.append((sender, call))
        self.behaviours.pop(call.split()[0], lambda send: send())(answer)

    def asked_by(self, layer):
        """The calls from the process of an object."""
        return [call for sender, call in self.calls if sender == layer[0]]

    def serve(self, _bus, sender, path, _interface, _method, parameters, invocation):
        member, _, arguments = parameters.unpack()

        def answer(plain):
            answers = GLib.Variant("v", value(plain)), parameters.get_child_value(2)
            invocation.return_value(GLib.Variant.new_tuple(*answers))

        if path.startswith("/Response/"):
            return answer(self.respond(path.rpartition("/")[2], member, *arguments))
        if member == "SendRequest":
            return self.take(sender, arguments[0], answer)
        own = [each[1] if isinstance(each, tuple) else str(each) for each in arguments
               if not isinstance(each, tuple) or each[0] == self.bus.get_unique_name()]
        given = self.log_in(arguments[1]) if member == "Login" else self.at("/Exchange") if member == "oPBX" else EMPTY
        self.behave(sender, member if member.endswith("ComData") else " ".join([member, *own]), lambda: answer(given))

    def log_in(self, client):
        if self.refusals:
            return self.refusals.pop()
        key = f"L{len(self.clients) + 1}"
        self.clients[key] = client
        self.send(client, "Object", "Retain")
        self.bus.register_object(f"/Response/{key}", INVOKE, self.serve, None, None)
        return key

    def take(self, sender, record, answer):
        key = f"L{len(self.clients)}"

        def accept():
            answer("R")
            if self.calls_back:
                self.call_back(key)

        def tagged(reply):
            self.tags[key] = result(reply)
            self.behave(sender, f"SendRequest {self.tags[key]}", accept)
        self.invoke(record, "Tag", READ).add_done_callback(tagged)

    def respond(self, key, member, *arguments):
        if member == "Message" and arguments:
            self.messages[key] = arguments[0]
        item = arguments[0] if arguments and member != "Message" else 0
        return {"Count": 3, "CMD": "02", "FirstData": str(item), "SecondData": CLOCK[item], "ExtraData": "OK", "ErrCode": 0,
                "Tag": self.tags[key], "LoginID": key, "Message": self.messages.get(key, "")}[member]

    def send(self, target, interface, method, parameters=None):
        """Sends in the order of these calls; gives the reply that is to come."""
        message = Gio.DBusMessage.new_method_call(*target, CONTRACT + interface, method)
        message.set_body(parameters or GLib.Variant("()", ()))
        future = Future()
        self.later(lambda: self.bus.send_message_with_reply(
            message, Gio.DBusSendMessageFlags.NONE, GLib.MAXINT32, None,
            lambda bus, reply: future.set_result(bus.send_message_with_reply_finish(reply))))
        return future

    def invoke(self, target, member, kind, *arguments):
        return self.send(target, "Object", "Invoke",
                         GLib.Variant("(sqav)", (member, kind, [value(each) for each in arguments])))

    def create(self):
        return self.send((ADD_IN_CLASS, "/Factory"), "Factory", "CreateInstance")

    def call_back(self, key):
        return self.invoke(self.clients[key], "CallBack", CALL, self.at(f"/Response/{key}"))

    def at(self, path):
        return self.bus.get_unique_name(), path


class Moments(EndToEndTest):
    def begin(self):
        super().begin()
        self.host = Host()
        self.clients.append(self.host)

    def register(self, layer):
        self.assertIs(result(self.host.invoke(layer, "RegisterPBX", CALL, EXCHANGE, self.host.at("/Host"), 7)), False)

    def show(self, layer):
        result(self.host.invoke(layer, "Visible", WRITE, True))
        self.dialog()
        stage.driver.raise_window(dialog_title())

    def open(self, creation=None):
        layer = result(creation or self.host.create())
        self.register(layer)
        self.show(layer)
        return layer

    def is_visible(self, layer):
        return result(self.host.invoke(layer, "Visible", READ))

    def press_and_hold(self, member):
        """The host keeps the answer to a member until `go_on`, and serves other calls meanwhile."""
        self.host.behaviours[member] = self.host.held.append
        self.press(LOOKUP)
        self.wait_for(lambda: self.host.held, f"{member} to be called")

    def go_on(self):
        self.host.later(self.host.held.pop())

    def assert_asked(self, layer, calls):
        self.wait_for(lambda: len(self.host.asked_by(layer)) >= len(calls), f"{len(calls)} calls")
        self.assertEqual(self.host.asked_by(layer), calls)

    def test_what_a_disabled_dialog_is_given_is_gone(self):
        for member in ("ShowResults", "LogOut"):
            with self.case(member):
                layer = self.open()
                self.press_and_hold(member)
                stage.driver.press("alt+F4")
                for button in (LOOKUP, UPDATE, CLOSE):
                    self.press(button)
                self.assertTrue(self.is_visible(layer))
                self.go_on()
                self.close_box(CLOCK_READ)
                self.look_up()
                self.assert_asked(layer, OPENED + good("L1") + good("L2"))

    def test_what_is_accepted_during_a_login_follows_it(self):
        self.host.refusals = ["BUSY"]
        layer = self.open()
        self.press_and_hold("Login")
        self.press(UPDATE)
        self.assertTrue(self.is_visible(layer))
        self.assert_asked(layer, OPENED + asked("")[:2])
        self.go_on()
        self.assertIn("updated", self.close_box(CLOCK_READ))
        self.assert_asked(layer, OPENED + asked("BUSY")[:3] + good("L1", "UPDATE_CLOCK"))

    def test_creation_behind_a_release_gets_a_fresh_process(self):
        """With a host that answers REGComData at once or late, and a creation that waits for the answer or doesn't."""
        layers = [result(self.host.create())]
        for late, waits in [(0, True)] * 30 + [(300, True)] * 30 + [(300, False)] * 10:
            self.register(layers[-1])
            self.host.behaviours["REGComData"] = lambda answer, late=late: self.host.later(answer, late)
            released = self.host.send(layers[-1], "Object", "Release")
            if waits:
                result(released)
            layer = result(self.host.create())
            if not waits and layer[0] == f"{CONTRACT}Error.Busy":
                layer = result(self.host.create())
            layers.append(layer)
        self.assertEqual(len({owner for owner, _ in layers}), len(layers))
        for layer in layers[:-1]:
            self.assert_asked(layer, OPENED + ["REGComData"])

    def test_close_makes_room_for_a_fresh_process(self):
        old, creations = self.open(), []

        def create_inside(answer):
            creations.append(self.host.create())
            creations[0].add_done_callback(lambda _: answer())

        calls, unloaded = OPENED, ["UnloadChild 7"]
        for key, behaviour in (("L1", create_inside), ("L2", lambda answer: answer())):
            self.host.behaviours["UnloadChild"] = behaviour
            stage.driver.raise_window(dialog_title())
            stage.driver.press("alt+F4")
            self.assert_asked(old, calls + unloaded)
            new = self.open(creations.pop() if creations else None)
            self.look_up()
            self.assert_asked(new, OPENED + good(key))
            self.assertEqual(result(self.host.invoke(old, "Visible", WRITE, True))[-1], 364)
            self.assertFalse(self.is_visible(old))
            self.assertEqual(len(pids(ADD_IN)), 2)
            result(self.host.send(old, "Object", "Release"))
            self.wait_for(lambda: len(pids(ADD_IN)) == 1, "the old process to end")
            self.assert_asked(old, calls + unloaded + unloaded + ["REGComData"])
            old, calls = new, OPENED + good(key)

    def test_one_box_for_a_host_that_stands_still(self):
        for member, calls, box in [("Login", asked("L1")[:2], LOGIN_FAILED), ("ShowMessage", asked("L1")[:3], None)]:
            with self.case(member):
                layer = self.open()
                self.host.behaviours[member] = lambda answer: (self.host.awake.wait(), answer())
                self.press(LOOKUP)
                self.close_box(WAIT_BOX, GIVE_UP, LIMIT)
                if box:
                    self.close_box(box)
                # The dialog works while the host still stands.
                self.press(CLOSE)
                self.wait_for(lambda: not stage.driver.titles(ADD_IN), "the dialog to hide, and no box")
                self.assert_asked(layer, OPENED + calls)
                self.host.awake.set()
                self.assert_asked(layer, OPENED + calls + logged_out("L1"))
                self.show(layer)
                self.look_up()
                self.assert_asked(layer, OPENED + calls + logged_out("L1") + good("L2"))

    def test_answer_under_a_login_that_was_given_up(self):
        layer = self.open()
        self.host.behaviours["LogOut"] = lambda _: None  # never answered
        self.press_and_hold("SendRequest")
        self.close_box(WAIT_BOX, GIVE_UP, LIMIT)
        self.look_up()
        calls = OPENED + asked("L1")[:5] + logged_out("L1") + good("L2")
        self.assert_asked(layer, calls)
        self.host.calls_back = False
        self.assertEqual(result(self.host.call_back("L1")), EMPTY)
        self.press(LOOKUP)
        calls += told("L1") + asked("L3")
        self.assert_asked(layer, calls)
        self.assertEqual(result(self.host.call_back("L1")), EMPTY)
        calls += told("L1")
        self.assert_asked(layer, calls)
        self.press(UPDATE)  # refused: the wait goes on
        self.assertTrue(self.is_visible(layer))
        self.assertEqual(self.boxes(), [])
        self.host.calls_back = True
        self.host.call_back("L3")
        self.close_box(CLOCK_READ)
        self.look_up()
        self.assert_asked(layer, calls + told("L3") + logged_out("L3") + good("L4"))

    def say_that_the_host_has_left(self, layer):
        stranger, host = connect(), self.host.bus.get_unique_name()
        signal = Gio.DBusMessage.new_signal("/org/freedesktop/DBus", BUS, "NameOwnerChanged")
        signal.set_destination(layer[0])
        signal.set_body(GLib.Variant("(sss)", (host, host, "")))
        stranger.send_message(signal, Gio.DBusSendMessageFlags.NONE)
        stranger.call_sync(layer[0], "/", f"{BUS}.Peer", "Ping", None, None, Gio.DBusCallFlags.NONE, LIMIT * 1000, None)
        stranger.close_sync()

    def test_nobody_but_the_bus_says_that_the_host_has_left(self):
        layer = self.open()
        self.say_that_the_host_has_left(layer)
        self.host.calls_back = False
        self.press_and_hold("Login")
        self.say_that_the_host_has_left(layer)
        self.go_on()
        self.assert_asked(layer, OPENED + asked("L1"))
        self.say_that_the_host_has_left(layer)
        self.host.calls_back = True
        self.host.call_back("L1")
        self.close_box(CLOCK_READ)
        self.look_up()
        self.assert_asked(layer, OPENED + good("L1") + good("L2"))


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""A minimal host for the clock add-in, with python3-dbus and GLib. See docs/host-authors.md.

Opens the add-in for the exchange "Example", and answers when the operator reads the clock there. Prints every
incoming call. Ends with the dialog, or with --once after the first answer.
"""

import datetime
import sys
from collections import Counter

import dbus
import dbus.service
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

ADD_IN = "Horalink10013.cOLELayer"
FACTORY, OBJECT = "org.velmora.Automation1.Factory", "org.velmora.Automation1.Object"
CALL, READ, WRITE = dbus.UInt16(1), dbus.UInt16(2), dbus.UInt16(4)
BUSY = "org.velmora.Automation1.Error.Busy"
EMPTY = dbus.Struct((dbus.Byte(0),))
# By default the bus library gives up after 25 seconds. The contract has no limit: a call may wait for the operator.
FOREVER = 2147483


class NoSuchMember(dbus.DBusException):
    _dbus_error_name = "org.freedesktop.DBus.Error.UnknownMethod"  # becomes run-time error 438


def shown(value):
    if isinstance(value, dbus.Struct):
        return "<object>"
    return f'"{value}"' if isinstance(value, str) else str(value)


class AutomationObject(dbus.service.Object):
    """An object on the bus. `members` maps a name in lower case to a function of the argument list, which can
    return values by reference in that list."""

    count = 0
    passing = False  # True for an object to be removed with its last reference

    def __init__(self, bus):
        AutomationObject.count += 1
        path = f"/Object/{AutomationObject.count}"
        super().__init__(bus, path)
        self.bus, self.held, self.members = bus, Counter(), {}
        self.reference = dbus.Struct((bus.get_unique_name(), dbus.ObjectPath(path)), signature="so")

    @dbus.service.method(OBJECT, in_signature="sqav", out_signature="vav", sender_keyword="sender")
    def Invoke(self, member, kind, arguments, sender):
        print(f"{member}({', '.join(map(shown, arguments))})", flush=True)
        if member.lower() not in self.members:  # case doesn't matter
            raise NoSuchMember(f"no member {member}")
        result = self.members[member.lower()](arguments)
        if isinstance(result, AutomationObject):
            result.Retain(sender)  # the caller owns a returned reference
            result = result.reference
        return EMPTY if result is None else result, arguments

    @dbus.service.method(OBJECT, sender_keyword="sender")
    def Retain(self, sender):
        self.held[sender] += 1
        # A peer that dies can't release what it holds.
        self.bus.watch_name_owner(sender, lambda owner: owner or self.let_go(sender, self.held[sender]))

    @dbus.service.method(OBJECT, sender_keyword="sender")
    def Release(self, sender):
        if not self.held[sender]:
            raise dbus.DBusException("no reference is held", name="org.velmora.Automation1.Error")
        self.let_go(sender, 1)

    def let_go(self, sender, references):
        self.held[sender] -= references
        self.end_if_unused()

    def end_if_unused(self):
        if self.passing and not +self.held and self.locations:
            self.remove_from_connection()


class Response(AutomationObject):
    """The answer to one request. The add-in reads it, and writes Message."""

    def __init__(self, bus, items, tag, login):
        super().__init__(bus)
        self.message = ""
        texts = {"count": dbus.Int16(len(items)), "errcode": 0, "tag": tag, "loginid": login}
        self.members = {name: lambda _, value=value: value for name, value in texts.items()}
        for place, name in enumerate(("cmd", "firstdata", "seconddata", "extradata")):
            self.members[name] = lambda index, place=place: items[int(index[0])][place]
        self.members["message"] = self.message_property

    def message_property(self, arguments):
        if arguments:  # on a write, the last argument is the new value
            self.message = arguments[-1]
            return None
        return self.message


class Host:
    def __init__(self, bus, once):
        self.bus, self.once, self.loop = bus, once, GLib.MainLoop()
        self.layer = self.client = None
        self.logged_in = self.answered = self.failed = False
        self.store = {}  # a real host keeps these in a file
        ignore = lambda arguments: None
        self.object, self.exchange = AutomationObject(bus), AutomationObject(bus)
        self.object.members = {
            "opbx": lambda _: self.exchange, "showmessage": ignore, "showresults": ignore, "showcode": ignore,
            "displayhelp": ignore, "turnonflow": ignore, "turnoffflow": ignore,
            "unloadchild": self.unload_child,
            "regcomdata": self.reg_com_data, "getcomdata": self.get_com_data,
        }
        # ConnectToPbx is for stand-alone runs, which create the exchange object by name; not served here.
        self.exchange.members = {"login": self.login, "sendrequest": self.send_request, "logout": self.log_out}

    # --- outgoing calls -----------------------------------------------------------------------------------
    # A host must serve calls during its own calls: RegisterPBX calls GetComData before it returns. So no call
    # blocks; a sequence of calls is a generator that yields them.

    def call(self, reference, member, kind, *arguments):
        return reference, OBJECT, "Invoke", "sqav", (member, kind, dbus.Array(arguments, signature="v"))

    def run(self, steps, answer=None, error=None):
        try:
            self.send(steps, *(steps.throw(error) if error else steps.send(answer)))
        except StopIteration:
            return
        except dbus.DBusException as problem:
            self.give_up(problem.get_dbus_message())

    def send(self, steps, reference, *call):
        def failed(error):
            if error.get_dbus_name() == BUSY:  # repeat the call a little later
                GLib.timeout_add(200, self.send, steps, reference, *call)
            else:
                self.run(steps, error=error)

        self.bus.call_async(*reference, *call, lambda *values: self.run(steps, values), failed, timeout=FOREVER)

    def notify(self, reference, method):
        """Retain or Release, without waiting for the answer. Messages arrive in the order sent."""
        self.bus.call_async(*reference, OBJECT, method, "", (), None, None)

    # --- the life of the add-in -----------------------------------------------------------------------------

    def open_add_in(self):
        try:
            (self.layer,) = yield (ADD_IN, "/Factory"), FACTORY, "CreateInstance", "", ()  # we own it
        except dbus.DBusException as problem:
            self.give_up(f"the add-in can't be created (error 429): {problem.get_dbus_message()}")
            return
        self.bus.watch_name_owner(self.layer[0], lambda owner: owner or self.loop.quit())
        failed, _ = yield self.call(self.layer, "RegisterPBX", CALL, "Example", self.object.reference, dbus.Int16(1))
        if failed:  # True: the dialog didn't load completely
            print("RegisterPBX reports a failure", flush=True)
        yield self.call(self.layer, "Visible", WRITE, True)

    def release_add_in(self):
        """Releases the last reference. The add-in still calls REGComData, then it leaves the bus and we end."""
        layer, self.layer = self.layer, None
        if layer:
            self.notify(layer, "Release")

    def give_up(self, why):
        self.failed = True
        print(f"host.py: {why}", file=sys.stderr)
        self.loop.quit()

    # --- members of the host object -----------------------------------------------------------------------

    def unload_child(self, arguments):
        GLib.idle_add(self.release_add_in)  # not inside the add-in's call

    def reg_com_data(self, arguments):
        application, key, value = arguments
        self.store[application, key] = value

    def get_com_data(self, arguments):
        arguments[2] = self.store.get(tuple(arguments[:2]), "")  # returned by reference

    # --- members of the exchange object -------------------------------------------------------------------

    def login(self, arguments):
        if self.logged_in:
            return "BUSY"
        self.client, self.logged_in = arguments[1], True
        self.notify(self.client, "Retain")  # borrowed for this call only, but CallBack needs it later
        return "KEY"

    def send_request(self, arguments):
        self.notify(arguments[0], "Retain")
        # Not at once: the add-in relies on SendRequest returning before CallBack.
        GLib.timeout_add(50, lambda: self.run(self.answer(arguments[0])))
        return "ACCEPTED"

    def log_out(self, arguments):
        self.logged_in = False
        GLib.idle_add(self.end_if_done)  # not inside the add-in's call

    def end_if_done(self):
        if self.once and self.answered and not self.logged_in:
            self.release_add_in()

    def answer(self, record):
        tag, _ = yield self.call(record, "Tag", READ)
        login, _ = yield self.call(record, "LoginID", READ)
        count, _ = yield self.call(record, "Count", READ)
        clock, items = datetime.datetime.now() + datetime.timedelta(minutes=10), []
        values = {"0": clock.strftime("%Y"), "1": clock.strftime("%m/%d"), "2": clock.strftime("%H:%M:%S")}
        for i in range(count):
            command, _ = yield self.call(record, "CMD", READ, dbus.Int16(i))
            first, _ = yield self.call(record, "FirstData", READ, dbus.Int16(i))
            if tag == "LOOKUP_CLOCK":
                items.append((command, first, values.get(first, "DATA NOT FOUND"), "OK"))
            else:  # this clock can't be set
                items.append((command, first, "", "CODE NOT ALLOWED"))
        self.notify(record, "Release")
        response, client = Response(self.bus, items, tag, login), self.client
        yield self.call(client, "CallBack", CALL, response.reference)  # shows the answer, logs out, then returns
        self.notify(client, "Release")
        response.passing = True
        response.end_if_unused()
        self.answered = True
        self.end_if_done()


def main():
    DBusGMainLoop(set_as_default=True)
    try:
        host = Host(dbus.SessionBus(), "--once" in sys.argv[1:])
    except dbus.DBusException as problem:
        sys.exit(f"host.py: no session bus: {problem.get_dbus_message()}")
    host.run(host.open_add_in())
    try:
        host.loop.run()
    except KeyboardInterrupt:
        host.release_add_in()
        host.bus.flush()
    return 1 if host.failed else 0


if __name__ == "__main__":
    sys.exit(main())

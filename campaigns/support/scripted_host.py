"""A host that does at each moment what it is told: a process of its own, which can be stopped and killed.

Commands come as lines of JSON on the standard input, what happens goes out the same way. Unless it was told
otherwise it keeps the contract. `ScriptedHost` in states.py is the other end of the line.
"""
import json
import os
import sys
from collections import Counter

import dbus
import dbus.lowlevel
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

ADD_IN = "Horalink10013.cOLELayer"
FACTORY, OBJECT = "org.velmora.Automation1.Factory", "org.velmora.Automation1.Object"
ERROR, BUSY = "org.velmora.Automation1.Error", "org.velmora.Automation1.Error.Busy"
UNKNOWN_MEMBER = "org.freedesktop.DBus.Error.UnknownMethod"
HOST, EXCHANGE, RESPONSE = "/Host", "/Exchange", "/Response/"
EMPTY = dbus.Struct((dbus.Byte(0),))
FOREVER = 2147483
LISTS = ("cmd", "firstdata", "seconddata", "extradata")


class Response:
    """The answer to one request. Its time of day is its number in seconds, by which a box tells whose it is."""

    def __init__(self, number, tag, login):
        minutes, seconds = divmod(number, 60)
        self.time = f"{minutes // 60:02}:{minutes % 60:02}:{seconds:02}"
        items = [("02", "0", "2031", "OK"), ("02", "1", "11/18 TUE", "OK"), ("02", "2", self.time, "OK")]
        self.lists = {name: [item[place] for item in items] for place, name in enumerate(LISTS)}
        self.fields = {"count": dbus.Int16(len(items)), "errcode": 0, "tag": tag, "loginid": login, "message": ""}

    def invoke(self, member, arguments):
        if member in self.lists:
            return self.lists[member][int(arguments[0])]
        if member == "message" and arguments:
            self.fields[member] = str(arguments[-1])
            return EMPTY
        return self.fields.get(member)


class Host:
    def __init__(self, bus):
        self.bus = bus
        self.logins = self.sends = self.answers = 0
        self.login = ""
        self.to_hold, self.held = set(), {}  # members in lower case
        self.scripted = {}  # what the next call of a member gets, or all of them
        self.answering, self.delay = True, 50  # milliseconds
        self.references = {}  # what this process knows of the add-in, by name
        self.held_of_us = Counter()
        self.responses = {}
        bus.add_message_filter(self.filter)

    def own(self, path):
        return dbus.Struct((self.bus.get_unique_name(), dbus.ObjectPath(path)), signature="so")

    @staticmethod
    def tell(**event):
        print(json.dumps(event), flush=True)

    # --- calls that come in -----------------------------------------------------------------------

    def filter(self, bus, message):
        if not isinstance(message, dbus.lowlevel.MethodCallMessage) or message.get_interface() != OBJECT:
            return dbus.lowlevel.HANDLER_RESULT_NOT_YET_HANDLED
        path = message.get_path()
        if message.get_member() == "Invoke":
            self.called(message)
        else:
            self.held_of_us[path] += 1 if message.get_member() == "Retain" else -1
            if not message.get_no_reply():
                bus.send_message(dbus.lowlevel.MethodReturnMessage(message))
        return dbus.lowlevel.HANDLER_RESULT_HANDLED

    def called(self, message):
        member, _, arguments = message.get_args_list()
        name = member.lower()
        self.tell(call=member, arguments=[self.shown(value) for value in arguments])
        if name == "login":
            self.references["dialog"] = tuple(arguments[1])
        if name == "sendrequest":
            self.references["record"] = tuple(arguments[0])
        if name in self.to_hold:
            self.to_hold.discard(name)
            self.held[name] = message
            self.tell(held=member)
        else:
            reply = dict(self.scripted.get(name, {"kind": "good"}))
            if not reply.pop("always", False):
                self.scripted.pop(name, None)
            self.reply(message, **reply)

    @staticmethod
    def shown(value):
        return "<object>" if isinstance(value, dbus.Struct) else str(value)

    def reply(self, message, kind, text="", number=0):
        member, _, arguments = message.get_args_list()
        if kind in ("good", "text"):
            result = text if kind == "text" else self.work(message.get_path(), member.lower(), list(arguments), message)
            if result is None:
                kind = "lack"
            else:
                return self.send_return(message, "vav", result, arguments)
        if kind == "object":
            self.held_of_us[HOST] += 1
            self.send_return(message, "vav", self.own(HOST), arguments)
        elif kind == "strange":  # a type that no value of the contract has
            self.send_return(message, "vav", dbus.Array([1.5], signature="d"), arguments)
        elif kind == "empty":
            self.send_return(message, "")
        elif kind == "bare":
            self.send_return(message, "s", "L1")
        elif kind == "surplus":
            self.send_return(message, "vav", EMPTY, [*arguments, "more", "and more"])
        else:
            name = {"raise": ERROR, "busy": BUSY, "lack": UNKNOWN_MEMBER}[kind]
            error = dbus.lowlevel.ErrorMessage(message, name, "as told")
            if kind == "raise":
                error.append(dbus.Int32(number), signature="i")
            self.bus.send_message(error)

    def send_return(self, message, signature, *values):
        answer = dbus.lowlevel.MethodReturnMessage(message)
        if signature:
            answer.append(*values, signature=signature)
        self.bus.send_message(answer)

    def work(self, path, member, arguments, message):
        """What a member does that keeps the contract; None where there is no such member."""
        if path.startswith(RESPONSE):
            return self.responses[path].invoke(member, arguments)
        if member == "opbx":
            self.held_of_us[EXCHANGE] += 1  # a reference that is returned belongs to the caller
            return self.own(EXCHANGE)
        if member == "login":
            self.retain("dialog")
            self.logins += 1
            self.login = f"L{self.logins}"
            return self.login
        if member == "sendrequest":
            if "dialog" not in self.references:  # another host has given this login
                return "ERROR"
            self.sends += 1
            if self.answering:
                self.answer_soon()
            return f"R{self.sends}"
        known = ("showmessage", "showresults", "showcode", "displayhelp", "unloadchild", "turnonflow",
                 "turnoffflow", "regcomdata", "getcomdata", "logout", "connecttopbx")
        return EMPTY if member in known else None

    def answer_soon(self):
        """Behind the answer to SendRequest: what is sent first also arrives first."""
        if self.delay:
            GLib.timeout_add(self.delay, self.call_back)
        else:
            GLib.idle_add(self.call_back)

    # --- calls that go out ------------------------------------------------------------------------

    def send(self, token, destination, path, interface, method, signature="", *arguments):
        call = dbus.lowlevel.MethodCallMessage(destination, path, interface, method)
        call.append(*arguments, signature=signature)
        self.bus.send_message_with_reply(call, lambda answer: self.answered(token, answer), timeout_s=FOREVER)

    def answered(self, token, answer):
        values = answer.get_args_list()
        if token == "create" and not answer.get_error_name():
            self.references["layer"] = tuple(values[0])
        self.tell(answered=token, error=answer.get_error_name(), values=[self.shown_deep(value) for value in values])

    def shown_deep(self, value):
        if isinstance(value, dbus.Array):
            return [self.shown_deep(entry) for entry in value]
        return self.shown(value) if not isinstance(value, (dbus.Int32, dbus.Int16, dbus.Boolean)) else int(value)

    def retain(self, name):
        self.send("retain", *self.references[name], OBJECT, "Retain")

    def call_back(self, token="callback", login=None):
        self.answers += 1
        path = f"{RESPONSE}{self.answers}"
        response = self.responses[path] = Response(self.answers, "LOOKUP_CLOCK", self.login if login is None else login)
        self.tell(response=response.time)
        self.invoke(token, "dialog", "CallBack", 1, [self.own(path)])

    def invoke(self, token, target, member, kind, arguments):
        self.send(token, *self.references[target], OBJECT, "Invoke", "sqav", member, kind, arguments)

    # --- commands ---------------------------------------------------------------------------------

    def obey(self, command):
        getattr(self, "do_" + command.pop("do"))(**command)

    def do_create(self):
        self.send("create", ADD_IN, "/Factory", FACTORY, "CreateInstance")

    def do_register(self, exchange):
        self.invoke("register", "layer", "RegisterPBX", 1, [exchange, self.own(HOST), dbus.Int16(1)])

    def do_show(self):
        self.invoke("show", "layer", "Visible", 4, [True])

    def do_hold(self, member):
        self.to_hold.add(member.lower())

    def do_script(self, member, **reply):
        self.scripted[member.lower()] = reply

    def do_answering(self, value, delay=50):
        self.answering, self.delay = value, delay

    def do_answer(self, member, **reply):
        self.reply(self.held.pop(member.lower()), **reply)

    def do_answer_if_held(self, member):
        if member.lower() in self.held:
            self.do_answer(member, kind="good")

    def do_callback(self, token, login=None):
        self.call_back(token, login)

    def do_count(self, token, target, method, times=1):
        """Retain or Release, so many times."""
        for time in range(times):
            self.send(f"{token}{time}", *self.references[target], OBJECT, method)

    def do_invoke(self, token, target, member, kind, arguments):
        self.invoke(token, target, member, kind, dbus.Array(map(self.value, arguments), signature="v"))

    def value(self, told):
        """An argument as the driver writes it: a value of JSON, or a name of something that JSON has not."""
        if isinstance(told, int) and not isinstance(told, bool):
            return dbus.Int16(told)
        if not isinstance(told, dict):
            return told
        if "reference" in told:
            return dbus.Struct((told["reference"][0], dbus.ObjectPath(told["reference"][1])), signature="so")
        if "own" in told:
            return self.own(told["own"])
        return dbus.Struct(self.references[told["known"]], signature="so")

    def do_state(self, token):
        counts = {path: count for path, count in self.held_of_us.items() if count}
        self.tell(answered=token, error=None, values=[counts, sorted(self.references)])

    def do_unscript(self):
        self.scripted.clear()


def main():
    host = Host(dbus.SessionBus(mainloop=DBusGMainLoop()))
    loop = GLib.MainLoop()

    rest = b""

    def read(channel, _):
        nonlocal rest
        chunk = os.read(channel, 1 << 16)
        *lines, rest = (rest + chunk).split(b"\n")
        for line in lines:
            host.obey(json.loads(line))
        if not chunk:
            loop.quit()
        return bool(chunk)

    GLib.io_add_watch(sys.stdin.fileno(), GLib.IO_IN | GLib.IO_HUP, read)
    host.tell(ready=True)
    loop.run()


if __name__ == "__main__":
    main()

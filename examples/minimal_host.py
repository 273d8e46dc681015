#!/usr/bin/python3
"""The smallest host of the clock add-in, with python3-gi. See docs/host-authors.md.

Opens the add-in for the exchange "Example", answers a lookup with this PC's time and refuses an update. Its objects
live as long as the program, so it doesn't count references. It ends with the add-in's window; leaving the bus releases
all that it held.
"""
import sys
import time

from gi.repository import Gio, GLib

CONTRACT = "org.velmora.Automation1."
CALL, READ, WRITE = 1, 2, 4
EMPTY, NO_LIMIT = GLib.Variant("(y)", (0,)), GLib.MAXINT32
INVOKE = Gio.DBusNodeInfo.new_for_xml(f"""<node><interface name="{CONTRACT}Object"><method name="Invoke">
  <arg type="s" direction="in"/><arg type="q" direction="in"/><arg type="av" direction="in"/>
  <arg type="v" direction="out"/><arg type="av" direction="out"/></method></interface></node>""").interfaces[0]
bus, loop = Gio.bus_get_sync(Gio.BusType.SESSION), GLib.MainLoop()
state = {"client": None, "tag": "", "message": ""}


def send(target, interface, method, parameters=None, then=lambda *_: None):
    """Doesn't wait for the answer, since the add-in calls back before it answers. `then` receives the answer."""
    def answered(_, result):
        try:
            answer = bus.call_finish(result)
        except GLib.Error as error:
            if Gio.DBusError.get_remote_error(error) == CONTRACT + "Error.Busy":
                GLib.timeout_add(200, send, target, interface, method, parameters, then)
                return
            sys.exit(f"minimal_host.py: {method}: {error.message}")
        then(*answer)

    bus.call(*target, CONTRACT + interface, method, parameters, None, Gio.DBusCallFlags.NONE, NO_LIMIT, None, answered)


def invoke(target, member, kind, *arguments, then=lambda *_: None):
    send(target, "Object", "Invoke", GLib.Variant("(sqav)", (member, kind, [value(each) for each in arguments])), then)


def value(plain):
    kinds = {bool: "b", int: "n", str: "s", tuple: "(so)"}
    return EMPTY if plain is None else GLib.Variant(kinds[type(plain)], plain)


def own(path):
    return bus.get_unique_name(), path


def open_add_in(layer):
    invoke(layer, "RegisterPBX", CALL, "Example", own("/Host"), 1,
           then=lambda *_: invoke(layer, "Visible", WRITE, True))


def unload_child(_):
    GLib.idle_add(loop.quit)


def log_in(_, client):
    state["client"] = client
    send(client, "Object", "Retain")  # borrowed until we answer, but CallBack needs it later
    return "KEY"


def send_request(record):
    invoke(record, "Tag", READ, then=call_back)  # arrives before our answer ends the loan
    return "ACCEPTED"


def call_back(tag, _):
    state.update(tag=tag, message="")
    invoke(state["client"], "CallBack", CALL, own("/Response"))


def message(*written):
    if written:
        state["message"] = written[0]
    return state["message"]


OBJECTS = {
    "/Host": {"oPBX": lambda: own("/Exchange"), "ShowMessage": print, "UnloadChild": unload_child},
    "/Exchange": {"Login": log_in, "SendRequest": send_request},
    "/Response": {
        "Count": lambda: 3, "CMD": lambda i: "02", "FirstData": str, "ExtraData": lambda i: "CODE NOT ALLOWED",
        "SecondData": lambda i: time.strftime(("%Y", "%m/%d", "%H:%M:%S")[i]), "ErrCode": lambda: 0,
        "Tag": lambda: state["tag"], "LoginID": lambda: "KEY", "Message": message},
}


def serve(_bus, _sender, path, _interface, _method, parameters, invocation):
    member, _kind, arguments = parameters.unpack()
    if member not in OBJECTS[path]:
        invocation.return_dbus_error("org.freedesktop.DBus.Error.UnknownMethod", member)
        return
    result = GLib.Variant("v", value(OBJECTS[path][member](*arguments)))
    invocation.return_value(GLib.Variant.new_tuple(result, parameters.get_child_value(2)))


for path in OBJECTS:
    bus.register_object(path, INVOKE, serve, None, None)
send(("Horalink10013.cOLELayer", "/Factory"), "Factory", "CreateInstance", then=open_add_in)
loop.run()
bus.flush_sync()

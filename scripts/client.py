"""A client of the add-in on a connection of its own, written against the contract alone."""
import dbus
import dbus.lowlevel
from dbus.mainloop.glib import DBusGMainLoop
from gi.repository import GLib

from stage import ADD_IN_CLASS as NAME
from stage import LIMIT, connect

FACTORY, OBJECT, TYPED = "org.velmora.Automation1.Factory", "org.velmora.Automation1.Object", "Horalink10013._cOLELayer"


class Client:
    """Calls the add-in over a connection of its own and holds one object of it, to the end of a test at most."""

    def __init__(self, test):
        self.bus = connect(DBusGMainLoop())
        test.clients.append(self)
        self.creation = self.send(NAME, "/Factory", FACTORY, "CreateInstance")

    def created(self):
        """Waits until the object is there."""
        (created, *error) = self.answer(self.creation)
        if error:
            raise AssertionError(f"the creation failed: {created} {error}")
        self.owner, self.path = created
        return self

    def send(self, destination, path, interface, member, signature="", *arguments):
        message = dbus.lowlevel.MethodCallMessage(destination, path, interface, member)
        message.append(*arguments, signature=signature)
        answers = []
        self.bus.send_message_with_reply(message, answers.append, timeout_s=LIMIT)
        self.bus.flush()
        return answers

    def ask(self, *message):
        return self.answer(self.send(*message))

    @staticmethod
    def answer(answers):
        """The results; an error as a list of its name and what it carries."""
        while not answers:
            GLib.MainContext.default().iteration(True)
        (answer,) = answers
        values = answer.get_args_list()
        return [answer.get_error_name(), *values] if answer.get_error_name() else values

    def call(self, member, kind, *arguments):
        return self.ask(self.owner, self.path, OBJECT, "Invoke", "sqav", member, kind, list(arguments))

    def visible(self):
        return self.call("Visible", 2)[0]

    def leave(self):
        if self.bus:
            self.bus.close()
        self.bus = None

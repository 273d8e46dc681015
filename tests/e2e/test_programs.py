"""Programs together: what a good start brings, what a failed one shows and says to who asked for it, and the hosts that
come with the add-in: the companion, and the examples, which share no code with it."""
import os
import re
import signal
import subprocess
import sys

import testbed
from driver import Atspi, GLib, Role
from host import BUSY, result
from sandbox import SOURCES
from testbed import (ADD_IN, BUILD, CLOCK_READ, EXCHANGE, LIMIT, NOTICE, SWITCHDESK, UPDATE, Host, OwnHostTest, changed,
                     database_file, dialog_title, pids, run)
from testbed import set_up as setUpModule  # noqa: F401

NO_BUS = {"DBUS_SESSION_BUS_ADDRESS": "unix:path=/none"}
EXAMPLES = [(sys.executable, SOURCES / "examples/host.py"), (BUILD / "examples/example-host",),
            (sys.executable, SOURCES / "examples/minimal_host.py")]


class Programs(OwnHostTest):
    def test_a_failure_is_one_notice_and_an_error(self):
        """The end of a start that fails takes the objects with it that are there already. The good one before has made
        the register the user's own, and nothing else."""
        host = Host(self).open()
        self.assertEqual(list(testbed.sandbox.own.rglob("*.*")), [database_file("Register.mdb")])
        database_file("Register.mdb").write_text("no database")
        second = Host(self, exchange="Warehouse")
        self.assertRegex(self.close_box(NOTICE), r"(?s)Register\.mdb.*\[3343\]")
        second.wait_for_line("# add-in raised error 429")
        testbed.driver.find(SWITCHDESK, "The clock add-in can't be started (error 429).", Role.LABEL)
        host.wait_for_line("# add-in has left")
        self.wait_until_gone()

    def test_a_creation_that_follows_a_release_gets_a_fresh_process(self):
        """With a host that answers REGComData at once or late, and a creation that waits for the answer or doesn't."""
        host = self.join()
        layers = [result(host.create())]
        for host.delay, waits in [(0, True)] * 9 + [(300, True)] * 2 + [(300, False)] * 9:
            self.assertIs(host.register(layers[-1]), False)
            released = host.send(layers[-1], "Object", "Release")
            if waits:
                result(released)
            layer = result(host.create())
            if not waits and layer[0] == BUSY:
                layer = result(host.create())
            layers.append(layer)
        self.assertEqual(len({owner for owner, _ in layers}), len(layers))
        calls = ["GetComData", "REGComData"]
        self.wait_for(lambda: all(host.asked_by(layer) == calls for layer in layers[:-1]), "their calls")

    def test_a_program_by_itself_has_a_service_of_the_bus_for_a_host(self):
        """Without a bus, the program has a dialog that can be closed."""
        for title, errors, changes in ((dialog_title(), "", {}), (
                "PBX Clock", r"horalink: can't reach the session bus: [^\n]+\n", NO_BUS)):
            add_in = self.start([testbed.sandbox.add_in, EXCHANGE], environment=changed(**changes),
                                stderr=subprocess.PIPE, text=True)
            if not changes:
                self.look_up()
                self.press(UPDATE)
                self.assertEqual(self.close_box(CLOCK_READ), "The date and time of the PBX have been updated.")
            self.leave(title)
            self.assertRegex(add_in.communicate(timeout=LIMIT)[1], f"^{errors}$")
            self.assertEqual(add_in.returncode, 0)
            self.wait_until_gone(SWITCHDESK)

    def test_without_surroundings_there_is_one_line(self):
        for changes, argument, why in (({"DISPLAY": None}, EXCHANGE, "no display"), (NO_BUS, "-Embedding", "server"),
                                       ({"DISPLAY": ":4711"}, "-Embedding", ":4711")):
            done = run([testbed.sandbox.add_in, argument], environment=changed(**changes))
            self.assertGreater(done.returncode, 0)
            self.assertRegex(done.stderr, rf"^\S*horalink: [^\n]*{why}[^\n]*\n$")

    def test_assistive_programs_hear_of_the_dialog_and_its_menu(self):
        heard = []
        listener = Atspi.EventListener.new(
            lambda event: heard.append(event.source.get_role()) if event.detail1 else None)
        listener.register("object:state-changed:focused")
        self.addCleanup(listener.deregister, "object:state-changed:focused")

        def last_heard():
            while GLib.MainContext.default().iteration(False):
                pass
            return heard[-1:]
        self.start([testbed.sandbox.add_in, EXCHANGE])
        window = testbed.driver.window(ADD_IN, dialog_title())
        self.assertEqual(window.get_role(), Role.DIALOG)
        self.assertEqual([node.get_role() for node in testbed.driver.nodes(window) if not node.get_name()], [])
        minute = testbed.driver.find(ADD_IN, "Minute", Role.TEXT)
        spin = testbed.driver.find(ADD_IN, "Change the selected part of the time", Role.SPIN_BUTTON)
        testbed.driver.untick(testbed.driver.find(ADD_IN, "Follow the time of this PC", Role.CHECK_BOX))
        testbed.driver.click(minute)
        self.wait_for(lambda: Atspi.Value.get_current_value(spin) == int(testbed.driver.value(minute)), "its value")
        for key, role in (("Menu", Role.MENU_ITEM), ("Return", Role.DIALOG), ("Escape", Role.TEXT)):
            testbed.driver.press(key)
            self.wait_for(lambda role=role: last_heard() == [role], f"what '{key}' brings")

    def test_the_companion_closes_at_once_though_the_add_in_is_frozen(self):
        host = Host(self).open()
        add_in, *_ = pids(ADD_IN)
        os.kill(add_in, signal.SIGSTOP)
        for name in ("Close add-in", "Open clock add-in"):
            button = testbed.driver.find(SWITCHDESK, name, Role.PUSH_BUTTON)
            testbed.driver.click(button)
            self.wait_for(lambda button=button: not testbed.driver.is_enabled(button), f"'{name}' to be disabled")
        self.leave(host.window)
        self.wait_until_gone(SWITCHDESK)
        self.assertEqual(pids(ADD_IN), [add_in])
        os.kill(add_in, signal.SIGKILL)

    def test_lookup_update_the_end_of_the_window_and_no_add_in_with_the_examples(self):
        for command in EXAMPLES:
            with self.case(command[-1].name):
                process = self.start(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
                self.look_up()
                self.press(UPDATE)
                self.assertEqual(self.close_box("Update Failed").count("CODE NOT ALLOWED"), 3)
                self.leave(dialog_title("Example"))
                printed, _ = process.communicate(timeout=LIMIT)
                self.assertEqual(process.returncode, 0, printed)
                # The least one prints the messages alone.
                shown = re.findall(r'^(?:ShowMessage\(")?(PBX clock request: \w+|OK)\b', printed, re.M)
                self.assertEqual(shown, 2 * ["PBX clock request: KEY", "PBX clock request: ACCEPTED", "OK"])
                self.wait_until_gone()
                testbed.sandbox.add_in.unlink()
                self.assertRegex(run(command).stderr, r"^[^\n]*(429|CreateInstance)[^\n]*\n$")

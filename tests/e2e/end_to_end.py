"""What all end-to-end tests share: a stage for each module, and the companion host with its log.

HORALINK_BUILD names the build folder. In a long run, HORALINK_SHARE is the share of this process in all cases, as
"1/2", and HORALINK_ONLY the one case that is wanted.
"""
import itertools
import os
import subprocess
import sys
import unittest
from pathlib import Path

import host
import stage
from arrangement import Arrangement
from driver import LIMIT, Driver, Role
from host import BUS
from stage import ADD_IN_CLASS, EXCHANGE, SWITCHDESK

BUILD = Path(os.environ["HORALINK_BUILD"])
SHARE, ONLY = os.environ.get("HORALINK_SHARE", ""), os.environ.get("HORALINK_ONLY")


def chosen(sample, every):
    """The cases to go through, of which each is a row of words."""
    if ONLY:
        return [next(case for case in every if "/".join(map(str, case)) == ONLY)]
    first, _, step = SHARE.partition("/")
    return list(every)[int(first) - 1::int(step)] if SHARE else sample


def open_stage(starts_by_itself=True):
    """Serves a module as its setUpModule."""
    folder = BUILD / "tests/e2e" / f"{sys.argv[-1]}{SHARE.replace('/', '-of-')}"
    arrangement = Arrangement(BUILD, folder, own_display=True).lay_out()
    if not starts_by_itself:
        (folder / f"services/{ADD_IN_CLASS}.service").unlink()
    unittest.enterModuleContext(arrangement)
    stage.take(arrangement, Driver(arrangement))
    unittest.addModuleCleanup(stage.bus.close)


def open_own_stage():
    """One in which the test starts the add-in, so that it sees the end of the process."""
    open_stage(starts_by_itself=False)


def database_file(name):
    """The one that the add-in opens; the register is the user's own."""
    if name == "Register.mdb":
        return stage.arrangement.own_register()
    return next(stage.arrangement.root.glob(f"*/DATABASE/*/{name}"))


def changed(**changes):
    """The environment of the programs with changes, of which None takes a variable away."""
    environment = {**stage.arrangement.environment, **changes}
    return {name: value for name, value in environment.items() if value is not None}


class OwnHostTest(stage.EndToEndTest):
    """With hosts of the test's own, and the end of the add-in's process to be seen."""

    def join(self, address=None):
        self.clients.append(host.Host(address or stage.arrangement.environment["DBUS_SESSION_BUS_ADDRESS"]))
        return self.clients[-1]

    def start_add_in(self, address=None, **changes):
        """A process that serves on a bus, and a client there."""
        client = self.join(address)
        bus = {"DBUS_SESSION_BUS_ADDRESS": address} if address else {}
        add_in = self.start([stage.arrangement.add_in, "-Embedding"], environment=changed(**bus, **changes))
        self.wait_for(lambda: client.ask(BUS, "/", BUS, "NameHasOwner", ADD_IN_CLASS), "the add-in to serve its class")
        return add_in, client

    def assert_good_end(self, add_in, client, *last):
        """The process ends with its last objects, and keeps none of the client's."""
        for each in last:
            client.send(each, "Object", "Release")
        self.assertEqual(add_in.wait(LIMIT), 0)
        self.wait_for(lambda: not +client.kept, "the last releases, which arrive after the end")


class Host:
    """The companion host, with the add-in open and every call that it sees in a log."""

    number = itertools.count(1)

    def __init__(self, test, *options, exchange=EXCHANGE, environment=None):
        self.log = stage.arrangement.folder / f"host-{next(Host.number)}.log"
        opening = ["--open", exchange] if exchange else []
        self.test, self.exchange = test, exchange
        test.start([stage.arrangement.host, "--log", self.log, *opening, *options], environment=environment)

    def open(self):
        """Waits until the dialog is up and everything about it is logged."""
        self.wait_for_line("# Visible is written")
        self.test.dialog(self.exchange)
        return self

    def lines(self):
        return self.log.read_text(encoding="utf-8").splitlines() if self.log.exists() else []

    def wait_for_line(self, start):
        self.test.wait_for(lambda: any(line.startswith(start) for line in self.lines()), f"'{start}' in {self.log.name}")

    def close_add_in(self):
        """By the button of its window."""
        window = f"Switchdesk \u2013 {self.exchange}"
        stage.driver.raise_window(window)
        stage.driver.click(stage.driver.find(SWITCHDESK, "Close add-in", Role.PUSH_BUTTON, window=window))


def run(command, seconds=LIMIT, environment=None, **options):
    """Runs a program to its end and catches what it prints."""
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=seconds, check=False,
                          env=environment or stage.arrangement.environment, **options)

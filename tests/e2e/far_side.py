"""A machine at the far end of ssh: a real sshd on the loopback, Debian's clock service, and a bus for it.

This machine's clock is safe: the service has one of its own (OwnClock.cpp), runs without the capability to set another,
and doesn't start where it has that. As a program this stands in for what Debian's can't be brought to do here.
"""
import contextlib
import getpass
import os
import shlex
import signal
import socket
import sys
import time
from pathlib import Path

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

from arrangement import wait_for

TIMEDATE, UNITS, PROPERTIES = "org.freedesktop.timedate1", "org.freedesktop.systemd1", "org.freedesktop.DBus.Properties"
TIMEDATE_PATH, UNIT_PATH = "/org/freedesktop/timedate1", f"/{UNITS.replace('.', '/')}/unit/far_2dntp_2eservice"
# Whoever may set the clock of the machine that this runs on doesn't get far.
SERVICE = """cd {folder} || exit 1
capabilities=$(sed -n 's/^CapEff:\\t//p' /proc/self/status)
[ $((0x$capabilities >> 25 & 1)) = 0 ] || {{ echo "this could set the machine's clock" >&2; exit 1; }}
[ ! -e absent ] || exit 1
[ ! -e refusing ] || exec {python} {here} {timedate}
[ ! -e ntp ] || ntp=far-ntp.service
export OWN_CLOCK={folder} SYSTEMD_TIMEDATED_NTP_SERVICES="$ntp" DBUS_SYSTEM_BUS_ADDRESS="$DBUS_STARTER_ADDRESS"
LD_PRELOAD={clock} exec /usr/lib/systemd/systemd-timedated
"""
WITHOUT_CLOCK = "/usr/bin/setpriv --bounding-set -sys_time --inh-caps -sys_time "
BRIDGE = """[ "$SSH_ORIGINAL_COMMAND" = systemd-stdio-bridge ] && [ ! -e {folder}/bridgeless ] || exit 127
exec systemd-stdio-bridge --bus-path={address}
"""
SERVER = """Port {port}
ListenAddress 127.0.0.1
HostKey {folder}/host
AuthorizedKeysFile {folder}/key.pub
PidFile none
StrictModes no
UsePAM no
PasswordAuthentication no
KbdInteractiveAuthentication no
ForceCommand /bin/sh {folder}/bridge
"""
CLIENT = """Host closed
  Port 1
Host stranger
  UserKnownHostsFile /dev/null
Host changed
  UserKnownHostsFile {folder}/changed
Host keyless
  IdentityFile {folder}/other
Host * !keyless
  IdentityFile {folder}/key
Host *
  HostName 127.0.0.1
  HostKeyAlias far
  Port {port}
  User {user}
  UserKnownHostsFile {folder}/known
  GlobalKnownHostsFile /dev/null
  IdentitiesOnly yes
  IdentityAgent none
"""


class FarSide:
    """`environment` is that of a program which reaches it by its ssh, and leaves the arguments in the file `asked`."""

    def __init__(self, arrangement, run, clock):
        self.folder, self.run = arrangement.folder / "far", run
        (self.folder / "bin").mkdir(parents=True)
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        for key in ("host", "key", "other"):
            run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / key]).check_returncode()
        for known, key in (("known", "host"), ("changed", "other")):
            self.write(known, f"far {(self.folder / f'{key}.pub').read_text()}")
        capability = WITHOUT_CLOCK if os.getuid() == 0 else ""
        for name, command in ((TIMEDATE, f"{capability}/bin/sh {self.folder}/service"),
                              (UNITS, f"{sys.executable} {__file__} {UNITS}")):
            (arrangement.folder / f"services/{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        self.address = arrangement.start_bus("far-bus", arrangement.environment)
        values = {"folder": self.folder, "port": port, "address": shlex.quote(self.address), "user": getpass.getuser(),
                  "clock": clock, "python": sys.executable, "here": __file__, "timedate": TIMEDATE}
        for name, text in (("service", SERVICE), ("bridge", BRIDGE), ("sshd_config", SERVER), ("ssh_config", CLIENT)):
            self.write(name, text.format(**values))
        self.write("bin/ssh", f"#!/bin/sh\nprintf '%s\\n' \"$@\" >{self.folder}/asked\n"
                              f"exec /usr/bin/ssh -F {self.folder}/ssh_config \"$@\"\n")
        (self.folder / "bin/ssh").chmod(0o700)
        self.environment = {**arrangement.environment, "PATH": f"{self.folder}/bin:{arrangement.environment['PATH']}"}
        if os.getuid() == 0:
            Path("/run/sshd").mkdir(mode=0o755, exist_ok=True)
        with open(self.folder / "sshd.log", "w", encoding="utf-8") as log:
            self.server = arrangement.start(["/usr/sbin/sshd", "-D", "-e", "-f", self.folder / "sshd_config"], stderr=log)
        wait_for(lambda: "Server listening" in (self.folder / "sshd.log").read_text(), 20, "sshd to listen")
        self.bus = dbus.bus.BusConnection(self.address)
        self.reset()

    def write(self, name, text=""):
        (self.folder / name).write_text(text, encoding="utf-8")

    def reset(self, *faults, zone="America/New_York", ahead=1000):
        """Sets the clock that many seconds ahead of this machine's, and has these faults alone."""
        self.write("zone", zone)
        self.write("ahead", str(ahead * 10**9))
        self.mend()
        self.kill_service()
        for fault in faults:
            self.write(fault)

    def mend(self):
        """Takes all faults away; a service that refuses goes."""
        refuses = (self.folder / "refusing").exists()
        for fault in ("absent", "refusing", "ntp", "bridgeless", "stop-before", "stop-after"):
            (self.folder / fault).unlink(missing_ok=True)
        if refuses:
            self.kill_service()

    def ahead(self):
        """Seconds that the clock is ahead of this machine's."""
        return int((self.folder / "ahead").read_text()) / 10**9

    def clock(self):
        """What the service says of its clock when it is asked there, and how long the asking took at most."""
        asked = time.time()
        told = self.run(["busctl", f"--address={self.address}", "get-property", TIMEDATE, TIMEDATE_PATH, TIMEDATE, "TimeUSec"])
        return int(told.stdout.split()[1]) / 10**6, time.time() - asked

    # --- processes --------------------------------------------------------------------------------

    def service(self):
        """The number of its process, if it runs."""
        try:
            return int(self.bus.call_blocking(dbus.BUS_DAEMON_NAME, dbus.BUS_DAEMON_PATH, dbus.BUS_DAEMON_IFACE,
                                              "GetConnectionUnixProcessID", "s", [TIMEDATE]))
        except dbus.DBusException:
            return None

    def kill_service(self):
        if pid := self.service():
            os.kill(pid, signal.SIGKILL)
            wait_for(lambda: self.service() != pid, 20, "the clock service to end")

    def wait_until_stopped(self):
        wait_for(lambda: self.service() and state(self.service())[0] == "T", 20, "the clock service to stop")

    def connections(self):
        """The processes that serve those who have come by ssh."""
        parents = {}
        for entry in Path("/proc").glob("[0-9]*"):
            with contextlib.suppress(OSError):
                parents[int(entry.name)] = int(state(entry.name)[1])
        found = [self.server.pid]
        for parent in found:
            found += [pid for pid, its_parent in parents.items() if its_parent == parent]
        return found[1:]

    def signal_connections(self, number):
        for pid in self.connections():
            with contextlib.suppress(ProcessLookupError):
                os.kill(pid, number)


def state(pid):
    return Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()


class RefusingClock(dbus.service.Object):
    """A clock service whose rules let nobody set the clock."""

    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, _interface, name):
        return dbus.UInt64(time.time_ns() // 1000) if name == "TimeUSec" else "UTC"

    @dbus.service.method(TIMEDATE, "xbb")
    def SetTime(self, _time, relative, interactive):
        error = "AccessDenied" if relative or interactive else "InteractiveAuthorizationRequired"
        raise dbus.DBusException("no", name=f"org.freedesktop.DBus.Error.{error}")


class NtpUnit(dbus.service.Object):
    @dbus.service.method(PROPERTIES, "s", "a{sv}")
    def GetAll(self, _interface):
        return {"LoadState": "loaded", "ActiveState": "active", "UnitFileState": "enabled"}


if __name__ == "__main__":
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    connection = dbus.bus.BusConnection(os.environ["DBUS_STARTER_ADDRESS"])
    served = RefusingClock(connection, TIMEDATE_PATH) if sys.argv[1] == TIMEDATE else NtpUnit(connection, UNIT_PATH)
    connection.request_name(sys.argv[1])
    GLib.MainLoop().run()

"""A machine at the far end of ssh: a real sshd on the loopback, Debian's clock service, and a bus for it.

This machine's clock is safe: the service has one of its own (OwnTime.cpp), and runs without the capability to set
another; where it would have that, it doesn't start. As a program this replaces what Debian's can't be brought to do.
"""
import contextlib
import getpass
import os
import shlex
import signal
import socket
import subprocess
import sys
import threading
import time
from pathlib import Path

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

from sandbox import wait_for

TIMEDATE, UNITS, PROPERTIES = "org.freedesktop.timedate1", "org.freedesktop.systemd1", "org.freedesktop.DBus.Properties"
TIMEDATE_PATH, UNIT_PATH = "/org/freedesktop/timedate1", "/org/freedesktop/systemd1/unit/far_2dntp_2eservice"
FAULTS = "absent", "refusing", "ntp", "bridgeless", "slow", "stop-before", "stop-after"
WAY = 0.5  # seconds that a slow connection takes in each direction
FILES = {
    "service": """cd {folder} || exit 1
capabilities=$(sed -n 's/^CapEff:\\t//p' /proc/self/status)
[ $((0x$capabilities >> 25 & 1)) = 0 ] || {{ echo "this could set the machine's clock" >&2; exit 1; }}
[ -e {clock} ] && [ ! -e absent ] || exit 1
[ ! -e refusing ] || exec {python} {here} {timedate}
[ ! -e ntp ] || ntp=far-ntp.service
export OWN_CLOCK={folder} SYSTEMD_TIMEDATED_NTP_SERVICES="$ntp" DBUS_SYSTEM_BUS_ADDRESS="$DBUS_STARTER_ADDRESS"
LD_PRELOAD={clock} exec /usr/lib/systemd/systemd-timedated
""",
    "bridge": """[ "$SSH_ORIGINAL_COMMAND" = systemd-stdio-bridge ] && [ ! -e {folder}/bridgeless ] || exit 127
echo $PPID $$ >>{folder}/connections
[ ! -e {folder}/slow ] || PYTHONPATH={modules} exec {python} {here} slow {address}
exec systemd-stdio-bridge --bus-path={address}
""",
    "sshd_config": """ListenAddress 127.0.0.1:{port}
HostKey {folder}/host
AuthorizedKeysFile {folder}/key.pub
ForceCommand /bin/sh {folder}/bridge
PidFile none
StrictModes no
UsePAM no
PasswordAuthentication no
""",
    "ssh_config": """Host closed
  Port 1
Host stranger
  UserKnownHostsFile /dev/null
Host changed
  UserKnownHostsFile {folder}/changed
Host * !keyless
  IdentityFile {folder}/key
Host *
  IdentityFile {folder}/other
  HostName 127.0.0.1
  Port {port}
  User {user}
  HostKeyAlias far
  UserKnownHostsFile {folder}/known
  GlobalKnownHostsFile /dev/null
  IdentitiesOnly yes
  IdentityAgent none
""",
    "bin/ssh": """#!/bin/sh
printf '%s\\n' "$@" >{folder}/asked
exec /usr/bin/ssh -F {folder}/ssh_config "$@"
"""}


class FarSide:
    """`environment` is that of a program that finds the far side by ssh, and as its own system bus."""

    def __init__(self, sandbox, clock):
        self.folder = sandbox.folder / "far"
        (self.folder / "bin").mkdir(parents=True)
        with socket.create_server(("127.0.0.1", 0)) as free:
            port = free.getsockname()[1]
        for key in ("host", "key", "other"):
            subprocess.run(["ssh-keygen", "-q", "-t", "ed25519", "-N", "", "-f", self.folder / key], check=True)
        for known, key in (("known", "host"), ("changed", "other")):
            (self.folder / known).write_text(f"far {(self.folder / f'{key}.pub').read_text()}")
        less = "/usr/bin/setpriv --bounding-set -sys_time --inh-caps -sys_time " if os.getuid() == 0 else ""
        for name, command in ((TIMEDATE, f"{less}/bin/sh {self.folder}/service"),
                              (UNITS, f"{sys.executable} {__file__} {UNITS}")):
            (sandbox.folder / f"services/{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        address = sandbox.start_bus("far-bus", sandbox.environment)
        for name, text in FILES.items():
            (self.folder / name).write_text(text.format(
                folder=self.folder, port=port, address=shlex.quote(address), user=getpass.getuser(), clock=clock,
                python=sys.executable, here=__file__, timedate=TIMEDATE, modules=os.environ["PYTHONPATH"]))
        (self.folder / "bin/ssh").chmod(0o700)
        self.environment = {**sandbox.environment, "DBUS_SYSTEM_BUS_ADDRESS": address,
                            "PATH": f"{self.folder}/bin:{sandbox.environment['PATH']}"}
        if os.getuid() == 0:
            Path("/run/sshd").mkdir(mode=0o755, exist_ok=True)  # without an init nobody else does
        log = self.folder / "sshd.log"
        with open(log, "w", encoding="utf-8") as output:
            sandbox.start(["/usr/sbin/sshd", "-D", "-e", "-f", self.folder / "sshd_config"], stderr=output)
        wait_for(lambda: "Server listening" in log.read_text(), 20, "sshd to listen")
        self.bus = dbus.bus.BusConnection(address)

    def reset(self, ahead, faults):
        """Sets the clock that many seconds ahead of this machine's, in New York, and has these faults alone."""
        for name, text in (("zone", "America/New_York"), ("ahead", str(ahead * 10**9)), ("connections", "")):
            (self.folder / name).write_text(text)
        self.mend()
        self.kill_service()
        for fault in faults:
            (self.folder / fault).touch()

    def mend(self):
        for fault in FAULTS:
            (self.folder / fault).unlink(missing_ok=True)
        if pid := self.service():
            if "far_side" in Path(f"/proc/{pid}/cmdline").read_text():
                return self.kill_service()
            os.kill(pid, signal.SIGCONT)

    def ahead(self):
        """Seconds that the clock is ahead of this machine's."""
        return int((self.folder / "ahead").read_text()) / 10**9

    def clock(self):
        """What the service says of its clock when it is asked there, and how long the asking took."""
        asked = time.time()
        said = self.bus.call_blocking(TIMEDATE, TIMEDATE_PATH, PROPERTIES, "Get", "ss", [TIMEDATE, "TimeUSec"])
        return said / 10**6, time.time() - asked

    def service(self):
        """The number of its process, if it runs."""
        with contextlib.suppress(dbus.DBusException):
            return int(self.bus.call_blocking(dbus.BUS_DAEMON_NAME, dbus.BUS_DAEMON_PATH, dbus.BUS_DAEMON_IFACE,
                                              "GetConnectionUnixProcessID", "s", [TIMEDATE]))

    def kill_service(self):
        if pid := self.service():
            os.kill(pid, signal.SIGKILL)
            wait_for(lambda: self.service() != pid, 20, "the clock service to end")

    def wait_until_service_stands_still(self):
        wait_for(lambda: (pid := self.service()) and ") T " in Path(f"/proc/{pid}/stat").read_text(), 20,
                 "the clock service to be stopped")

    def connections(self):
        """The processes that serve those who have come by ssh."""
        return [int(pid) for pid in (self.folder / "connections").read_text().split() if Path(f"/proc/{pid}").exists()]

    def signal_connections(self, number):
        for pid in self.connections():
            os.kill(pid, number)


class Refusing(dbus.service.Object):
    """A clock service whose rules let nobody set the clock."""

    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, _interface, name):
        return dbus.UInt64(time.time_ns() // 1000) if name == "TimeUSec" else "UTC"

    @dbus.service.method(TIMEDATE, "xbb")
    def SetTime(self, _time, relative, interactive):
        error = "Failed" if relative or interactive else "InteractiveAuthorizationRequired"
        raise dbus.DBusException("no", name=f"org.freedesktop.DBus.Error.{error}")


class Running(dbus.service.Object):
    """The unit of an NTP service."""

    @dbus.service.method(PROPERTIES, "s", "a{sv}")
    def GetAll(self, _interface):
        return {"LoadState": "loaded", "ActiveState": "active", "UnitFileState": "enabled"}


def carry(source, sink):
    """Carries bytes late: the time that they take is what a slow connection is."""
    while data := os.read(source, 65536):
        time.sleep(WAY)
        os.write(sink, data)


if __name__ == "__main__":
    if sys.argv[1] == "slow":
        with subprocess.Popen(["systemd-stdio-bridge", f"--bus-path={sys.argv[2]}"],
                              stdin=subprocess.PIPE, stdout=subprocess.PIPE) as bridge:
            threading.Thread(target=carry, args=(bridge.stdout.fileno(), 1), daemon=True).start()
            carry(0, bridge.stdin.fileno())
    else:
        dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
        bus = dbus.bus.BusConnection(os.environ["DBUS_STARTER_ADDRESS"])
        served = Refusing(bus, TIMEDATE_PATH) if sys.argv[1] == TIMEDATE else Running(bus, UNIT_PATH)
        bus.request_name(sys.argv[1])
        GLib.MainLoop().run()

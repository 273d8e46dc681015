"""A machine at the far end of ssh: a real sshd on the loopback, Debian's clock service, and a bus for it.

This machine's clock is safe: the service has one of its own (OwnTime.cpp), and runs without the capability to set
another; where it would have that, it doesn't start. Run as a program, this is a clock service that refuses.
"""
import contextlib
import getpass
import os
import shlex
import signal
import socket
import subprocess
import sys
import time
from pathlib import Path

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

from sandbox import wait_for

TIMEDATE, PROPERTIES = "org.freedesktop.timedate1", "org.freedesktop.DBus.Properties"
ZONE, AHEAD = "America/New_York", 1000  # seconds: how far its clock is ahead of this machine's until it is set
FAULTS = "absent", "refusing", "bridgeless", "slow", "stop-before", "stop-after"
WAY = 500  # milliseconds that a slow connection takes in each direction
FILES = {
    "service": """cd {folder} || exit 1
capabilities=$(sed -n 's/^CapEff:\\t//p' /proc/self/status)
[ $((0x$capabilities >> 25 & 1)) = 0 ] || {{ echo "this could set the machine's clock" >&2; exit 1; }}
[ -e {clock} ] && [ ! -e absent ] || exit 1
[ ! -e refusing ] || exec {python} {here} $(cat refusing)
export OWN_CLOCK={folder} OWN_ZONE={zone} SYSTEMD_TIMEDATED_NTP_SERVICES=
DBUS_SYSTEM_BUS_ADDRESS="$DBUS_STARTER_ADDRESS" LD_PRELOAD={clock} exec /usr/lib/systemd/systemd-timedated
""",
    "bridge": """[ "$SSH_ORIGINAL_COMMAND" = systemd-stdio-bridge ] && [ ! -e {folder}/bridgeless ] || exit 127
echo $$ >{folder}/connection
[ ! -e {folder}/slow ] || PYTHONPATH={modules} exec {python} {here} slow {address}
exec systemd-stdio-bridge --bus-path={address}
""",
    "sshd_config": """ListenAddress 127.0.0.1:{port}
HostKey {folder}/host
AuthorizedKeysFile {folder}/key.pub
ForceCommand /bin/sh {folder}/bridge
PidFile none
StrictModes no
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
        (sandbox.folder / f"services/{TIMEDATE}.service").write_text(
            f"[D-BUS Service]\nName={TIMEDATE}\nExec={less}/bin/sh {self.folder}/service\n")
        address = sandbox.start_bus("far-bus", sandbox.environment)
        for name, text in FILES.items():
            (self.folder / name).write_text(text.format(
                folder=self.folder, port=port, address=shlex.quote(address), user=getpass.getuser(), clock=clock,
                python=sys.executable, here=__file__, zone=ZONE,
                modules=os.environ["PYTHONPATH"]))
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

    def reset(self, fault):
        """Sets this fault alone; a second word is its detail."""
        (self.folder / "ahead").write_text(str(AHEAD * 10**9))
        self.mend()
        if fault:
            name, _, more = fault.partition(" ")
            (self.folder / name).write_text(more)

    def mend(self):
        for fault in FAULTS:
            (self.folder / fault).unlink(missing_ok=True)
        self.kill_service()

    def ahead(self):
        """Seconds that the clock is ahead of this machine's."""
        return int((self.folder / "ahead").read_text()) / 10**9

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

    def cut_connection(self):
        """Ends the latest ssh connection."""
        os.kill(int((self.folder / "connection").read_text()), signal.SIGKILL)


class Refusing(dbus.service.Object):
    """A clock service that lets nobody set the clock."""

    @dbus.service.method(PROPERTIES, "ss", "v")
    def Get(self, _interface, name):
        return dbus.UInt64(time.time_ns() // 1000) if name == "TimeUSec" else "UTC"

    @dbus.service.method(TIMEDATE, "xbb")
    def SetTime(self, _time, relative, interactive):
        raise dbus.DBusException("no", name="org.example.Odd" if relative or interactive else sys.argv[1])


def carry(source, sink):
    """Forwards bytes with a delay."""
    def arrived(*_):
        if data := os.read(source, 65536):
            GLib.timeout_add(WAY, lambda: os.write(sink, data) and False)
        else:
            loop.quit()
        return bool(data)
    GLib.io_add_watch(source, GLib.IO_IN | GLib.IO_HUP, arrived)


if __name__ == "__main__":
    loop = GLib.MainLoop()
    if sys.argv[1] == "slow":
        bridge = subprocess.Popen(["systemd-stdio-bridge", f"--bus-path={sys.argv[2]}"], stdin=subprocess.PIPE,
                                  stdout=subprocess.PIPE)
        carry(0, bridge.stdin.fileno())
        carry(bridge.stdout.fileno(), 1)
    else:
        dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
        bus = dbus.bus.BusConnection(os.environ["DBUS_STARTER_ADDRESS"])
        served = Refusing(bus, "/org/freedesktop/timedate1")
        bus.request_name(TIMEDATE)
    loop.run()

"""A separate installation to run in: directory tree, settings, services, a private bus, a display.

Everything lies in one folder, and nothing outside it is changed. Processes started here end with the sandbox.
"""
import contextlib
import os
import secrets
import select
import shutil
import signal
import subprocess
import time
from pathlib import Path

SOURCES = Path(__file__).resolve().parent.parent
MARKET = "10001"
CLASS_NAMES = {
    "Horalink10013.cOLELayer": ("ADDINS", "horalink", "-Embedding"),
    f"SwitchDeskProj{MARKET}.cPBXOle": ("MORA32", "switchdesk", "--service"),
}
ACCESSIBILITY_LAUNCHER = Path("/usr/libexec/at-spi-bus-launcher")
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:abstract={socket}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*" eavesdrop="false"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
  <!-- The limits of a desktop's session bus. -->
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_completed_connections">100000</limit>
  <limit name="max_names_per_connection">50000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
  <limit name="max_replies_per_connection">50000</limit>
</busconfig>
"""


def wait_for(condition, seconds, what):
    """Polls `condition` until its value is true, and returns that. Raises TimeoutError after the limit."""
    end = time.monotonic() + seconds
    pause = select.poll()
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise TimeoutError(f"waited {seconds} s for {what}")
        pause.poll(50)


class Sandbox:
    """Lays everything out in `folder`. Entering it starts the bus and, if there is none, a display.

    Readable programs offer their widgets to assistive programs, through which they are read and clicked. If managed,
    a display of its own has a window manager.
    """

    def __init__(self, build, folder, own_display=False, readable=True, language="en", managed=True):
        self.build = Path(build).resolve()
        self.folder = Path(folder).resolve()
        self.root = self.folder / "VELMORA32" / MARKET
        self.own = self.folder / "home/data/VELMORA32" / MARKET
        self.own_display = own_display or not (os.environ.get("DISPLAY") or os.environ.get("WAYLAND_DISPLAY"))
        self.processes = []
        self.environment = dict(os.environ)
        self.language = language
        self.managed = managed and shutil.which("openbox")
        if readable:
            self.environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1"
            # Hides the toolkit's warnings about widgets that close while an assistive program reads them.
            self.environment["QT_LOGGING_RULES"] = "qt.accessibility.*=false"

    def speak(self):
        """Chooses the language of day and month names. Its locale needn't be installed."""
        country = {"ja": "JP", "zh": "CN"}.get(self.language, self.language.upper())
        for name in [name for name in self.environment if name.startswith("LC_")]:
            del self.environment[name]
        self.environment["LC_CTYPE" if self.language != "en" else "LC_ALL"] = "C.UTF-8"
        self.environment["LANG"] = f"{self.language}_{country}.UTF-8"

    # --- the tree ---------------------------------------------------------------------------------

    def lay_out(self):
        shutil.rmtree(self.folder, ignore_errors=True)
        self.folder.mkdir(parents=True)
        self._write_services()
        for name in ("home", "runtime"):
            (self.folder / name).mkdir(mode=0o700)
        self.install()
        return self

    def install(self):
        """Installs the programs with their data and settings, in place of an earlier installation."""
        for tree in (self.root, self.own):
            shutil.rmtree(tree, ignore_errors=True)
        for directory, name in (("ADDINS/DATABASE", "Horalink.lng"), ("ADDINS/HELP", "Horalink.hlp"),
                                ("MORA32/DATABASE", "Common.LNG")):
            folder = self.root / directory / self.language
            folder.mkdir(parents=True)
            shutil.copy(self.build / "data" / self.language / name, folder)
        shutil.copy(self.build / "data/Register.mdb", self.root / "MORA32/DATABASE")
        (self.root / "BACKGRND").mkdir()
        (self.root / "ADDINS/horalink").symlink_to(self.build / "src/horalink")
        (self.root / "MORA32/switchdesk").symlink_to(self.build / "host/switchdesk")
        for picture in (SOURCES / "data/backgrounds").glob("*.svg"):
            shutil.copy(picture, self.root / "BACKGRND")
        self._write_settings()

    def _write_settings(self):
        settings = self.folder / "config" / "velmora" / "settings.ini"
        settings.parent.mkdir(parents=True, exist_ok=True)
        settings.write_text(f"[VELMORA32/{MARKET}]\nLanguage={self.language}\n", encoding="utf-8")

    def _write_services(self):
        services = self.folder / "services"
        services.mkdir()
        for name, (directory, program, option) in CLASS_NAMES.items():
            command = f"{self.root / directory / program} {option}"
            (services / f"{name}.service").write_text(f"[D-BUS Service]\nName={name}\nExec={command}\n")
        if ACCESSIBILITY_LAUNCHER.exists():
            (services / "org.a11y.Bus.service").write_text(
                f"[D-BUS Service]\nName=org.a11y.Bus\nExec={ACCESSIBILITY_LAUNCHER}\n")

    # --- processes --------------------------------------------------------------------------------

    def __enter__(self):
        try:
            self.environment.update(
                HOME=str(self.folder / "home"),
                XDG_CONFIG_HOME=str(self.folder / "config"),
                XDG_DATA_HOME=str(self.folder / "home/data"),
                XDG_CACHE_HOME=str(self.folder / "home/cache"),
                XDG_RUNTIME_DIR=str(self.folder / "runtime"),
                # Commands find the host by its name, and the interpreter that has Debian's bus bindings.
                PATH=f"{self.host.parent}:{self.add_in.parent}:/usr/bin:/bin:" + os.environ.get("PATH", ""))
            if self.own_display:
                self.environment.pop("WAYLAND_DISPLAY", None)
                self.speak()
                self._start_display()
            self.environment["DBUS_SESSION_BUS_ADDRESS"] = self.start_bus("bus", self.environment)
        except BaseException:
            self.__exit__()
            raise
        return self

    def __exit__(self, *_):
        for process in reversed(self.processes):
            self.end(process)

    def start(self, command, environment=None, **options):
        """Starts a program, which ends with the sandbox."""
        process = subprocess.Popen([str(part) for part in command], env=environment or self.environment,
                                   start_new_session=True, **options)
        self.processes.append(process)
        return process

    @staticmethod
    def ask_to_end(process):
        """Asks a program and all that it started to end. A stopped process ends only once it is continued."""
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGTERM)
            os.killpg(process.pid, signal.SIGCONT)

    def end(self, process):
        """Ends a program and all that it started."""
        self.ask_to_end(process)
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.wait()
        for stream in (process.stdout, process.stderr):
            if stream:
                stream.close()

    def _start_display(self):
        reading, writing = os.pipe()
        self.start(["Xvfb", "-displayfd", writing, "-screen", "0", "1280x900x24", "-nolisten", "tcp"],
                   pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"
        if self.managed:
            self._start_window_manager()

    def _start_window_manager(self):
        """Waits until it manages windows: those opened earlier would stay without frame and focus, and lose clicks
        and keys."""
        manager = None

        def manages():
            nonlocal manager
            if manager is None or manager.poll() is not None:
                manager = self.start(["openbox"], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            asked = subprocess.run(["xdotool", "get_desktop"], env=self.environment, check=False,
                                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            return asked.returncode == 0
        wait_for(manages, 20, "the window manager")
        # It can miss a shortcut of its own, such as Alt+F4, if that is the first key on the display: sends another
        # first.
        subprocess.run(["xdotool", "key", "Shift_L"], env=self.environment, check=True)

    def start_bus(self, name, environment):
        """Starts a bus, whose services get this environment; returns its address."""
        configuration = self.folder / f"{name}.conf"
        configuration.write_text(BUS_CONFIGURATION.format(
            socket=f"horalink-{os.getpid()}-{secrets.token_hex(8)}", services=self.folder / "services"))
        command = ["dbus-daemon", f"--config-file={configuration}", "--nofork", "--print-address=1"]
        with open(self.folder / f"{name}.log", "w", encoding="utf-8") as log:
            bus = self.start(command, environment, stdout=subprocess.PIPE, stderr=log, text=True)
        address = bus.stdout.readline().strip()
        if not address:
            raise RuntimeError("dbus-daemon did not start")
        return address

    def own_register(self):
        """The user's own register, copied as the first creation of an add-in does."""
        register = self.own / "MORA32/DATABASE/Register.mdb"
        if not register.exists():
            register.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(self.root / "MORA32/DATABASE/Register.mdb", register)
        return register

    @property
    def add_in(self):
        return self.root / "ADDINS/horalink"

    @property
    def host(self):
        return self.root / "MORA32/switchdesk"

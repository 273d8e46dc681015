"""horalink-setup on an installation in a prefix of its own, as a user without root's rights, on a bus of its own.

Each fault is one that `status` has to name with a remedy; what it says to do is done, and then all is well: the add-in
starts, and no row of the register is lost.
"""
import contextlib
import os
import re
import shlex
import sqlite3
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

BUILD = os.environ["HORALINK_BUILD"]
IS_ROOT = os.getuid() == 0
NOBODY = 65534
AS_USER = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups") if IS_ROOT else ()
AS_ROOT = () if IS_ROOT else ("unshare", "-r")
CLASS, EXCHANGE = "Horalink10013.cOLELayer", "SwitchDeskProj{}.cPBXOle"
CREATE = f"busctl --user --timeout=60 call {CLASS} /Factory org.velmora.Automation1.Factory CreateInstance"
RELOAD = "busctl --user call org.freedesktop.DBus / org.freedesktop.DBus ReloadConfig"
LOCK = ("import sqlite3, signal, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
        "d.execute('BEGIN IMMEDIATE'); print(flush=True); signal.pause()")
MOVED, COMMAND = r"mv --backup=numbered .*\.old", "$ "

# Commands of the shell that break something; what status says of it; what it says to do.
FAULTS = [
    ("chmod 400 $R", r"register can't be written, since \S+Register.mdb can't be$", r"chmod u\+rwX "),
    ("chmod 500 $(dirname $R)", r"register can't be written, since \S+DATABASE can't be$", r"chmod u\+rwX "),
    ("chmod 0 $(dirname $R)", r"register can't be written, since \S+DATABASE can't be$", r"chmod u\+rwX "),
    ("rm $R && ln -s /none $R", r"register can't be written, since the link \S+Register.mdb leads nowhere$", "rm "),
    ("rm -r .local/share/VELMORA32 && ln -s /none .local/share/VELMORA32", r"the link \S+/VELMORA32 leads nowhere$", "rm "),
    ("rm -r .local/share/VELMORA32 && echo x >.local/share/VELMORA32", r"since \S+/VELMORA32 is no folder$", MOVED),
    ("exec 3< <(exec python3 -c \"$LOCK\" $R 2>/dev/null); read -u3", r"locked by python3, process \d+$", "kill "),
    ("echo garbage >$R", r"register: .* not a database.*\(/\S+/Register.mdb\)$", MOVED),
    (": >$R", r"register: The file '\S+' is empty$", MOVED),
    ("rm $R && cp $DE/Horalink.lng $R", r"register: The table 'Registry' was not found", MOVED),
    ("rm $R && mkdir $R", r"register: .* was not found", MOVED),
    ("echo x >$R && touch $R-journal", r"register: ", r"mv \S+ \S+-journal \S+\.old-journal && mv "),
    ("rm $R && touch $R-journal", r"Register.mdb-journal belongs to a register that is missing$", "rm "),
    ("rm -r .local/share/VELMORA32 && chmod 500 .local/share", r"register can't be written, since \S+/share can't be$", r"chmod u\+rwX "),
    ("mkdir -p $D/ADDINS/DATABASE && echo garbage >$D/ADDINS/DATABASE/Horalink.lng",
     r"^texts: .*not a database", MOVED),
    ("mkdir $D/BACKGRND && echo garbage >$D/BACKGRND/sky.svg", r"^picture: this is no picture, .* \(\S+/sky.svg\)$", MOVED),
    ("mkdir -p $S && echo '[D-BUS Service]\nExec=/none/horalink' >$S/$CLASS.service", r"bus would start /none/horalink, ", MOVED),
    ("mkdir -p $S && echo '[D-BUS Service]\nExec=/usr/bin/horalink-setup start horalink -Embedding' >$S/$CLASS.service",
     r"service is of an earlier version", "rm "),
    ("horalink-setup market 20002 && rm -r .local/share/VELMORA32/20002", r"bus would start .*20002/ADDINS/horalink", "rm "),
    ("unset DBUS_SESSION_BUS_ADDRESS; export XDG_RUNTIME_DIR=/none", "no session bus", "dbus-run-session horalink-setup status"),
]
# Of what the package has installed, which is installed again.
PACKAGE_FAULTS = [
    ("rm $T/ADDINS/DATABASE/*/Horalink.lng", r"^texts: .*was not found"),
    ("echo x >$T/MORA32/DATABASE/de/Common.LNG", r"^common texts: .*not a database"),
    ("rm $T/BACKGRND/sky.svg", "picture sky.svg is missing"),
    ("rm $T/ADDINS/horalink", "there is no program "),
]


class Setup(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.top = Path(self.enterContext(tempfile.TemporaryDirectory()))
        self.top.chmod(0o711)
        self.shared = self.top / "usr/lib/VELMORA32"
        self.install()
        self.new_home()

    def install(self):
        for component in ("horalink", "switchdesk"):
            subprocess.run(["cmake", "--install", BUILD, "--prefix", self.top / "usr", "--component", component],
                           check=True, capture_output=True)

    def new_home(self):
        """Of a user who has just been made, with a bus that reads the services of user and site."""
        self.home = Path(tempfile.mkdtemp(dir=self.top))
        if IS_ROOT:
            os.chown(self.home, NOBODY, NOBODY)
        self.own = self.home / ".local/share/VELMORA32"
        self.services = self.home / ".local/share/dbus-1/services"
        self.environment = {
            "HOME": str(self.home), "XDG_DATA_HOME": f"{self.home}/.local/share",
            "PATH": f"{self.top}/usr/bin:/usr/bin:/bin", "XDG_DATA_DIRS": f"{self.top}/usr/local/share:{self.top}/usr/share",
            "LANG": "de_DE.UTF-8", "LC_CTYPE": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "CLASS": CLASS, "LOCK": LOCK,
            "R": f"{self.own}/10001/MORA32/DATABASE/Register.mdb", "D": f"{self.own}/10001", "S": str(self.services),
            "T": f"{self.shared}/10001", "DE": f"{self.shared}/10001/ADDINS/DATABASE/de"}
        bus = subprocess.Popen([*AS_USER, "dbus-daemon", "--session", "--nofork", "--print-address=1"], text=True,
                               env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (bus.kill(), bus.wait(), bus.stdout.close()))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def run_shell(self, commands, status=0, user=AS_USER):
        done = subprocess.run([*user, "bash", "-c", commands], env=self.environment, cwd=self.home, text=True, check=False,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)
        self.assertEqual(done.returncode, status, commands + "\n" + done.stdout)
        return done.stdout

    def setup_market(self, code, status=0, user=AS_USER):
        return self.run_shell(f"horalink-setup market {shlex.quote(code)}", status, user)

    def create(self, market="10001"):
        """A creation by a host, to the end of the add-in; gives the process's program."""
        self.run_shell(CREATE)
        gone = f"busctl --user call org.freedesktop.DBus / org.freedesktop.DBus NameHasOwner s {CLASS}"
        end = time.monotonic() + 60
        while "true" in self.run_shell(gone) and time.monotonic() < end:
            pass
        self.assertEqual(self.rows(self.own / market / "MORA32/DATABASE/Register.mdb")["Horalink.mra"], "13.0.1")

    @staticmethod
    def rows(register):
        with contextlib.closing(sqlite3.connect(register)) as database:
            return dict(database.execute("SELECT AppName, Version FROM Registry"))

    def add_row(self, register):
        with contextlib.closing(sqlite3.connect(register)) as database, database:
            database.execute("INSERT INTO Registry VALUES ('Other.mra', 'Other', '7', 'Other.cOLELayer', -1)")

    def problems(self, fault=":"):
        """What is wrong with what to do about it, in pairs, after a command of the shell."""
        text = self.run_shell(f"{{ {fault}; }} || exit 99\nhoralink-setup status", 1)
        return re.findall(r"^  (\S.*)\n    (.*)$", text.partition("\nWrong, and")[2], re.M)

    def assert_is_well(self):
        self.assertIn("\nNothing is wrong.\n", self.run_shell("horalink-setup status"))

    def test_remedies(self):
        for fault, what, remedy in FAULTS:
            with self.subTest(fault):
                self.new_home()
                self.create()
                self.add_row(self.environment["R"])
                ((said, to_do),) = self.problems(fault)
                self.assertRegex(said, what)
                self.assertRegex(to_do, "^" + re.escape(COMMAND) + remedy)
                self.run_shell(to_do.removeprefix(COMMAND))
                self.assert_is_well()
                self.create()
                self.assert_is_well()
                # The row is in the register or in one that was moved away, unless the fault itself took it away.
                if not re.search(r">\$R|rm (-r \.local/share/VELMORA32 |\$R)", fault):
                    files = Path(self.environment["R"]).parent.glob("Register.mdb*")
                    self.assertIn("7", [self.rows(file).get("Other.mra") for file in files])

    def test_what_the_package_has_installed_is_installed_again(self):
        for fault, what in PACKAGE_FAULTS:
            with self.subTest(fault):
                subprocess.run(["bash", "-c", fault], env=self.environment, check=True)
                said, to_do = zip(*self.problems())
                self.assertEqual(to_do, ("Install the package 'horalink' again.",))
                self.assertRegex(said[0], what)
                self.install()
                self.assert_is_well()

    def test_a_register_of_another_owner_is_copied_with_its_rows(self):
        self.create()
        self.add_row(self.environment["R"])
        if IS_ROOT:
            os.chown(self.environment["R"], 0, 0)
        ((_, to_do),) = self.problems(":" if IS_ROOT else "chmod 444 $R")
        self.run_shell(to_do.removeprefix(COMMAND))
        self.create()
        self.assertEqual(self.rows(self.environment["R"])["Other.mra"], "7")

    def test_status_says_what_a_start_would_use(self):
        before = self.run_shell("horalink-setup status")
        texts = f"{self.shared}/10001/ADDINS/DATABASE"
        self.assertIn(f"\n  texts (de)         {texts}/de/Horalink.lng\n", before)
        self.assertIn(f"copied to {self.environment['R']} by the first start\n", before)
        self.create()
        self.run_shell("mkdir -p $D/ADDINS/DATABASE .config/velmora && cp $DE/Horalink.lng $D/ADDINS/DATABASE && "
                       "echo '[velmora32/10001]\nlanguage=fr' >.config/velmora/settings.ini")
        self.install()  # an upgrade
        after = self.run_shell("horalink-setup status")
        self.assertIn(f"\n  texts              {self.own}/10001/ADDINS/DATABASE/Horalink.lng\n"
                      f"{' ' * 23}hides {texts}/fr/Horalink.lng\n", after)
        self.assertIn(f"\n  register           {self.environment['R']}\n{' ' * 23}hides {self.shared}/10001/MORA32/DATABASE/"
                      f"Register.mdb\n{' ' * 23}can be written\n", after)
        self.assertRegex(after, rf"\n  {CLASS} +starts {self.shared}/10001/ADDINS/horalink -Embedding\n")
        # A client that stays holds the object.
        held = self.run_shell(f"/usr/bin/python3 -c \"import dbus, subprocess; d = dbus.SessionBus(); "
                              f"d.get_object('{CLASS}', '/Factory').CreateInstance(dbus_interface="
                              f"'org.velmora.Automation1.Factory'); subprocess.run(['horalink-setup', 'status'])\"")
        self.assertRegex(held, rf"\n  {CLASS} +served by process \d+, {self.shared}/10001/ADDINS/horalink\n")

    def test_a_missing_backslash_is_named(self):
        problems = self.problems(r"mkdir -p .config/velmora && printf '[VELMORA32/10001]\nInstallPath=%s\n' "
                                 r"${D//\//\\} >.config/velmora/settings.ini")
        self.assertTrue(all(to_do.startswith("Put a backslash at the end of the InstallPath") for _, to_do in problems), problems)
        self.run_shell("sed -i 's/InstallPath.*/&\\\\/' .config/velmora/settings.ini")
        self.assert_is_well()

    def test_a_tree_of_links_goes_on_working(self):
        """Which earlier versions laid out for each user."""
        self.run_shell("mkdir -p $D/{ADDINS/{DATABASE,HELP},MORA32/DATABASE} .config/velmora && ln -s $T/BACKGRND $D && "
                       "ln -s $T/ADDINS/horalink $D/ADDINS && ln -s $DE/Horalink.lng $D/ADDINS/DATABASE && "
                       "ln -s $T/ADDINS/HELP/de/Horalink.hlp $D/ADDINS/HELP && "
                       "ln -s $T/MORA32/DATABASE/de/Common.LNG $D/MORA32/DATABASE && cp $T/MORA32/DATABASE/Register.mdb $R && "
                       "echo '[VELMORA32/10001]\nInstallPath='${D//\\//\\\\}'\\' >.config/velmora/settings.ini")
        self.add_row(self.environment["R"])
        self.create()
        self.assert_is_well()
        self.assertEqual(self.rows(self.environment["R"]), {"Horalink.mra": "13.0.1", "Other.mra": "7"})
        self.assertTrue((self.own / "10001/ADDINS/DATABASE/Horalink.lng").is_symlink())

    def test_a_market_of_ones_own(self):
        self.assertIn(f"market 20002, {self.own}/20002/ADDINS/horalink", self.setup_market("20002"))
        self.create("20002")
        self.assertFalse((self.own / "10001").exists())
        text = self.run_shell("horalink-setup status")
        self.assertRegex(text, rf"\n  market +20002\n.*\n(.*\n)+  {EXCHANGE.format(20002)} +starts {self.own}/20002/MORA32/switchdesk --service\n")
        self.setup_market("ab1cd")
        self.setup_market("ab1cd")
        self.create("AB1CD")
        self.setup_market("10001")
        self.create()
        self.assertEqual([file.name for file in self.services.iterdir() if CLASS in file.name], [])
        self.assert_is_well()

    def test_a_market_for_everybody(self):
        self.assertIn("all users", self.setup_market("20002", user=AS_ROOT))
        self.run_shell(RELOAD)  # as a login does
        self.create("20002")
        self.assertEqual(os.readlink(self.shared / "20002"), "10001")
        self.assertEqual([file.name for file in (self.own / "20002").rglob("*") if file.is_file()], ["Register.mdb"])
        # A user's own choice comes first, and takes the shared tree where there is one.
        self.setup_market("10001")
        self.create()
        self.setup_market("20002")
        self.assertFalse((self.services / f"{CLASS}.service").exists())
        self.setup_market("10001", user=AS_ROOT)
        self.run_shell(RELOAD)
        self.assertEqual(list((self.top / "usr/local/share/dbus-1/services").glob(f"{CLASS}*")), [])
        self.create()

    def test_why_not(self):
        foreign = "[D-BUS Service]\nName=x\nExec=/usr/bin/other\n"
        for code in ("", "1000", "100011", "10/01", "10 01", "10.01", "größe", "1000\n"):
            self.assertIn("five letters, digits", self.setup_market(code, 2), code)
        for wrong in ("", "stat", "status x", "market", "market 10001 x", "--json"):
            self.assertIn("unknown command; see horalink-setup --help", self.run_shell(f"horalink-setup {wrong}", 2), wrong)
        self.run_shell(f"mkdir -p $S && printf {shlex.quote(foreign)} >$S/$CLASS.service")
        self.assertIn("starts another program for the class; delete it first", self.setup_market("20002", 1))
        self.assertEqual((self.services / f"{CLASS}.service").read_text(), foreign)
        self.run_shell("rm $S/$CLASS.service && mkdir $S/../other && mkdir run && mkdir -p run/dbus-1/services && "
                       f"printf {shlex.quote(foreign)} >run/dbus-1/services/$CLASS.service")
        self.environment["XDG_RUNTIME_DIR"] = f"{self.home}/run"
        self.assertIn("counts first and starts another program", self.setup_market("20002", 1))
        del self.environment["XDG_RUNTIME_DIR"]
        self.run_shell("chmod 500 .local/share/dbus-1/services")
        self.assertIn("service can't be written", self.setup_market("ab1cd", 1))
        self.environment["XDG_DATA_DIRS"] = "/none"
        self.assertIn("the session bus looks neither in", self.setup_market("20002", 1, AS_ROOT))
        del self.environment["HOME"], self.environment["XDG_DATA_HOME"]
        for market in ("10001", "30003"):
            self.assertIn("HOME isn't set", self.setup_market(market, 1))
        (self.shared / "10001/ADDINS/horalink").unlink()
        self.assertIn("install the package", self.setup_market("20002", 1))


if __name__ == "__main__":
    unittest.main()

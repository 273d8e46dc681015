"""horalink-setup on an installation in a prefix of its own, as a user without root's rights, on a bus of its own.

Each fault is one that `status` has to name with a remedy; what it says to do is done, and then all is well: the add-in
starts, and no row of the register is lost.
"""
import os
import re
import subprocess
import tempfile
import unittest
from pathlib import Path

BUILD = os.environ["HORALINK_BUILD"]
IS_ROOT = os.getuid() == 0
NOBODY = 65534
AS_USER = ("setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups") if IS_ROOT else ()
AS_ROOT = () if IS_ROOT else ("unshare", "-r")
LOCK = ("import sqlite3, signal, sys; d = sqlite3.connect(sys.argv[1], isolation_level=None); "
        "d.execute('BEGIN IMMEDIATE'); print(flush=True); signal.pause()")
MOVED, COMMAND = r"mv --backup=numbered .*\.old", "$ "
# What commands of the shell are written with here. `create` is a creation by a host, up to the end of the add-in.
SHELL = r"""
ask_bus() { busctl --user call org.freedesktop.DBus / org.freedesktop.DBus "$@"; }
create() {
  busctl --user --timeout=60 call $CLASS /Factory org.velmora.Automation1.Factory CreateInstance >/dev/null
  while [ "$(ask_bus NameHasOwner s $CLASS)" = "b true" ]; do :; done
  [ "$(version_in $OWN/${1:-10001}/MORA32/DATABASE/Register.mdb Horalink.mra)" = 13.0.1 ]
}
version_in() { sqlite3 $1 "SELECT Version FROM Registry WHERE AppName = '$2'" 2>/dev/null || true; }
add_row() { sqlite3 $R "INSERT INTO Registry VALUES ('Other.mra', 'Other', '7', 'Other.cOLELayer', -1)"; }
has_row() { for file in $R*; do version_in $file Other.mra; done | says '^7$'; }
is_well() { horalink-setup status | says '^Nothing is wrong\.$'; }
says() { [ "$(grep -cE -- "$1")" -gt 0 ]; } # reads all
refuses() {
  local status=0
  horalink-setup "${@:3}" >said 2>&1 || status=$?
  [ $status = $1 ] && says "$2" <said
}
"""

# Commands of the shell that break something; what status says of it; what it says to do.
FAULTS = [
    ("chmod 500 $(dirname $R)", r"register can't be written, since \S+DATABASE can't be$", r"chmod u\+rwX "),
    ("rm -r $OWN && ln -s /none $OWN", r"the link \S+/VELMORA32 leads nowhere$", "rm "),
    ("rm -r $OWN && echo x >$OWN", r"since \S+/VELMORA32 is no folder$", MOVED),
    ("exec 3< <(exec python3 -c \"$LOCK\" $R 2>/dev/null); read -u3", r"locked by python3, process \d+$", "kill "),
    ("echo x >$R && touch $R-journal", r"register: .* not a database.*\(/\S+/Register.mdb\)$",
     r"mv \S+ \S+-journal \S+\.old-journal && mv "),
    ("rm $R && touch $R-journal", r"Register.mdb-journal belongs to a register that is missing$", "rm "),
    ("rm -r $OWN && chmod 500 .local/share", r"register can't be written, since \S+/share can't be$", r"chmod u\+rwX "),
    ("mkdir -p $D/ADDINS/DATABASE && echo garbage >$D/ADDINS/DATABASE/Horalink.lng",
     r"^texts: .*not a database", MOVED),
    ("mkdir -p $S && echo '[D-BUS Service]\nExec=/none/x' >$S/$CLASS.service", r"bus would start /none/x, ", MOVED),
    ("horalink-setup market 20002 && rm -r $OWN/20002", r"bus would start .*20002/ADDINS/horalink", "rm "),
    ("unset DBUS_SESSION_BUS_ADDRESS; export XDG_RUNTIME_DIR=/none", "no session bus", "dbus-run-session horalink-s"),
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
        own = self.home / ".local/share/VELMORA32"
        self.environment = {
            "HOME": str(self.home), "XDG_DATA_HOME": f"{self.home}/.local/share",
            "XDG_DATA_DIRS": f"{self.top}/usr/local/share:{self.top}/usr/share",
            "PATH": f"{self.top}/usr/bin:/usr/bin:/bin",
            "LANG": "de_DE.UTF-8", "LC_CTYPE": "C.UTF-8", "QT_QPA_PLATFORM": "offscreen", "LOCK": LOCK,
            "CLASS": "Horalink10013.cOLELayer", "OWN": str(own), "D": f"{own}/10001",
            "S": f"{self.home}/.local/share/dbus-1/services",
            "R": f"{own}/10001/MORA32/DATABASE/Register.mdb",
            "T": f"{self.shared}/10001", "DE": f"{self.shared}/10001/ADDINS/DATABASE/de"}
        bus = subprocess.Popen([*AS_USER, "dbus-daemon", "--session", "--nofork", "--print-address=1"], text=True,
                               env=self.environment, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (bus.kill(), bus.wait(), bus.stdout.close()))
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def run_shell(self, commands, status=0, user=AS_USER):
        command = *user, "bash", "-exuo", "pipefail", "-c", SHELL + commands
        done = subprocess.run(command, env=self.environment, cwd=self.home, check=False, capture_output=True, text=True,
                              timeout=120)
        self.assertEqual(done.returncode, status, f"{commands}\n{done.stdout}{done.stderr}")
        return done.stdout + done.stderr

    def problems(self, fault=":"):
        """What is wrong with what to do about it, in pairs, after a command of the shell."""
        text = self.run_shell(f"{{ {fault}; }} || exit 99\nhoralink-setup status", 1)
        return re.findall(r"^  (\S.*)\n    (.*)$", text.partition("\nWrong, and")[2], re.M)

    def test_remedies(self):
        for fault, what, remedy in FAULTS:
            with self.subTest(fault):
                self.new_home()
                self.run_shell("create; add_row")
                ((said, to_do),) = self.problems(fault)
                self.assertRegex(said, what)
                self.assertRegex(to_do, "^" + re.escape(COMMAND) + remedy)
                # The row is in the register or in one that was moved away, unless the fault itself took it away.
                kept = ":" if re.search(r">\$R|rm (-r \$OWN |\$R)", fault) else "has_row"
                self.run_shell(f"{to_do.removeprefix(COMMAND)}\nis_well; create; is_well; {kept}")

    def test_remedies_without_a_command(self):
        subprocess.run(["bash", "-c", "rm $T/ADDINS/horalink $T/ADDINS/DATABASE/*/Horalink.lng $T/BACKGRND/sky.svg"],
                       env=self.environment, check=True)
        said, to_do = zip(*self.problems())
        self.assertEqual(set(to_do), {"Install the package 'horalink' again."})
        for what in ("there is no program ", "texts: .*was not found", "picture sky.svg is missing"):
            self.assertRegex("\n".join(said), what)
        self.install()
        self.run_shell("is_well")
        for _, to_do in self.problems(r"""mkdir -p .config/velmora
printf '[VELMORA32/10001]\nInstallPath=%s\n' "${D//\//\\}" >.config/velmora/settings.ini"""):
            self.assertRegex(to_do, r"^Put a backslash at the end of the InstallPath \\.* in velmora/settings.ini\.$")
        self.run_shell(r"sed -i 's/InstallPath.*/&\\/' .config/velmora/settings.ini; is_well")

    def test_a_register_of_another_owner_is_copied_with_its_rows(self):
        self.run_shell("create; add_row")
        if IS_ROOT:
            os.chown(self.environment["R"], 0, 0)
        ((_, to_do),) = self.problems(":" if IS_ROOT else "chmod 444 $R")
        self.run_shell(f"{to_do.removeprefix(COMMAND)}; create; version_in $R Other.mra | says '^7$'")

    def test_status_says_what_a_start_would_use(self):
        before = self.run_shell("horalink-setup status")
        self.assertIn("copied to {R} by the first start\n".format(**self.environment), before)
        self.run_shell("create; mkdir -p $D/ADDINS/DATABASE .config/velmora; cp $DE/Horalink.lng $D/ADDINS/DATABASE\n"
                       "echo '[velmora32/10001]\nlanguage=fr' >.config/velmora/settings.ini")
        self.install()  # an upgrade
        after = self.run_shell("horalink-setup status")
        for line in ("  languages          fr, en\n",
                     "  texts              {D}/ADDINS/DATABASE/Horalink.lng\n{0:23}hides {T}/ADDINS/DATABASE/fr/",
                     "  register           {R}\n{0:23}hides {T}/MORA32/DATABASE/Register.mdb\n{0:23}can be written\n",
                     "  {CLASS}       starts {T}/ADDINS/horalink -Embedding\n"):
            self.assertIn(line.format("", **self.environment), after)

    def test_a_market_of_ones_own(self):
        self.run_shell(r"""
horalink-setup market ab1cd; horalink-setup market ab1cd | says "market AB1CD, $OWN/AB1CD/ADDINS/horalink"
create AB1CD
[ ! -e $D ]
horalink-setup status | tee said | says "^  market +AB1CD$"
says "^  SwitchDeskProjAB1CD.cPBXOle +starts $OWN/AB1CD/MORA32/switchdesk --service$" <said
horalink-setup market 10001; create
[ ! -e $S/$CLASS.service ]
is_well""")

    def test_a_market_for_everybody(self):
        """A user's own choice comes first, and takes the shared tree where there is one."""
        self.run_shell("horalink-setup market 20002 | says 'all users'", user=AS_ROOT)
        self.run_shell(r"""
ask_bus ReloadConfig # as a login does
create 20002
[ "$(readlink $T/../20002) $(find $OWN/20002 -type f -printf %f)" = "10001 Register.mdb" ]
horalink-setup market 10001; create
horalink-setup market 20002
[ ! -e $S/$CLASS.service ]""")
        self.run_shell("horalink-setup market 10001; [ ! -e ${XDG_DATA_DIRS%%:*}/dbus-1/services/$CLASS.service ]",
                       user=AS_ROOT)
        self.run_shell("ask_bus ReloadConfig; create")

    def test_why_not(self):
        self.run_shell(r"""
for code in 1000 100011 10/01 größe; do refuses 2 "five letters, digits" market "$code"; done
for wrong in "" stat "status x" market; do refuses 2 "unknown command; see horalink-setup --help" $wrong; done
other=$'[D-BUS Service]\nName=x\nExec=/usr/bin/other'
mkdir -p $S run/dbus-1/services
echo "$other" >$S/$CLASS.service
refuses 1 "starts another program for the class; delete it first" market 20002
[ "$(cat $S/$CLASS.service)" = "$other" ]
mv $S/$CLASS.service run/dbus-1/services
XDG_RUNTIME_DIR=$HOME/run refuses 1 "counts first and starts another program" market 20002
chmod 500 $S
refuses 1 "service can't be written" market ab1cd
unset HOME XDG_DATA_HOME
for market in 10001 30003; do refuses 1 "HOME isn't set" market $market; done""")
        self.run_shell('XDG_DATA_DIRS=/none refuses 1 "the session bus looks neither in" market 20002', user=AS_ROOT)
        (self.shared / "10001/ADDINS/horalink").unlink()
        self.run_shell('refuses 1 "install the package" market 20002')


if __name__ == "__main__":
    unittest.main()

"""The commands of the manuals do what they are there for, and what the manuals name is there.

A block of shell commands runs as it is, a block at a time, in a checkout and a home of its own;
what can't is named here with the reason, so that a new command has to be thought of.
"""
import re
import shutil
import subprocess
from xml.etree import ElementTree

import testbed
from host import result
from sandbox import SOURCES
from testbed import ADD_IN_CLASS, BUILD, OwnHostTest, changed, run
from testbed import set_up as setUpModule  # noqa: F401

MANUALS = [SOURCES / name for name in ("README.md", "CONTRIBUTING.md")] + sorted(SOURCES.glob("docs/*.md"))
# What builds, or wants a bare system, minutes, or what another test does.
ELSEWHERE = (r"\./run( --language \S+)?( \.\.\.| COMMAND\.\.\.)?$|\./run (stand-alone|bus) [A-Z]|\./check|"
             r"cmake --build build/check|ctest|tests/\w+/run|bench/run|scripts/make-pictures.sh|packaging/|sudo |"
             r"/usr/share/horalink/import|horalink-lng check new|install -Dt|"
             r"\./run( --language \S+)? bus (examples/|build/examples/|switchdesk --(verbose|open))")
AS_IS = (r"horalink-(lng|setup) |msginit |PATH=|cmake -S examples|busctl |examples/host.py &|xdotool search|exit$|"
         r"\./run bus (bash$|switchdesk --help)")
FOLDERS = "docs|scripts|examples|tests|data|src|tools|bench|packaging"
# What a shell that nobody types into does in place of what is there.
INSTEAD = [
    (r"^\./run bus bash$", "trap 'kill $!' EXIT"),
    (r"^\./run bus ", ""),
    (r"^examples/host.py &$", "examples/host.py > host.log 2>&1 & until grep -q GetComData host.log; do :; done"),
    (r"^exit$", ":"),
]


def blocks(manual):
    """The blocks of commands with the lines that they begin in, without what the manual says of each command."""
    text = manual.read_text(encoding="utf-8")
    for block in re.finditer(r"^```sh\n(.*?)^```$", text, re.M | re.S):
        lines = re.sub(r"\\\n\s*", "", block[1]).splitlines()
        commands = [re.split(r" {2,}(?! *-)", line.strip())[0] if not line.startswith(" ") else "" for line in lines]
        yield text[:block.start()].count("\n") + 1, [re.sub(r"\s+", " ", each) for each in commands if each]


def methods(interface):
    return [ElementTree.canonicalize(ElementTree.tostring(each, "unicode"), strip_text=True)
            for each in interface.findall("method")]


class Manuals(OwnHostTest):
    def setUp(self):
        super().setUp()
        self.top = testbed.sandbox.folder / "manuals"
        shutil.rmtree(self.top, ignore_errors=True)
        subprocess.run(["cmake", "--install", BUILD, "--prefix", self.top / "usr"], check=True, capture_output=True)

    def test_commands(self):
        for manual in MANUALS:
            for line, commands in blocks(manual):
                with self.subTest(manual.name, line=line):
                    commands = [each for each in commands if not re.match(ELSEWHERE, each)]
                    for command in commands:
                        self.assertRegex(command, f"^({AS_IS})", "a command that nobody tries")
                    if commands:
                        self.run_block(self.top / f"{manual.stem}-{line}", commands)

    def run_block(self, folder, commands):
        """In a checkout as far as the commands need it, and an empty home."""
        for pattern, replacement in INSTEAD:
            commands = [re.sub(pattern, replacement, command) for command in commands]
        for part in ("data", "examples"):
            shutil.copytree(SOURCES / part, folder / part)
        (folder / "build").mkdir()
        for part in BUILD.iterdir():
            (folder / "build" / part.name).symlink_to(part)
        environment = changed(HOME=str(folder / "home"), XDG_DATA_DIRS=f"{self.top}/usr/local/share:{self.top}/usr/share",
                              PATH=f"{self.top}/usr/bin:{testbed.sandbox.environment['PATH']}",
                              XDG_CONFIG_HOME=None, XDG_DATA_HOME=None, XDG_CACHE_HOME=None)
        # Some compile, which takes minutes on a busy machine.
        done = run(["bash", "-exc", "\n".join(commands)], 300, environment=environment, cwd=folder)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def test_what_is_named_is_there(self):
        for manual in MANUALS:
            text = manual.read_text(encoding="utf-8")
            links = {manual.parent / link for link in re.findall(r"\]\(([^):#]+)\)", text)}
            named = {SOURCES / path for path in re.findall(rf"`((?:{FOLDERS})/[\w./-]*)`", text)}
            self.assertEqual([str(path) for path in sorted(links | named) if not path.exists()], [], manual.name)

    def test_introspection_files(self):
        client, served, members = self.join(), {}, {"Invoke", "Retain", "Release"}
        for place in ((ADD_IN_CLASS, "/Factory"), result(client.create())):
            tree = ElementTree.fromstring(client.ask(*place, "org.freedesktop.DBus.Introspectable", "Introspect"))
            served.update((each.get("name"), methods(each)) for each in tree.findall("interface"))
        for file in (SOURCES / "docs/introspection").glob("*.xml"):
            (interface,) = ElementTree.parse(file).findall("interface")
            self.assertEqual(methods(interface), served[interface.get("name")], file.name)
            members.update(each.get("name").rpartition(".")[2] for each in interface.findall("annotation"))
        guide = (SOURCES / "docs/host-authors.md").read_text(encoding="utf-8")
        table = re.search(r"^## What a host must have\n(.*?)^## ", guide, re.M | re.S)[1]
        needs = [cell for row in re.findall(r"^\|.*", table, re.M) for cell in row.split("|")[2:4]]
        self.assertEqual(set(re.findall(r"`(\w+)`", " ".join(needs))), members)

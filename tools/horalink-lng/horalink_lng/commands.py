"""The command line."""
import argparse
import sys
from pathlib import Path

from horalink_lng import checking, making
from horalink_lng.sources import Fault
from horalink_lng.tables import LANGUAGE_FILES
from horalink_lng.translation import Translation


def arguments(version):
    parser = argparse.ArgumentParser(
        prog="horalink-lng", description="Makes and checks the texts of Horalink.",
        epilog="The exit status is 0, 1 after a fault, or 2 for wrong arguments. See horalink-lng(1).")
    parser.add_argument("--version", action="version", version=f"horalink-lng {version}")
    commands = parser.add_subparsers(dest="command", required=True, metavar="pot | build | check")
    commands.add_parser("pot", help="write the template of a translation")
    build = commands.add_parser("build", help="make the databases of a language")
    build.add_argument("source", nargs="?", type=Path, metavar="LANG.po | NAME.sql",
                       help="a translation, or the SQL of one database; without it, English")
    build.add_argument("--output", type=Path, required=True, metavar="DIR", help="the folder for the databases")
    check = commands.add_parser("check", help="report every fault of a language or of databases")
    check.add_argument("sources", nargs="*", type=Path, metavar="LANG.po | NAME.sql | DATABASE",
                       help="a translation, the SQL of one database, or databases; without it, English")
    check.add_argument("--backgrounds", type=Path, metavar="DIR", help="look for the picture files here")
    return parser


def sources_of(named, data):
    """The files to read, and the translation if one is named."""
    translations = [file for file in named if file.suffix == ".po"]
    if translations and len(named) > 1:
        raise Fault(f"{translations[0]}: a translation can't be combined with other files")
    if named and not translations:
        return named, None
    return [data / f"{name}.sql" for name in LANGUAGE_FILES], Translation(named[0]) if named else None


def run(options, version, data, checker):
    if options.command == "pot":
        files, _ = sources_of([], data)
        print(making.template(files, version))
        return 0
    if options.command == "build":
        making.build(*sources_of([options.source] if options.source else [], data), options.output)
        return 0
    if options.backgrounds and not options.backgrounds.is_dir():
        raise Fault(f"{options.backgrounds}: there is no such folder")
    files, translation = sources_of(options.sources, data)
    found = checking.check(files, translation, data, checker, options.backgrounds)
    print("\n".join(found) or "No fault was found.")
    if translation:
        print(f"{translation.file}: {translation.summary(checking.known_texts(files))}", file=sys.stderr)
    return 1 if found else 0


def main(words, version, data, checker):
    try:
        return run(arguments(version).parse_args(words), version, data, checker)
    except (Fault, OSError) as fault:
        print(f"horalink-lng: {fault}", file=sys.stderr)
        return 1

#!/usr/bin/env bash
# Whether a translation of the host has every text of its source, and none that is left over.
#   check-host-texts.sh FILE.po
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
PATH=$PATH:/usr/lib/qt6/bin
scratch=$(mktemp -d)
trap 'rm -r "$scratch"' EXIT
lupdate -silent -locations none "$top/host" -ts "$scratch/host.ts" 2>"$scratch/warnings"
lconvert "$scratch/host.ts" -o "$scratch/host.po"
msgfmt --check -o /dev/null "$1"
msgcmp "$1" "$scratch/host.po"
msgcmp --use-untranslated "$scratch/host.po" "$1"

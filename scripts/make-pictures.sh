#!/usr/bin/env bash
# Retakes the pictures of the manuals from the running program, on a display of its own.
#   scripts/make-pictures.sh [BUILD]   with the programs of a build folder; without one, of build/
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck source=/dev/null
source "$top/scripts/setup.sh"
build=${1:-$top/build}

install_packages "${build_packages[@]}" "${run_packages[@]}"
configure_tree "$build"
cmake --build "$build" --target src/all host/all data/all
mkdir -p "$top/docs/pictures"
exec /usr/bin/python3 "$top/scripts/make-pictures.py" "$build" "$top/docs/pictures"

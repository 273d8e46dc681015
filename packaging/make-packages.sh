#!/usr/bin/env bash
# Builds the Debian packages horalink and switchdesk into build/packages, or the folder that is named.
#   packaging/make-packages.sh [FOLDER]
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
source "$top/scripts/setup.sh"
case "${1:-}" in
  -h | --help) sed -n '2,3s/^# \{0,1\}//p' "$0"; exit 0 ;;
  -*) echo "make-packages.sh: '$1' is no option; see --help" >&2; exit 2 ;;
esac
folder=$(realpath -m "${1:-$top/build/packages}")

install_packages "${build_packages[@]}" dpkg-dev file gzip
# The distribution's own flags harden the programs.
configure_tree "$folder/tree" -DCMAKE_INSTALL_PREFIX=/usr -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_FLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
  -DCMAKE_EXE_LINKER_FLAGS="$(dpkg-buildflags --get LDFLAGS)"
cmake --build "$folder/tree" --target horalink switchdesk horalink-setup judge-texts databases package_documents
(cd "$folder/tree" && umask 022 && cpack -G DEB -B "$folder/tree/cpack" >"$folder/cpack.log") ||
  { cat "$folder/cpack.log" >&2; exit 1; }
rm -f "$folder"/*.deb
mv "$folder"/tree/cpack/*.deb "$folder/"
ls "$folder"/*.deb

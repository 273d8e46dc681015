#!/usr/bin/env bash
# Tries the packages on a bare system, as root: installs them, works with them as a new user, removes them, and
# looks for what was left behind. Fails at the first thing that is wrong.
#   packaging/try-packages.sh [--tree FOLDER] [--pictures FOLDER] PACKAGE...
# The tree is a bare Debian of the release that the packages were built on, as debootstrap makes it, and is changed.
# Without one, one of this machine's release is made and removed.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

tree= pictures= packages=()
while [ $# -gt 0 ]; do
  case "$1" in
    -h | --help) sed -n '2,6s/^# \{0,1\}//p' "$0"; exit 0 ;;
    --tree | --pictures)
      [ $# -gt 1 ] || { echo "try-packages.sh: $1 wants a folder" >&2; exit 2; }
      printf -v "${1#--}" %s "$2"; shift 2 ;;
    -*) echo "try-packages.sh: '$1' is no option; see --help" >&2; exit 2 ;;
    *) packages+=("$1"); shift ;;
  esac
done
[ ${#packages[@]} -gt 0 ] || { echo "try-packages.sh: the packages are missing; see --help" >&2; exit 2; }
[ "$(id -u)" -eq 0 ] || { echo "try-packages.sh: only root can enter another tree" >&2; exit 1; }

temporary=
if [ -z "$tree" ]; then
  temporary=$(mktemp -d)
  tree=$temporary
  debootstrap --variant=minbase "$(source /etc/os-release && echo "$VERSION_CODENAME")" "$tree"
fi
mounted=false
leave() {
  if $mounted; then umount -l "$tree/proc"; fi
  if [ -n "$temporary" ]; then rm -rf "$temporary"; fi
}
trap leave EXIT
if ! mountpoint -q "$tree/proc"; then
  mount -t proc proc "$tree/proc"
  mounted=true
fi

cp -L /etc/resolv.conf "$tree/etc/resolv.conf"
rm -rf "$tree/trial"
mkdir -p "$tree/trial/pictures"
cp "${packages[@]}" "$tree/trial/"
cp "$here/try-as-root.sh" "$here/try-as-user.sh" "$tree/trial/"
chroot "$tree" /bin/bash /trial/try-as-root.sh
if [ -n "$pictures" ]; then
  mkdir -p "$pictures"
  cp "$tree"/trial/pictures/* "$pictures/"
fi
echo "The packages pass."

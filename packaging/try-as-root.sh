#!/usr/bin/env bash
# The part of try-packages.sh that runs inside the tree, as root.
set -euo pipefail
cd /trial
export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8

step() { printf -- '--- %s\n' "$*"; }
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }
quietly() { "$@" >/trial/log 2>&1 || { tail -40 /trial/log >&2; fail "$*"; }; }

step "install the packages"
quietly apt-get update
quietly apt-get install -y ./*.deb
dpkg -L horalink switchdesk | sort -u >installed

step "install what the trial itself needs"
quietly apt-get install -y --no-install-recommends xvfb xdotool dbus dbus-bin python3-dbus python3-gi procps

step "work with them as a new user"
if id visitor >/dev/null 2>&1; then userdel --remove visitor 2>/dev/null; fi # of a trial that failed
useradd --create-home --shell /bin/bash visitor
chown visitor pictures
chmod 755 /trial
if ! su - visitor -c 'dbus-run-session -- bash /trial/try-as-user.sh'; then fail "the trial of the user"; fi

step "another market for everybody"
horalink-setup market 30003 >/dev/null
[ -x /usr/lib/VELMORA32/30003/ADDINS/horalink ] || fail "the market has no programs"

step "remove the packages"
quietly apt-get purge -y horalink switchdesk
dpkg -l horalink switchdesk 2>/dev/null | grep -E '^(ii|rc)' && fail "packages are left"
while read -r path; do
  if [ ! -d "$path" ] && { [ -e "$path" ] || [ -L "$path" ]; }; then fail "left behind: $path"; fi
done <installed
left=$(find / -xdev \( -path /proc -o -path /home -o -path /trial -o -path /var/log -o -path /var/cache \) -prune -o \
  \( -iname '*horalink*' -o -iname '*switchdesk*' -o -iname '*velmora*' \) -print)
[ -z "$left" ] || fail "left behind: $left"

userdel --remove visitor 2>/dev/null

#!/usr/bin/env bash
# The part of try-packages.sh that a new user does, inside a session bus of their own.
set -euo pipefail
cd "$HOME"
export LC_ALL=C.UTF-8
started=()
leave() { for pid in "${started[@]}"; do kill "$pid" 2>/dev/null || true; done; }
trap leave EXIT

step() { printf -- '  - %s\n' "$*"; }
fail() { printf 'FAILED: %s\n' "$*" >&2; exit 1; }
# Asks again and again, for a minute at most.
wait_for() {
  local end=$((SECONDS + 60))
  until "$@" >/dev/null 2>&1; do
    [ $SECONDS -lt $end ] || fail "waited in vain for: $*"
    sleep 0.2
  done
}
names() {
  dbus-send --session --print-reply --dest=org.freedesktop.DBus /org/freedesktop/DBus "org.freedesktop.DBus.$1" |
    grep -o '"[^"]*"' | tr -d '"'
}
knows() { names ListActivatableNames | grep -Fxq "$1"; }
runs() { names ListNames | grep -Fxq "$1"; }
gone() { ! runs "$1"; }
window() { xdotool search --onlyvisible --name "$1"; }
ended() { ! kill -0 "$1"; }
# A click may come before the window is ready for it; whoever waits for what it does clicks again.
click() { xdotool mousemove --window "$(window "$1" | tail -1)" "$2" "$3" click 1; }
screen=$HOME/screen/Xvfb_screen0
is_painted() { ! cmp -s "$screen" empty; }
picture() { wait_for is_painted; cp "$screen" "/trial/pictures/$1.xwd"; }

step "a display"
mkdir screen
mkfifo number
Xvfb -displayfd 3 -screen 0 1000x700x24 -fbdir "$HOME/screen" -nolisten tcp 3>number 2>/dev/null &
started+=($!)
read -r number <number
export DISPLAY=":$number"
rm number
dbus-update-activation-environment DISPLAY LC_ALL # as a desktop does when it starts

step "the bus knows the class, and nothing is wrong"
knows Horalink10013.cOLELayer || fail "the class of the add-in can't be started"
knows SwitchDeskProj10001.cPBXOle || fail "the class of the exchange object can't be started"
horalink-setup status >status || { cat status; fail "status before the first start"; }

step "the example host reads the clock of its exchange"
python3 -u /usr/share/doc/horalink/examples/host.py --once >host.log 2>&1 &
host=$!
started+=($host)
wait_for window "PBX Clock \(Example\)"
asked() { grep -q '^Login(' host.log || { click "PBX Clock \(Example\)" 47 269; false; }; }
wait_for asked
wait_for ended "$host"
wait "$host" || { cat host.log; fail "examples/host.py"; }
for call in Login SendRequest ShowResults LogOut REGComData; do
  grep -qi "^$call(" host.log || { cat host.log; fail "the host wasn't asked for $call"; }
done
wait_for gone Horalink10013.cOLELayer

step "the register has become the user's own, and knows the version"
own=.local/share/VELMORA32/10001/MORA32/DATABASE/Register.mdb
horalink-setup status >status || { cat status; fail "status after the first start"; }
grep -q "^  register  *$HOME/$own$" status || { cat status; fail "the register isn't the user's own"; }
cat status
grep -Fq 13.0.1 $own || fail "the version isn't in the register"

step "a stand-alone run in the language of the desktop, on an exchange of the companion host"
cp "$screen" empty
LC_ALL= LC_CTYPE=C.UTF-8 LANG=de_DE.UTF-8 horalink Main Office &
started+=($!)
wait_for runs SwitchDeskProj10001.cPBXOle
wait_for window "\(Main Office\)"
picture german
closed() { ended "${started[-1]}" || { click "\(Main Office\)" 424 269; false; }; }
wait_for closed
wait_for gone SwitchDeskProj10001.cPBXOle

step "the companion host with its window"
switchdesk --open Warehouse &
started+=($!)
wait_for window "\(Warehouse\)"
picture host
kill "${started[-1]}"
wait_for gone Horalink10013.cOLELayer

step "texts of one's own, and another market"
install -Dt .local/share/VELMORA32/10001/ADDINS/DATABASE /usr/lib/VELMORA32/10001/ADDINS/DATABASE/ru/Horalink.lng
horalink-setup status | grep -q "^  texts  *$HOME/" || fail "texts of one's own don't win"
horalink-setup market 20002 >/dev/null
knows SwitchDeskProj20002.cPBXOle || fail "the class of the second market can't be started"
horalink-setup status >status || { cat status; fail "status in another market"; }
grep -q '^  market  *20002$' status || fail "the market isn't chosen"

#!/usr/bin/env bash
# The add-in's own folders include no library, and nothing below reaches up into them. The link lines hold
# the first; headers alone would slip past them.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
own='src/shell src/exchange src/clock src/request src/language src/locator src/pictures'
status=0
report() { [ -z "$2" ] || { printf '%s:\n%s\n' "$1" "$2"; status=1; }; }

# shellcheck disable=SC2086
report "The add-in's folders include a library" \
  "$(grep -rnE '#include +[<"](Q[A-Z]|Qt|sqlite3|systemd/|dbus/)' $own || true)"
# shellcheck disable=SC2086
report "The add-in's folders reach behind the platform's interfaces" \
  "$(grep -rnE '#include +"platform/([a-z]+/(qt|dbus|sqlite)|headless)/' $own || true)"
report "The platform reaches up into the add-in" \
  "$(grep -rnE '#include +"(shell|exchange|clock|request|language|locator|pictures)/' src/platform || true)"
report "The companion host reaches into the add-in" \
  "$(grep -rnE '#include +"(shell|exchange|clock|request|language|locator|pictures)/' host || true)"
exit $status

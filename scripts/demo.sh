#!/usr/bin/env bash
# Installs what is missing, builds, and starts the window against two
# simulated controllers in a scratch application folder (nothing is written
# into the source tree). Without a display it runs a quorvelctl session
# against the same kind of controllers instead.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup-debian.sh"
"$root/scripts/build.sh" "$root/build"

if [[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]]; then
    exec "$root/build/bin/quorvel" --demo "$@"
fi
echo "No display: running a command-line session instead (quorvel --demo needs a desktop)."
echo

scratch=$(mktemp -d "${TMPDIR:-/tmp}/quorvel-demo.XXXXXX")
ctl() {
    echo "\$ quorvelctl $*"
    "$root/build/bin/quorvelctl" --app-dir "$scratch" \
        --link "sim:devices=2,serial=90601234,state=$scratch/controllers.json,trace=$scratch/trace.log" "$@"
    echo
}

ctl devices
ctl identity
ctl clock set
ctl clock read
ctl eeprom read 40 5
ctl eeprom write 9 30
ctl --json eeprom read 9 2
ctl value read 0
echo "Application folder: $scratch (config.xml, controllers.json, trace.log)"
echo "Frames exchanged: $(wc -l <"$scratch/trace.log")"

#!/usr/bin/env bash
# Installs what is missing, builds, and runs the tool against two simulated
# controllers in a scratch application folder (nothing is written into the
# source tree).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup-debian.sh"
"$root/scripts/build.sh" "$root/build"

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

#!/usr/bin/env bash
# Checks the Debian package that scripts/package.sh made: lintian (errors
# and warnings fail; the overrides the package carries explain the rest),
# the AppStream metadata, the desktop entry, and the programs unpacked into a
# scratch root, run from there.
# Usage: check-package.sh [PACKAGE.deb]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
deb=${1:-$(ls "$root"/build-package/quorvel_*.deb)}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

echo "== the USB ids of the rule and of the install script"
# Every controller the tool looks for must be one the rule opens to the user,
# and one whose vendor the install script asks udev to apply it to.
while read -r ids _; do
    vendor=${ids%%:*} product=${ids##*:}
    grep -q "ATTR{idVendor}==\"$vendor\", ATTR{idProduct}==\"$product\"" "$root/data/60-quorvel.rules" ||
        { echo "60-quorvel.rules does not open $ids" >&2; exit 1; }
    grep -q "idVendor=$vendor" "$root/data/packaging/postinst" ||
        { echo "postinst does not apply the rule to vendor $vendor" >&2; exit 1; }
done < <(grep -E '^[0-9A-Fa-f]{4}:[0-9A-Fa-f]{4}' "$root/data/usb-ids.conf")

echo "== lintian"
lintian --fail-on error,warning --display-info "$deb"

dpkg-deb -x "$deb" "$scratch/root"
echo "== appstreamcli validate"
appstreamcli validate --no-net "$scratch"/root/usr/share/metainfo/*.metainfo.xml
echo "== desktop-file-validate"
desktop-file-validate "$scratch"/root/usr/share/applications/*.desktop

echo "== the programs, from the unpacked package"
# Their own per-user folder, seeded from the unpacked config.xml, and a
# PATH that holds no other quorvelctl.
export XDG_DATA_HOME=$scratch/data HOME=$scratch/home
mkdir -p "$HOME"
ctl=$scratch/root/usr/bin/quorvelctl
"$ctl" --version
"$ctl" --link sim devices
"$scratch"/root/usr/bin/quorvel --version
"$scratch"/root/usr/bin/quorvel-sim --version
test -f "$XDG_DATA_HOME/quorvel/config.xml"
echo "package checked: $deb"

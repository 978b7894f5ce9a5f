#!/usr/bin/env bash
# Installs what building and testing quorvel needs on Debian 12, as root.
# Installs nothing that is already there.
set -euo pipefail

packages=(
    cmake ninja-build g++ pkg-config
    qt6-base-dev qt6-base-dev-tools libgl-dev libvulkan-dev libxkbcommon-dev
    libusb-1.0-0-dev libgtest-dev googletest
    umockdev libumockdev-dev
    libxml2-utils xvfb xauth poppler-utils
)
# What the Debian package needs to be made and checked (scripts/package.sh).
if [[ "${QUORVEL_SETUP_PACKAGING:-0}" == 1 ]]; then
    packages+=(dpkg-dev file help2man librsvg2-bin lintian appstream desktop-file-utils)
fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done

if ((${#missing[@]})); then
    if [[ $(id -u) -ne 0 ]]; then
        echo "Missing packages: ${missing[*]}" >&2
        echo "Run this script as root (or: sudo apt-get install ${missing[*]})." >&2
        exit 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

#!/usr/bin/env bash
# Builds the Debian package: quorvel_VERSION_ARCH.deb in build-package/.
# Usage: package.sh [BUILD_DIR]   (as root it first installs what is missing)
#
# The programs are built with Debian's hardening flags, without the tests
# and benchmarks, installed under /usr, stripped, and packed by CPack, whose
# dependencies come from dpkg-shlibdeps.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
dir=${1:-$root/build-package}

QUORVEL_SETUP_PACKAGING=1 "$root/scripts/setup-debian.sh"

# Debian's build flags (fortified functions, stack protector, relro and
# immediate binding); CMake reads CXXFLAGS and LDFLAGS but not CPPFLAGS.
eval "$(DEB_BUILD_MAINT_OPTIONS=hardening=+all dpkg-buildflags --export=sh)"
export CXXFLAGS="$CXXFLAGS $CPPFLAGS"

cmake -S "$root" -B "$dir" -G Ninja -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX=/usr \
    -DQUORVEL_BUILD_TESTS=OFF -DQUORVEL_BUILD_BENCHMARKS=OFF >/dev/null
cmake --build "$dir" -j "$(nproc)"
rm -f "$dir"/quorvel_*.deb
(cd "$dir" && cpack -G DEB >/dev/null)
ls "$dir"/quorvel_*.deb

#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: once in a normal
# build and once under AddressSanitizer and UndefinedBehaviorSanitizer.
# QUORVEL_SKIP_SANITIZERS=1 runs the normal build only.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
"$root/scripts/setup-debian.sh"

export QT_QPA_PLATFORM=offscreen

"$root/scripts/build.sh" "$root/build"
ctest --test-dir "$root/build" --output-on-failure -j "$(nproc)"

if [[ "${QUORVEL_SKIP_SANITIZERS:-0}" != 1 ]]; then
    "$root/scripts/build.sh" "$root/build-asan" -DQUORVEL_SANITIZE=ON -DQUORVEL_BUILD_BENCHMARKS=OFF
    ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
        ctest --test-dir "$root/build-asan" --output-on-failure -j "$(nproc)"
fi

#!/usr/bin/env bash
# Builds the fuzz targets with clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer, and runs each one for SECONDS (60 by default)
# from its seed corpus in tests/fuzz/corpus/. Not part of the test suite.
#
#   scripts/fuzz.sh [SECONDS] [TARGET...]
#
# New inputs found go to build-fuzz/corpus/TARGET (the seeds stay as they
# are); a crash, a time-out or a leak is written to build-fuzz/findings/ and
# makes the script fail. The closing lines give the executions per target.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
seconds=${1:-60}
shift || true
targets=("$@")
((${#targets[@]})) || targets=(fuzz_config_document fuzz_programme_file fuzz_device_reply
                                fuzz_programme_image)

"$root/scripts/setup-debian.sh"
# The fuzzing tool chain: clang 14 and its runtime (libFuzzer, sanitizers).
missing=()
for p in clang libclang-rt-14-dev; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if ((${#missing[@]})); then
    if [[ $(id -u) -ne 0 ]]; then
        echo "Missing packages: ${missing[*]} (sudo apt-get install ${missing[*]})" >&2
        exit 1
    fi
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi

build="$root/build-fuzz"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ -DQUORVEL_FUZZ=ON \
    -DQUORVEL_BUILD_TESTS=OFF -DQUORVEL_BUILD_BENCHMARKS=OFF \
    ${CMAKE_CXX_COMPILER_LAUNCHER:+-DCMAKE_CXX_COMPILER_LAUNCHER=$CMAKE_CXX_COMPILER_LAUNCHER} >/dev/null
cmake --build "$build" --target "${targets[@]}"

export QT_QPA_PLATFORM=offscreen
export ASAN_OPTIONS=detect_leaks=1:abort_on_error=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p "$build/findings"
status=0
summary=()
for target in "${targets[@]}"; do
    seeds="$root/tests/fuzz/corpus/${target#fuzz_}"
    found="$build/corpus/$target"
    mkdir -p "$found"
    log="$build/findings/$target.log"
    echo "== $target, $seconds s"
    if "$build/bin/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len=65536 -print_final_stats=1 -artifact_prefix="$build/findings/$target-" \
        "$found" "$seeds" >"$log" 2>&1; then
        result=clean
    else
        result="FAILED (see $log)"
        status=1
    fi
    runs=$(grep -o 'stat::number_of_executed_units: *[0-9]*' "$log" | grep -o '[0-9]*$' || echo "?")
    summary+=("$target: $runs executions, $result")
done
printf '%s\n' "${summary[@]}"
exit $status

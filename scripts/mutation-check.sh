#!/usr/bin/env bash
# Applies, one at a time, the source mutations of a list, rebuilds, runs the
# tests and reports which mutations the tests kill. A mutation that survives
# is a fault the suite would let through.
#
#   scripts/mutation-check.sh [--list FILE] [--build-dir DIR]
#                             [--binaries test_a,test_b] [ID ...]
#
# Works on the git repository of the current directory. The list holds one
# mutation a line, fields separated by one TAB:
#   ID  FILE  FIND  REPLACE  REASON
# FIND must occur exactly once in FILE. Lines starting with # and blank lines
# are comments. IDs given on the command line (shell globs allowed) select
# mutations; none selects all. Exit status 0 only if every selected mutation
# was killed.
set -euo pipefail

usage() {
    sed -n '2,15p' "$0" | sed 's/^# \{0,1\}//'
    exit 2
}

repo=$(git rev-parse --show-toplevel 2>/dev/null) || {
    echo "mutation-check: not inside a git repository" >&2
    exit 2
}
list="$repo/tests/mutations.txt"
build_dir="$repo/build-mutation"
binaries=""
selectors=()

while [ $# -gt 0 ]; do
    case "$1" in
    --list)
        list=$(realpath "${2:?--list needs a file}")
        shift 2
        ;;
    --list=*)
        list=$(realpath "${1#--list=}")
        shift
        ;;
    --build-dir)
        build_dir=$(realpath -m "${2:?--build-dir needs a folder}")
        shift 2
        ;;
    --build-dir=*)
        build_dir=$(realpath -m "${1#--build-dir=}")
        shift
        ;;
    --binaries)
        binaries="${2:?--binaries needs a list}"
        shift 2
        ;;
    --binaries=*)
        binaries="${1#--binaries=}"
        shift
        ;;
    -h | --help) usage ;;
    -*)
        echo "mutation-check: unknown option $1" >&2
        exit 2
        ;;
    *)
        selectors+=("$1")
        shift
        ;;
    esac
done

[ -f "$list" ] || {
    echo "mutation-check: no list at $list" >&2
    exit 2
}
cd "$repo"

# --- read and check the list ------------------------------------------------
# Parsed in Python: bash's read would merge two TABs around an empty field.
ids=()
files=()
finds=()
replaces=()
bad=0
parsed=$(mktemp)
python3 - "$list" "${selectors[@]}" >"$parsed" <<'PY' || bad=1
import fnmatch, os, sys
path, selectors = sys.argv[1], sys.argv[2:]
seen, ok, out = set(), True, []
with open(path, encoding="utf-8") as f:
    for number, line in enumerate(f, 1):
        line = line.rstrip("\r\n")
        if not line.strip() or line.startswith("#"):
            continue
        where = f"{path}:{number}"
        field = line.split("\t")
        if len(field) != 5:
            print(f"{where}: expected 5 TAB-separated fields, found {len(field)}", file=sys.stderr)
            ok = False
            continue
        mid, file, find, replace, reason = field
        if mid in seen:
            print(f"{where}: duplicate id {mid}", file=sys.stderr)
            ok = False
        seen.add(mid)
        if not find or not reason.strip():
            print(f"{where}: {mid}: empty text to find or empty reason", file=sys.stderr)
            ok = False
            continue
        if selectors and not any(fnmatch.fnmatchcase(mid, s) for s in selectors):
            continue
        if not os.path.isfile(file):
            print(f"{where}: {mid}: no file {file}", file=sys.stderr)
            ok = False
            continue
        count = open(file, "rb").read().count(find.encode())
        if count != 1:
            print(f"{where}: {mid}: the text to find occurs {count} times in {file} (must be once)", file=sys.stderr)
            ok = False
            continue
        out.append((mid, file, find, replace))
if not out and ok:
    print("mutation-check: no mutation selected", file=sys.stderr)
    ok = False
for record in out:
    sys.stdout.write("".join(value + "\0" for value in record))
sys.exit(0 if ok else 1)
PY
while IFS= read -r -d '' id && IFS= read -r -d '' file &&
    IFS= read -r -d '' find && IFS= read -r -d '' replace; do
    if [ -n "$(git status --porcelain -- "$file")" ]; then
        echo "mutation-check: $id: $file has uncommitted changes; commit or stash them first" >&2
        bad=1
    fi
    ids+=("$id")
    files+=("$file")
    finds+=("$find")
    replaces+=("$replace")
done <"$parsed"
rm -f "$parsed"

[ "$bad" -eq 0 ] || exit 2

# --- build and run ----------------------------------------------------------
# Worktrees of one repository share their compiler cache: paths are taken
# relative to the folder that holds them.
: "${CCACHE_BASEDIR:=$(dirname "$repo")}"
: "${CCACHE_NOHASHDIR:=1}"
: "${CCACHE_SLOPPINESS:=time_macros,include_file_mtime,include_file_ctime}"
export CCACHE_BASEDIR CCACHE_NOHASHDIR CCACHE_SLOPPINESS
launcher=()
if command -v ccache >/dev/null; then launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache); fi
if [ ! -f "$build_dir/build.ninja" ]; then
    echo "configuring $build_dir"
    mkdir -p "$build_dir"
    cmake -S "$repo" -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE= \
        -DCMAKE_CXX_FLAGS=-O1 -DCMAKE_C_FLAGS=-O1 \
        -DQUORVEL_BUILD_BENCHMARKS=OFF -DQUORVEL_BUILD_TESTS=ON \
        "${launcher[@]}" >"$build_dir/configure.log" 2>&1 || {
        cat "$build_dir/configure.log" >&2
        exit 2
    }
fi

log="$build_dir/mutation-last.log"

# The tests' scratch folders go to memory where it can hold them: a test that
# times a save then measures the code, not the disk shared with other builds.
scratch=""
if [ -z "${MUTATION_CHECK_KEEP_TMPDIR:-}" ] && [ -d /dev/shm ] && [ -w /dev/shm ]; then
    scratch=$(mktemp -d /dev/shm/mutation-check.XXXXXX)
    export TMPDIR="$scratch"
fi
trap '[ -z "$scratch" ] || rm -rf "$scratch"' EXIT
IFS=',' read -r -a binary_list <<<"$binaries"

build_tree() {
    if [ "${#binary_list[@]}" -gt 0 ]; then
        cmake --build "$build_dir" -j2 --target "${binary_list[@]}"
    else
        cmake --build "$build_dir" -j2
    fi
}

run_tests() {
    if [ "${#binary_list[@]}" -gt 0 ]; then
        local binary path
        for binary in "${binary_list[@]}"; do
            path=$(find "$build_dir" -type f -name "$binary" -perm -u+x -print -quit)
            [ -n "$path" ] || {
                echo "no test binary $binary in $build_dir"
                return 1
            }
            # A second chance, as ctest gives below: only a fault that
            # fails twice counts.
            (cd "$(dirname "$path")" && QT_QPA_PLATFORM=offscreen timeout 300 "$path" --gtest_brief=1) ||
                (cd "$(dirname "$path")" && QT_QPA_PLATFORM=offscreen timeout 300 "$path" --gtest_brief=1) ||
                return 1
        done
    else
        run_suite
    fi
}

# A test that measures time can miss on a loaded machine, the more so beside
# another test. What failed runs again alone, twice if need be: a failure that
# comes back kills the mutation; one that does not spares the test, and the
# suite runs again without it, since the stop cut the rest of the suite short.
# Failures that each pass alone in three rounds running count as a kill too.
run_suite() {
    local spared="" round failed
    for round in 1 2 3; do
        if QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" -j2 --timeout 120 \
            --stop-on-failure --output-on-failure ${spared:+-E "$spared"}; then
            return 0
        fi
        failed=$(python3 -c '
import sys
try:
    lines = open(sys.argv[1]).read().splitlines()
except OSError:
    lines = []
def literal(name):  # for the regular expressions of ctest -E
    return "".join("\\" + c if c in "^$.[]*+?()|\\" else c for c in name)
print("|".join("^" + literal(line.split(":", 1)[1]) + "$" for line in lines if ":" in line))
' "$build_dir/Testing/Temporary/LastTestsFailed.log")
        [ -n "$failed" ] || return 1
        QT_QPA_PLATFORM=offscreen ctest --test-dir "$build_dir" -j1 --timeout 120 \
            --rerun-failed --repeat until-pass:2 --output-on-failure || return 1
        echo "mutation-check: round $round: passed alone, spared: $failed"
        spared="${spared:+$spared|}$failed"
    done
    return 1
}

echo "building and testing the unmutated tree in $build_dir"
if ! build_tree >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "mutation-check: the unmutated tree does not build; nothing checked" >&2
    exit 2
fi
if ! run_tests >>"$log" 2>&1; then
    tail -n 40 "$log" >&2
    echo "mutation-check: the unmutated tests fail; a mutation check on a red suite means nothing" >&2
    exit 2
fi

# --- mutate one at a time, always restoring ---------------------------------
backup=$(mktemp)
mutated_file=""
restore() {
    if [ -n "$mutated_file" ]; then
        cat "$backup" >"$mutated_file"
        # The original text gets a fresh time stamp so the next build
        # recompiles what the mutation compiled.
        touch "$mutated_file"
        mutated_file=""
    fi
}
trap 'restore; rm -f "$backup"; [ -z "$scratch" ] || rm -rf "$scratch"' EXIT
# Build tools catch Ctrl-C and exit on their own, so the shell only notes it
# and stops at the next step; the EXIT trap puts the source back.
interrupted=0
trap 'interrupted=1' INT TERM
stop_if_interrupted() {
    if [ "$interrupted" -ne 0 ]; then
        echo "mutation-check: interrupted; source restored" >&2
        exit 130
    fi
}

report="$build_dir/mutation-report.txt"
: >"$report"
killed=0 survived=0 nobuild=0
for i in "${!ids[@]}"; do
    id=${ids[$i]} file=${files[$i]}
    start=$(date +%s)
    cp "$file" "$backup"
    mutated_file=$file
    FIND="${finds[$i]}" REPLACE="${replaces[$i]}" python3 -c '
import os, sys
path = sys.argv[1]
data = open(path, "rb").read()
find, replace = os.environ["FIND"].encode(), os.environ["REPLACE"].encode()
assert data.count(find) == 1
open(path, "wb").write(data.replace(find, replace, 1))' "$file"
    built=1
    build_tree >"$log" 2>&1 || built=0
    stop_if_interrupted
    if [ "$built" -eq 0 ]; then
        outcome=no-build
        nobuild=$((nobuild + 1))
        cp "$log" "$build_dir/mutation-$id.log"
    else
        passed=1
        run_tests >>"$log" 2>&1 || passed=0
        stop_if_interrupted
        if [ "$passed" -eq 1 ]; then
            outcome=survived
            survived=$((survived + 1))
            cp "$log" "$build_dir/mutation-$id.log"
        else
            outcome=killed
            killed=$((killed + 1))
        fi
    fi
    restore
    seconds=$(($(date +%s) - start))
    printf '%-9s %s  (%d s)\n' "$outcome" "$id" "$seconds" | tee -a "$report"
done

# Put the build back on the unmutated sources for whoever comes next.
build_tree >"$log" 2>&1 || true

total=${#ids[@]}
summary="killed $killed / $total, survived $survived, no-build $nobuild"
echo "$summary" | tee -a "$report"
echo "report: $report"

dirty=""
for file in $(printf '%s\n' "${files[@]}" | sort -u); do
    if [ -n "$(git status --porcelain -- "$file")" ]; then dirty="$dirty $file"; fi
done
if [ -n "$dirty" ]; then
    echo "mutation-check: not restored:$dirty" >&2
    exit 2
fi

[ "$killed" -eq "$total" ]

#!/usr/bin/env bash
# The share of tests in the code: non-blank lines of the .cpp, .h, .ui, .py
# and .sh files that git tracks under tests/, against those under src/ and
# sim/. The project keeps it between a quarter and a third.
set -euo pipefail
cd "$(dirname "$0")/.."
count() {
    git ls-files -z -- "$@" | grep -z -E '\.(cpp|h|ui|py|sh)$' | xargs -0 cat | grep -cv '^[[:space:]]*$'
}
tests=$(count tests)
code=$(count src sim)
awk -v t="$tests" -v c="$code" 'BEGIN { printf "tests %d, src + sim %d: %.1f %%\n", t, c, 100 * t / c }'

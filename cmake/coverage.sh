#!/usr/bin/env bash
# Usage: cmake/coverage.sh [build-dir]     (default build/coverage)
#
# Runs the whole test suite of a coverage build (the "coverage" preset), then
# prints the line and branch coverage of the library -- every source and header
# under kxcommonr/ except the tests, the shared test helpers and the fuzz
# targets -- per file, per folder and in total. Fails when fewer than
# KX_MIN_LINE_COVERAGE percent (default 90) of the library's lines ran.
# The reports stay in the build folder: coverage.txt (lines per file),
# coverage-summary.json (lines and branches per file) and coverage-folders.txt.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build=$(cd "${1:-$root/build/coverage}" && pwd)
min=${KX_MIN_LINE_COVERAGE:-90}

# Counts from an earlier run would add up: start from zero.
find "$build" -name '*.gcda' -delete
ctest --test-dir "$build" -j2 --output-on-failure

cd "$root"   # gcovr reads --filter and --exclude relative to the working folder
select=(-r "$root" --filter 'kxcommonr/' --exclude '.*_test\.cpp'
        --exclude 'kxcommonr/testing/' --exclude '.*/fuzz/')
status=0
summary=$(gcovr "${select[@]}" --txt "$build/coverage.txt" \
  --json-summary "$build/coverage-summary.json" --json-summary-pretty \
  --print-summary --fail-under-line "$min" "$build") || status=$?

# Lines and branches per folder, from the per-file summary.
python3 - "$build/coverage-summary.json" > "$build/coverage-folders.txt" <<'PY'
import json, os, sys
files = json.load(open(sys.argv[1]))["files"]
folders = {}
for entry in files:
    totals = folders.setdefault(os.path.dirname(entry["filename"]), [0, 0, 0, 0])
    totals[0] += entry["line_covered"]; totals[1] += entry["line_total"]
    totals[2] += entry["branch_covered"]; totals[3] += entry["branch_total"]
def percent(covered, total):
    return "%6.1f%%" % (100.0 * covered / total) if total else "     -"
print("%-36s %13s %7s %15s %7s" % ("folder", "lines", "", "branches", ""))
for folder in sorted(folders):
    lc, lt, bc, bt = folders[folder]
    print("%-36s %6d/%-6d %s %7d/%-7d %s" % (folder, lc, lt, percent(lc, lt), bc, bt, percent(bc, bt)))
PY
cat "$build/coverage-folders.txt"

echo "$summary"
if [ "$status" -ne 0 ]; then
  echo "coverage: library line coverage below ${min}% (per file: $build/coverage.txt)" >&2
  exit 1
fi

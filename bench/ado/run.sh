#!/usr/bin/env bash
# ADO figures: the 100,000-row read against Python's sqlite3 loop in the same run (goal: within
# 3x), 10,000 parameterised inserts in one transaction, and the peak memory of forward-only reads
# of 1,000 and 10,000,000 rows (flat when rows stream).
# Usage: bench/ado/run.sh [build dir or path/to/quorvex-vbs] [runs]
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
vbs="${1:-$here/../../build}"
[ -d "$vbs" ] && vbs="$vbs/src/cli/quorvex-vbs"
runs="${2:-3}"
[ -x "$vbs" ] || { echo "quorvex-vbs not found at $vbs" >&2; exit 1; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
db="$work/bench.db"
python3 "$here/make_db.py" "$db"

# Best CPU seconds (user + system) and peak resident kilobytes of a command over $runs runs.
measure() {
  python3 - "$runs" "$@" <<'PY'
import resource, subprocess, sys
runs = int(sys.argv[1]); cmd = sys.argv[2:]
best = None
for _ in range(runs):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    subprocess.run(cmd, check=True, stdout=subprocess.DEVNULL)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    t = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    best = t if best is None else min(best, t)
print("%.3f %d" % (best, resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss))
PY
}

read -r vbs_read _ < <(measure "$vbs" "$here/read_rows.vbs" "$db")
read -r py_read _ < <(measure python3 "$here/read_rows.py" "$db")
read -r vbs_insert _ < <(measure "$vbs" "$here/insert_rows.vbs" "$db")
read -r _ small_kb < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "$db" 1000)
read -r big_s big_kb < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "$db" 10000000)
ratio=$(awk -v a="$vbs_read" -v b="$py_read" 'BEGIN{printf "%.2f", a / b}')
echo "read 100,000 rows x 5 columns: quorvex-vbs ${vbs_read}s, python3 sqlite3 ${py_read}s, ratio ${ratio} (goal <= 3)"
echo "10,000 parameterised inserts in one transaction: ${vbs_insert}s"
echo "forward-only read, peak memory: 1,000 rows ${small_kb} KB, 10,000,000 rows ${big_kb} KB (${big_s}s)"

#!/usr/bin/env bash
# ADO figures: the 100,000-row read against Python's sqlite3 loop in the same run (goal: within
# 3x), 10,000 parameterised inserts in one transaction, and the peak memory of forward-only reads
# of 1,000 and 10,000,000 rows from SQLite and of 1,000 and 1,000,000 rows from the PostgreSQL
# and MariaDB test servers when they run (scripts/db/start.sh; flat when rows stream).
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
counted() {
  echo "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c LIMIT $1) SELECT x, 'row ' || x AS label FROM c"
}
read -r _ small_kb < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "Provider=SQLite;Data Source=$db" "$(counted 1000)")
read -r big_s big_kb < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "Provider=SQLite;Data Source=$db" "$(counted 10000000)")
ratio=$(awk -v a="$vbs_read" -v b="$py_read" 'BEGIN{printf "%.2f", a / b}')
echo "read 100,000 rows x 5 columns: quorvex-vbs ${vbs_read}s, python3 sqlite3 ${py_read}s, ratio ${ratio} (goal <= 3)"
echo "10,000 parameterised inserts in one transaction: ${vbs_insert}s"
echo "forward-only read, peak memory: 1,000 rows ${small_kb} KB, 10,000,000 rows ${big_kb} KB (${big_s}s)"

# The servers' forward-only reads, each through its own row generator.
servers=${QV_DB_DIR:-/tmp/quorvex-db}
export ODBCSYSINI=$servers ODBCINI=$servers/odbc.ini
server_read() {  # name marker dsn query (@ROWS@ stands for the count)
  [ -f "$servers/$2" ] || { echo "$1: not running (scripts/db/start.sh), skipped"; return; }
  local small big
  read -r _ small < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "$3" "${4//@ROWS@/1000}")
  read -r big_s big < <(runs=1 measure "$vbs" "$here/stream_rows.vbs" "$3" "${4//@ROWS@/1000000}")
  echo "$1 forward-only read, peak memory: 1,000 rows ${small} KB, 1,000,000 rows ${big} KB (${big_s}s)"
}
server_read PostgreSQL pg.ok "DSN=qv_pg" "SELECT x, 'row ' || x AS label FROM generate_series(1, @ROWS@) x"
server_read MariaDB maria.ok "DSN=qv_maria" "SELECT seq, CONCAT('row ', seq) AS label FROM seq_1_to_@ROWS@"

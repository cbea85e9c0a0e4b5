#!/usr/bin/env bash
# How long `quorvex new` takes from the command line, start to saved project: on the Chinook
# sample and on a SQLite file of 500 tables of 20 columns (keys, a NOT NULL column, a unique
# index, so that every phase of the schema read has work). Prints the best and the median of
# RUNS runs of each, in seconds.
#   bench/cli/run.sh [quorvex or build folder] [runs]
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
quorvex=${1:-$here/../../build/src/cli/quorvex}
runs=${2:-5}
[ -d "$quorvex" ] && quorvex=$quorvex/src/cli/quorvex  # run.sh hands over the build folder
data=${QV_SHARED_DATA:-$here/../../../shared/data}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export HOME=$work/home XDG_CONFIG_HOME=$work/home/.config
mkdir -p "$HOME"

python3 - "$work/wide.db" <<'PY'
import sqlite3, sys
db = sqlite3.connect(sys.argv[1])
for t in range(1, 501):
    cols = ", ".join(f"c{c} " + ("VARCHAR(50)" if c % 3 == 0 else "INTEGER" if c % 3 == 1 else "DATE")
                     for c in range(3, 21))
    db.execute(f"CREATE TABLE t{t} (id INTEGER PRIMARY KEY, code VARCHAR(20) NOT NULL, {cols})")
    db.execute(f"CREATE UNIQUE INDEX ux_t{t} ON t{t} (code)")
db.commit()
PY

measure() {
  local label=$1 db=$2 times=()
  for _ in $(seq "$runs"); do
    rm -f "$work/p.qvp"
    local start end
    start=$(date +%s.%N)
    "$quorvex" --quiet new "$work/p.qvp" --db "$db" >/dev/null
    end=$(date +%s.%N)
    times+=("$(echo "$end - $start" | bc)")
  done
  printf '%s\n' "${times[@]}" | sort -n | awk -v l="$label" '
    { t[NR] = $1 } END { printf "%-22s best %.3f s  median %.3f s  (%d runs)\n", l, t[1], t[int((NR + 1) / 2)], NR }'
}

measure "quorvex new chinook" "sqlite:$data/sqlite/chinook.sqlite"
measure "quorvex new 500 tables" "sqlite:$work/wide.db"

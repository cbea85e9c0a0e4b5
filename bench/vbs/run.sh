#!/usr/bin/env bash
# Runs the same algorithms in VBScript (quorvex-vbs), Lua 5.4 and Python 3, and prints the
# median CPU time (user + system) of several runs and the ratios to Lua. The first four run
# in VBScript twice: inside a Sub ("proc", name.vbs) and as module-level code ("top",
# name_top.vbs), the form of a page body; the others are module-level code only.
# Each takes about half a second or more in Lua, so that start-up and timer noise stay small.
# The runs of one benchmark take turns (VBScript, Lua, Python, then again), so that a change in
# the machine's load falls on all of them alike; the load average is printed before and after,
# as ratios taken on a machine busier than its cores mean little. Python is far slower on some
# and only shows the scale: it runs at most three times, which keeps the whole run near a minute.
# Usage: bench/vbs/run.sh [path/to/quorvex-vbs] [runs] [max ratio to Lua for fib and loop]
# With the third argument the script exits 1 when fib or loop, in either form, is slower.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
vbs="${1:-$here/../../build/src/cli/quorvex-vbs}"
runs="${2:-5}"
limit="${3:-}"
over=0
[ -x "$vbs" ] || { echo "quorvex-vbs not found at $vbs" >&2; exit 1; }
command -v lua5.4 >/dev/null && lua=lua5.4 || lua=
command -v python3 >/dev/null && python=python3 || python=
py_runs=$((runs < 3 ? runs : 3))

TIMEFORMAT='%3U %3S'
tmp=$(mktemp)
trap 'rm -f "$tmp"' EXIT

# CPU seconds of one run of a command.
cpu() {
  { time "$@" >/dev/null 2>&1; } 2>"$tmp"
  tail -1 "$tmp" | awk '{printf "%.3f", $1 + $2}'
}

# The median of the numbers given.
median() {
  printf "%s\n" "$@" | sort -n | awk '{v[NR] = $1} END {
    if (NR % 2) print v[(NR + 1) / 2]; else printf "%.3f\n", (v[NR / 2] + v[NR / 2 + 1]) / 2 }'
}

ratio() {
  awk -v a="$1" -v b="$2" 'BEGIN{ if (a == "-" || b == "n/a" || b <= 0) print "-"; else printf "%.2f", a / b }'
}

check() {  # name, form, ratio to Lua
  if [ -n "$limit" ] && { [ "$1" = fib ] || [ "$1" = loop ]; } && [ "$3" != - ] &&
    awk -v a="$3" -v b="$limit" 'BEGIN{exit !(a > b)}'; then
    echo "$1 ($2) is $3 times Lua, above $limit" >&2
    over=1
  fi
}

load() { cut -d' ' -f1-3 /proc/loadavg; }

echo "runs: $runs (Python $py_runs), load average: $(load)"
printf "%-8s %8s %8s %8s %8s %9s %8s %9s\n" bench proc top lua python proc/lua top/lua top/proc
for name in fib loop member concat dict replace format; do
  procs=() tops=() luas=() pys=()
  has_top=
  [ -f "$here/${name}_top.vbs" ] && has_top=1
  for r in $(seq "$runs"); do
    if [ -n "$has_top" ]; then
      procs+=("$(cpu "$vbs" "$here/$name.vbs")")
      tops+=("$(cpu "$vbs" "$here/${name}_top.vbs")")
    else
      tops+=("$(cpu "$vbs" "$here/$name.vbs")")
    fi
    [ -n "$lua" ] && luas+=("$(cpu "$lua" "$here/$name.lua")")
    [ -n "$python" ] && [ "$r" -le "$py_runs" ] && pys+=("$(cpu "$python" "$here/$name.py")")
  done
  proc="-"; l="n/a"; p="n/a"
  [ -n "$has_top" ] && proc=$(median "${procs[@]}")
  top=$(median "${tops[@]}")
  [ -n "$lua" ] && l=$(median "${luas[@]}")
  [ -n "$python" ] && p=$(median "${pys[@]}")
  rp=$(ratio "$proc" "$l"); rt=$(ratio "$top" "$l")
  printf "%-8s %8s %8s %8s %8s %9s %8s %9s\n" "$name" "$proc" "$top" "$l" "$p" "$rp" "$rt" \
    "$(ratio "$top" "$proc")"
  check "$name" proc "$rp"
  check "$name" top "$rt"
done
echo "load average after: $(load)"
exit "$over"

#!/usr/bin/env bash
# Runs the same algorithms in VBScript (quorvex-vbs), Lua 5.4 and Python 3, and prints the
# best CPU time (user + system) of several runs and the ratios to Lua and Python.
# Usage: bench/vbs/run.sh [path/to/quorvex-vbs] [runs] [max ratio to Lua for fib and loop]
# With the third argument the script exits 1 when fib or loop is slower than that.
set -euo pipefail
here="$(cd "$(dirname "$0")" && pwd)"
vbs="${1:-$here/../../build/src/cli/quorvex-vbs}"
runs="${2:-5}"
limit="${3:-}"
over=0
[ -x "$vbs" ] || { echo "quorvex-vbs not found at $vbs" >&2; exit 1; }

TIMEFORMAT='%3U %3S'
tmp=$(mktemp)
trap 'rm -f "$tmp"' EXIT

# Best CPU seconds of a command over $runs runs.
best() {
  local best=""
  for _ in $(seq "$runs"); do
    local t
    { time "$@" >/dev/null 2>&1; } 2>"$tmp"
    t=$(tail -1 "$tmp" | awk '{printf "%.3f", $1 + $2}')
    if [ -z "$best" ] || awk -v a="$t" -v b="$best" 'BEGIN{exit !(a < b)}'; then best=$t; fi
  done
  echo "$best"
}

ratio() { awk -v a="$1" -v b="$2" 'BEGIN{ if (b <= 0) print "n/a"; else printf "%.2f", a / b }'; }

printf "%-8s %10s %10s %10s %10s %10s\n" bench vbs lua python vbs/lua vbs/py
for name in fib loop member concat dict replace format; do
  v=$(best "$vbs" "$here/$name.vbs")
  l="n/a"; p="n/a"
  command -v lua5.4 >/dev/null && l=$(best lua5.4 "$here/$name.lua")
  command -v python3 >/dev/null && p=$(best python3 "$here/$name.py")
  r=$(ratio "$v" "$l")
  printf "%-8s %10s %10s %10s %10s %10s\n" "$name" "$v" "$l" "$p" "$r" "$(ratio "$v" "$p")"
  if [ -n "$limit" ] && { [ "$name" = fib ] || [ "$name" = loop ]; } && [ "$r" != n/a ] &&
    awk -v a="$r" -v b="$limit" 'BEGIN{exit !(a > b)}'; then
    echo "$name is $r times Lua, above $limit" >&2
    over=1
  fi
done
exit "$over"

#!/usr/bin/env bash
# Runs the same algorithms in VBScript (quorvex-vbs), Lua 5.4 and Python 3, and prints the
# median CPU time (user + system) of several runs and the ratios to Lua. The first four run
# in VBScript twice: inside a Sub ("proc", name.vbs) and as module-level code ("top",
# name_top.vbs), the form of a page body; the others are module-level code only.
# Usage: bench/vbs/run.sh [path/to/quorvex-vbs] [runs] [max ratio to Lua for fib and loop]
# With the third argument the script exits 1 when fib or loop, in either form, is slower.
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

# Median CPU seconds of a command over $runs runs.
median() {
  local times=()
  for _ in $(seq "$runs"); do
    { time "$@" >/dev/null 2>&1; } 2>"$tmp"
    times+=("$(tail -1 "$tmp" | awk '{printf "%.3f", $1 + $2}')")
  done
  printf "%s\n" "${times[@]}" | sort -n | awk '{v[NR] = $1} END {
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

printf "%-8s %8s %8s %8s %8s %9s %8s %9s\n" bench proc top lua python proc/lua top/lua top/proc
for name in fib loop member concat dict replace format; do
  proc="-"
  top=$(median "$vbs" "$here/$name.vbs")
  if [ -f "$here/${name}_top.vbs" ]; then
    proc=$top
    top=$(median "$vbs" "$here/${name}_top.vbs")
  fi
  l="n/a"; p="n/a"
  command -v lua5.4 >/dev/null && l=$(median lua5.4 "$here/$name.lua")
  command -v python3 >/dev/null && p=$(median python3 "$here/$name.py")
  rp=$(ratio "$proc" "$l"); rt=$(ratio "$top" "$l")
  printf "%-8s %8s %8s %8s %8s %9s %8s %9s\n" "$name" "$proc" "$top" "$l" "$p" "$rp" "$rt" \
    "$(ratio "$top" "$proc")"
  check "$name" proc "$rp"
  check "$name" top "$rt"
done
exit "$over"

#!/usr/bin/env bash
# Runs every benchmark binary of the build and the script benchmarks, printing their figures.
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR}
shift || true
for b in "$build"/bench/*/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b")"
  "$b" --benchmark_min_time=0.2 "$@"
done
for s in "$(dirname "$0")"/*/run.sh; do
  [ -x "$s" ] || continue
  echo "== $s"
  "$s" "$build"
done

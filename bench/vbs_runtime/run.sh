#!/usr/bin/env bash
# Prints the Python figures beside bench_vbs_runtime's, which bench/run.sh prints itself.
set -euo pipefail
python3 "$(dirname "$0")/runtime_bench.py"

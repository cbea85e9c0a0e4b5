#!/usr/bin/env bash
# The demo job: shows what the engine does today on the bundled sample.
set -euo pipefail
build=${1:-"$(dirname "$0")/../build"}
quorvex="$build/src/cli/quorvex"
echo "Quorvex engine $("$quorvex" --version)"
"$quorvex" --help | head -n 20

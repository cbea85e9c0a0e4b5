#!/usr/bin/env bash
# The demo job: builds the sample shop database in SQLite from examples/shop.sql, creates a
# project from it with `quorvex new`, and shows what the engine learned: the tables and views
# with their keys, then the settings of one table and of one of its fields.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-"$here/../build"}
quorvex="$(cd "$build" && pwd)/src/cli/quorvex"
work=${QV_DEMO_DIR:-"$(mktemp -d "${TMPDIR:-/tmp}/quorvex-demo.XXXXXX")"}
mkdir -p "$work"

step() { printf '\n\033[1m== %s\033[0m\n' "$*"; }

echo "Quorvex engine $("$quorvex" --version), working in $work"

step "Building the sample shop database (sqlite3 shop.db < examples/shop.sql)"
rm -f "$work/shop.db" "$work/shop.qvp"
sqlite3 "$work/shop.db" <"$here/shop.sql"
sqlite3 "$work/shop.db" "SELECT type, count(*) FROM sqlite_master WHERE type IN ('table','view','index') GROUP BY type;"

step "quorvex new shop.qvp --db sqlite:shop.db"
(cd "$work" && "$quorvex" new shop.qvp --db sqlite:shop.db 2>"$work/new.err") || { cat "$work/new.err" >&2; exit 1; }

step "quorvex tables shop.qvp"
(cd "$work" && "$quorvex" tables shop.qvp 2>/dev/null)

step "quorvex show shop.qvp products (the table's settings)"
(cd "$work" && "$quorvex" show shop.qvp products 2>/dev/null)

step "quorvex show shop.qvp products name (one field's settings)"
(cd "$work" && "$quorvex" show shop.qvp products name 2>/dev/null | head -n 40)

step "A database that isn't there: quorvex new fails, says why, and writes no project file"
if (cd "$work" && "$quorvex" new broken.qvp --db sqlite:missing.db 2>"$work/broken.err" >/dev/null); then
  echo "unexpected success" >&2
  exit 1
fi
tail -n 4 "$work/broken.err"
test ! -e "$work/broken.qvp" && echo "(no broken.qvp was written)"

echo
echo "The project file is $work/shop.qvp"

#!/usr/bin/env bash
# The demo: builds the sample shop database in SQLite from examples/shop.sql, makes a project of
# it with `quorvex new`, generates the application with the default template package, serves it
# with `quorvex serve`, checks that the home page and a list page answer, and prints the
# address. On a terminal it keeps serving until Ctrl-C; otherwise (CI, a pipe) it stops after
# the check, so that it can stand as a test of the whole product.
#
#   examples/demo.sh [BUILD_DIR]    QV_DEMO_DIR: the working folder (default: a new temporary one)
#                                   QV_DEMO_PORT: the port to try first (default 8080)
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
build=${1:-"$here/../build"}
quorvex="$(cd "$build" && pwd)/src/cli/quorvex"
work=${QV_DEMO_DIR:-"$(mktemp -d "${TMPDIR:-/tmp}/quorvex-demo.XXXXXX")"}
mkdir -p "$work"
cd "$work"

# Bold headings on a terminal only: in a pipe or a log they would be noise.
bold='' red='' plain=''
if [ -t 1 ]; then bold=$'\033[1m' red=$'\033[1;31m' plain=$'\033[0m'; fi
step() { printf '\n%s== %s%s\n' "$bold" "$*" "$plain"; }
fail() {
  printf '%sThe demo failed: %s%s\n' "$red" "$*" "$plain" >&2
  exit 1
}

echo "Quorvex engine $("$quorvex" --version), working in $work"

step "Building the sample shop database (sqlite3 shop.db < examples/shop.sql)"
rm -rf shop.db shop.qvp app
sqlite3 shop.db <"$here/shop.sql"
sqlite3 shop.db "SELECT count(*) || ' tables' FROM sqlite_master WHERE type = 'table'
                 AND name NOT LIKE 'sqlite_%';"

step "quorvex new shop.qvp --db sqlite:shop.db"
"$quorvex" new shop.qvp --db sqlite:shop.db 2>new.err || { cat new.err >&2; fail "quorvex new"; }
"$quorvex" tables shop.qvp 2>/dev/null

step "quorvex generate shop.qvp --dest app"
# A fresh folder asks nothing; --refresh-template picks up a package rebuilt since the last demo.
"$quorvex" generate shop.qvp --dest app --overwrite all --refresh-template 2>generate.err ||
  { cat generate.err >&2; fail "quorvex generate"; }

step "quorvex serve app"
server=
log="$work/serve.log"
stop_server() {
  [ -n "$server" ] || return 0
  kill -INT "$server" 2>/dev/null || true
  wait "$server" 2>/dev/null || true
  server=
}
trap stop_server EXIT

# Starts the server on a port and waits for it to say where it listens; false when it stops
# first (the port is taken).
start_server() {
  "$quorvex" serve app --port "$1" --workers 2 2>"$log" &
  server=$!
  for _ in $(seq 1 100); do
    grep -q 'http://' "$log" 2>/dev/null && return 0
    kill -0 "$server" 2>/dev/null || { server=; return 1; }
    sleep 0.1
  done
  fail "quorvex serve said nothing for 10 seconds: $(cat "$log")"
}
start_server "${QV_DEMO_PORT:-8080}" || start_server 0 || fail "quorvex serve: $(cat "$log")"
address=$(grep -o 'http://[0-9.]*:[0-9]*/' "$log" | head -n 1)

# The home page answers, and so does the list page that its menu links first.
home=$(curl -sSf "$address") || fail "the home page $address answers $(tail -n 3 "$log")"
list=$(grep -o 'href="[^"#]*list[^"#]*\.asp[^"#]*"' <<<"$home" | head -n 1 | sed 's/^href="//; s/"$//')
[ -n "$list" ] || fail "the home page links no list page"
curl -sSf -o list.html "$address${list#/}" || fail "the list page $address${list#/} answers $(tail -n 3 "$log")"
echo "home page: $(wc -c <<<"$home") bytes; list page ${list#/}: $(wc -c <list.html) bytes"

echo
printf '%sThe shop application runs at %s%s\n' "$bold" "$address" "$plain"
echo "(project: $work/shop.qvp, pages: $work/app)"
if [ -t 1 ]; then
  echo "Ctrl-C stops it."
  wait "$server" || true
  server=
fi

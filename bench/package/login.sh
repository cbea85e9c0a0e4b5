#!/usr/bin/env bash
# Logging in to an application of the default package with a user table: the time of the
# login request (one Argon2id check of the stored hash, then the session) as curl measures it,
# served by `quorvex serve` with 2 workers. Prints the median and the slowest of the good
# logins and the server's CPU time per login (which a loaded machine doesn't stretch, as it
# does the wall time), the same for wrong passwords (as costly, so that the time tells no one
# whether a name exists), and the answer once a name has failed too often (at once, no hash).
#
#   bench/package/login.sh BUILD_DIR [logins]
set -euo pipefail
build=${1:?usage: login.sh BUILD_DIR [logins]}
n=${2:-20}
source "$(dirname "$0")/common.sh"

# Names up to user$n, so that the brute-force counter of one name never comes in the way.
{
  echo "CREATE TABLE users (id INTEGER PRIMARY KEY, login TEXT UNIQUE, password TEXT, level TEXT);"
  echo "CREATE TABLE note (id INTEGER PRIMARY KEY, text TEXT);"
  echo "WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < $((n * 2)))"
  echo "INSERT INTO users SELECT i, 'user' || i, 'password-' || i, 'Clerk' FROM s;"
} | sqlite3 login.db
q new login.qvp --db "sqlite:$work/login.db"
q set login.qvp "SecType=Use Table" SecTbl=users SecLoginIDFld=login SecPasswdFld=password
q set login.qvp --database SecUserLevelFld=level
q generate login.qvp --dest app --refresh-template

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
"$quorvex" serve app --port "$port" --workers 2 --no-access-log 2>serve.log &
server=$!
for _ in $(seq 1 50); do grep -q http:// serve.log && break; sleep 0.1; done
base="http://127.0.0.1:$port"

# One login: a fresh session's token, then the timed POST. Prints seconds and the status.
login() {
  local jar="$work/jar" token
  rm -f "$jar"
  token=$(curl -sf -c "$jar" -b "$jar" "$base/login.asp" | sed -n 's/.*name="qvtoken" value="\([^"]*\)".*/\1/p')
  curl -s -o /dev/null -c "$jar" -b "$jar" -w '%{time_total} %{http_code}\n' \
    --data "qvtoken=$token&username=$1&password=$2&return=default.asp" "$base/login.asp"
}
stats() { sort -n | awk '{t[NR] = $1 * 1000} END {printf "median %5.0f ms, slowest %5.0f ms (%d)", t[int((NR + 1) / 2)], t[NR], NR}'; }
# The server's user and system CPU time so far, in milliseconds.
cpu() { awk -v hz="$(getconf CLK_TCK)" '{printf "%d", ($14 + $15) * 1000 / hz}' "/proc/$server/stat"; }

# The first login of each user also replaces the stored text by its hash: warm them first.
for i in $(seq 1 $((n * 2))); do login "user$i" "password-$i" >/dev/null; done
before=$(cpu)
good=$(for i in $(seq 1 "$n"); do login "user$i" "password-$i"; done | awk '$2 == 302' | stats)
echo "good login:       $good, server CPU $(( ($(cpu) - before) / n )) ms per login"
before=$(cpu)
# Nine, one of each name: a tenth failure from one address would make the next ones wait.
wrong=$(for i in $(seq $((n + 1)) $((n + 9))); do login "user$i" nope; done | awk '$2 == 200' | stats)
echo "wrong password:   $wrong, server CPU $(( ($(cpu) - before) / 9 )) ms per login"
for _ in 1 2 3; do login user1 nope >/dev/null; done
echo "after 3 failures: $(login user1 password-1 | awk '{printf "%.0f ms, status %s", $1 * 1000, $2}')"

#!/usr/bin/env bash
# The load test under ThreadSanitizer: `quorvex serve` from a build of the `tsan` preset runs
# the benchmark site (hello, the ADODB list page, the list page with a session, an unbuffered
# export) and the test site (Application with its lock and global.asa's shared object,
# sessions, Server.Execute), each with wrk on several connections at once, then stops on
# SIGINT so that the OnEnd events run too. Fails when ThreadSanitizer reported anything.
#
#   cmake --preset tsan && cmake --build build-tsan --target quorvex
#   bench/asp/tsan.sh build-tsan [seconds per page]
set -euo pipefail
build=${1:?usage: tsan.sh BUILD_DIR [seconds]}
seconds=${2:-5}
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
source "$here/common.sh"

"$here/make_site.sh" "$work/bench"
cp -r "$root/tests/asp/site" "$work/test"

export TSAN_OPTIONS="halt_on_error=0 second_deadlock_stack=1 log_path=$work/tsan"
serve "$work/bench"
bport=$port bpid=$pid
serve "$work/test"
tport=$port tpid=$pid

# Pages in pairs, so that different pages run side by side too.
load() { wrk -t2 -c8 -d"${seconds}s" "$1" | awk -v u="$1" '/Requests\/sec/ {printf "%-60s %s req/s\n", u, $2}'; }
pair() {
  load "$1" &
  local first=$!
  load "$2"
  wait "$first"
}
pair "http://127.0.0.1:$bport/hello.asp" "http://127.0.0.1:$bport/list.asp?page=3"
pair "http://127.0.0.1:$bport/list_session.asp" "http://127.0.0.1:$tport/application.asp"
pair "http://127.0.0.1:$tport/session.asp?case=count" "http://127.0.0.1:$tport/server.asp?case=execute"
exports=()
for _ in 1 2 3 4; do
  curl -s "http://127.0.0.1:$bport/export.asp" -o /dev/null &
  exports+=($!)
done
load "http://127.0.0.1:$bport/list.asp?page=9"
wait "${exports[@]}"

kill -INT "$bpid" "$tpid"
wait "$bpid" "$tpid" || true
pids=()
reports=$(cat "$work"/tsan.* 2>/dev/null | grep -c '^WARNING: ThreadSanitizer' || true)
if [ "$reports" != 0 ]; then
  cat "$work"/tsan.*
  echo "ThreadSanitizer: $reports reports"
  exit 1
fi
echo "ThreadSanitizer: no reports"

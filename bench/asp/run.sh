#!/usr/bin/env bash
# Load test of `quorvex serve` with wrk on loopback, 2 workers, against nginx (2 worker
# processes, no access log) serving a static file with the hello page's bytes in the same run:
# requests per second and latency for a hello page and a 20-row list page over ADODB/SQLite,
# with 32 connections and with one; then resident memory over 100,000 requests, and across an
# unbuffered export of 100,000 rows.
#
#   bench/asp/run.sh BUILD_DIR [seconds per run]
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR [seconds]}
seconds=${2:-10}
here=$(cd "$(dirname "$0")" && pwd)
source "$here/common.sh"

"$here/make_site.sh" "$work/site"
serve "$work/site"
qport=$port qpid=$pid

nport=$(free_port)
mkdir -p "$work/nginx"
cat >"$work/nginx/nginx.conf" <<CONF
worker_processes 2;
pid $work/nginx/nginx.pid;
error_log $work/nginx/error.log;
events { worker_connections 1024; }
http {
  access_log off;
  client_body_temp_path $work/nginx; proxy_temp_path $work/nginx; fastcgi_temp_path $work/nginx;
  uwsgi_temp_path $work/nginx; scgi_temp_path $work/nginx;
  server { listen 127.0.0.1:$nport; root $work/site; default_type text/html; }
}
CONF
nginx -c "$work/nginx/nginx.conf" -g 'daemon off;' &
pids+=($!)
sleep 1

# wrk's figures: requests/s, then the 50th and 99th percentile latency.
measure() {
  local label=$1 url=$2 threads=$3 conns=$4
  local out
  out=$(wrk -t"$threads" -c"$conns" -d"${seconds}s" --latency "$url")
  local rps p50 p99
  rps=$(awk '/Requests\/sec/ {print $2}' <<<"$out")
  p50=$(awk '$1 == "50%" {print $2}' <<<"$out")
  p99=$(awk '$1 == "99%" {print $2}' <<<"$out")
  printf '%-34s %10s req/s   p50 %8s   p99 %8s\n' "$label" "$rps" "$p50" "$p99"
}

curl -sf "http://127.0.0.1:$qport/list.asp" >/dev/null || echo "(the list page fails: $(tail -n 1 "$log"))"
measure "nginx static, 32 connections" "http://127.0.0.1:$nport/hello.txt" 2 32
measure "hello.asp, 32 connections" "http://127.0.0.1:$qport/hello.asp" 2 32
measure "list.asp, 32 connections" "http://127.0.0.1:$qport/list.asp?page=7" 2 32
measure "nginx static, 1 connection" "http://127.0.0.1:$nport/hello.txt" 1 1
measure "hello.asp, 1 connection" "http://127.0.0.1:$qport/hello.asp" 1 1
measure "list.asp, 1 connection" "http://127.0.0.1:$qport/list.asp?page=7" 1 1

# Resident size every 10,000 requests: it must stay flat after the second batch. wrk cannot
# send a fixed number of requests (it always runs its whole duration), so a small client does.
printf 'resident KiB per 10,000 requests of list.asp:'
for i in $(seq 1 10); do
  python3 "$here/requests.py" "$qport" "/list.asp?page=$i" 10000 8
  printf ' %s' "$(awk '/VmRSS/ {print $2}' "/proc/$qpid/status")"
done
echo

# An export of 100,000 rows written unbuffered: the peak resident size before and after it.
before=$(awk '/VmHWM/ {print $2}' "/proc/$qpid/status")
bytes=$(curl -sf "http://127.0.0.1:$qport/export.asp" | wc -c)
after=$(awk '/VmHWM/ {print $2}' "/proc/$qpid/status")
echo "export.asp, 100,000 rows unbuffered ($bytes bytes): peak resident KiB $before before, $after after"

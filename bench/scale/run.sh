#!/usr/bin/env bash
# Sessions in memory against sessions in Redis, same run: wrk on loopback against the 20-row
# list page of bench/asp/site with its session read and written on every request, one
# `quorvex serve` (2 workers) with each store, Redis from scripts/scale/redis.sh. Each wrk
# connection goes round a pool of 256 sessions made beforehand, so that requests of one
# session seldom wait for each other. Prints requests per second and latency, and, since a
# shared machine's other work moves those, the requests per CPU second of the processes that
# serve them (quorvex, and redis-server for the Redis run); then the ratios. The Redis store
# keeps track of when sessions end only for a Session_OnEnd, so the site runs with Redis once
# as it is and once with a global.asa that has one.
#
#   bench/scale/run.sh BUILD_DIR [seconds per run]
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR [seconds]}
seconds=${2:-10}
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
source "$root/bench/asp/common.sh"
trap '"$root/scripts/scale/redis.sh" stop "$work/redis" || true; cleanup' EXIT

"$root/bench/asp/make_site.sh" "$work/site"
cp -r "$work/site" "$work/site-onend"
printf '<SCRIPT LANGUAGE="VBScript" RUNAT="Server">\nSub Session_OnEnd\nEnd Sub\n</SCRIPT>\n' \
  >"$work/site-onend/global.asa"

redis_port=$("$root/scripts/scale/redis.sh" start "$work/redis")

# A wrk script going round 256 sessions of a server, each thread from its own place.
sessions() {
  local port=$1 file=$2
  {
    echo "local cookies = {"
    for _ in $(seq 1 256); do
      curl -si "http://127.0.0.1:$port/list_session.asp" | tr -d '\r' |
        sed -n 's/^Set-Cookie: \(ASPSESSIONID=[A-Z]*\).*/  "\1",/p'
    done
    cat <<'LUA'
}
local counter = 0
function setup(thread) counter = counter + 1; thread:set("offset", counter * 97) end
local n = 0
function request()
  n = n + 1
  local cookie = cookies[(n + offset) % #cookies + 1]
  return wrk.format("GET", "/list_session.asp?page=" .. (n % 50), { Cookie = cookie })
end
LUA
  } >"$file"
}

# CPU time of processes in clock ticks (user + system).
ticks() {
  local total=0 p
  for p in "$@"; do total=$((total + $(awk '{print $14 + $15}' "/proc/$p/stat"))); done
  echo "$total"
}

# Prints wrk's figures and sets `rps` and `per_cpu` (requests per CPU second of the
# processes given after the script), with each process's CPU time per request.
measure() {
  local label=$1 port=$2 script=$3
  shift 3
  local out p50 p99 requests p split="" total=0
  local -a before=()
  for p in "$@"; do before+=("$(ticks "$p")"); done
  out=$(wrk -t2 -c32 -d"${seconds}s" --latency -s "$script" "http://127.0.0.1:$port/")
  requests=$(awk '/requests in/ {print $1}' <<<"$out")
  local i=0 hz
  hz=$(getconf CLK_TCK)
  for p in "$@"; do
    local used=$(($(ticks "$p") - before[i]))
    total=$((total + used))
    split+=$(awk -v t="$used" -v r="$requests" -v hz="$hz" -v n="$(cat "/proc/$p/comm")" \
      'BEGIN { printf " %s %.0f", n, t * 1e6 / hz / r }')
    i=$((i + 1))
  done
  rps=$(awk '/Requests\/sec/ {print $2}' <<<"$out")
  per_cpu=$(awk -v r="$requests" -v t="$total" -v hz="$hz" 'BEGIN { printf "%.0f", (t > 0) ? r * hz / t : 0 }')
  p50=$(awk '$1 == "50%" {print $2}' <<<"$out")
  p99=$(awk '$1 == "99%" {print $2}' <<<"$out")
  printf '%-40s %8s req/s %6s req/CPU s   p50 %8s   p99 %8s   CPU us/req:%s\n' \
    "$label" "$rps" "$per_cpu" "$p50" "$p99" "$split"
  if grep -q "Non-2xx" <<<"$out"; then echo "  ($(grep Non-2xx <<<"$out" | xargs))"; fi
}

serve "$work/site"
memory_port=$port
memory_pid=${pids[-1]}
serve "$work/site" --state "redis://127.0.0.1:$redis_port"
redis_port_q=$port
redis_pids=("${pids[-1]}" "$(cat "$work/redis/redis.pid")")
serve "$work/site-onend" --state "redis://127.0.0.1:$redis_port"
onend_port=$port
onend_pids=("${pids[-1]}" "$(cat "$work/redis/redis.pid")")
sessions "$memory_port" "$work/memory.lua"
sessions "$redis_port_q" "$work/redis.lua"
sessions "$onend_port" "$work/onend.lua"
[ "$(grep -c ASPSESSIONID "$work/redis.lua")" -eq 256 ] || { echo "sessions were not made" >&2; exit 1; }

ratio() {
  awk -v l="$1" -v m="$memory" -v r="$rps" -v mc="$memory_cpu" -v rc="$per_cpu" \
    'BEGIN { printf "%s / memory: %.0f %% of the requests per second, %.0f %% per CPU second\n", l, 100 * r / m, 100 * rc / mc }'
}
measure "list_session.asp, sessions in memory" "$memory_port" "$work/memory.lua" "$memory_pid"
memory=$rps memory_cpu=$per_cpu
measure "list_session.asp, sessions in Redis" "$redis_port_q" "$work/redis.lua" "${redis_pids[@]}"
ratio "Redis"
measure "the same with a Session_OnEnd" "$onend_port" "$work/onend.lua" "${onend_pids[@]}"
ratio "Redis with Session_OnEnd"

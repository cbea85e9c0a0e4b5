#!/usr/bin/env bash
# Sessions in memory against sessions in Redis, same run: wrk on loopback against the 20-row
# list page of bench/asp/site with its session read and written on every request, one
# `quorvex serve` (2 workers) with each store, Redis from scripts/scale/redis.sh. Each wrk
# connection goes round a pool of 256 sessions made beforehand, so that requests of one
# session seldom wait for each other. The Redis store keeps track of when sessions end only
# for a Session_OnEnd, so the site runs with Redis once as it is and once with a global.asa
# that has one.
#
# A shared machine's other work moves requests per second, so each round also takes the CPU
# time per request of the processes that serve them (quorvex, and redis-server for Redis).
# Rounds alternate the stores; the summary gives the median of each figure and of the ratios,
# with `uptime` before and after, so that runs on a busy machine show as such.
#
#   bench/scale/run.sh BUILD_DIR [seconds per measurement] [rounds]
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR [seconds]}
seconds=${2:-10}
rounds=${3:-3}
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

# Runs wrk for one store and sets `rps` and `cpu_us` (CPU microseconds per request of the
# processes given after the script, together), printing both with each process's share.
measure() {
  local label=$1 port=$2 script=$3
  shift 3
  local out p50 p99 requests p split="" total=0 i=0 hz
  local -a before=()
  hz=$(getconf CLK_TCK)
  for p in "$@"; do before+=("$(ticks "$p")"); done
  out=$(wrk -t2 -c32 -d"${seconds}s" --latency -s "$script" "http://127.0.0.1:$port/")
  requests=$(awk '/requests in/ {print $1}' <<<"$out")
  for p in "$@"; do
    local used=$(($(ticks "$p") - before[i]))
    total=$((total + used))
    split+=$(awk -v t="$used" -v r="$requests" -v hz="$hz" -v n="$(cat "/proc/$p/comm")" \
      'BEGIN { printf " %s %.0f", n, t * 1e6 / hz / r }')
    i=$((i + 1))
  done
  rps=$(awk '/Requests\/sec/ {print $2}' <<<"$out")
  cpu_us=$(awk -v r="$requests" -v t="$total" -v hz="$hz" 'BEGIN { printf "%.0f", t * 1e6 / hz / r }')
  p50=$(awk '$1 == "50%" {print $2}' <<<"$out")
  p99=$(awk '$1 == "99%" {print $2}' <<<"$out")
  printf '  %-24s %8s req/s %5s CPU us/req (%s)   p50 %8s   p99 %8s\n' \
    "$label" "$rps" "$cpu_us" "${split# }" "$p50" "$p99"
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

median() { tr ' ' '\n' | grep . | sort -g | awk '{ v[NR] = $1 } END { print (NR % 2) ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2 }'; }
# Percent of the memory figure: requests per second as they are, CPU time per request inverted.
percent() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.1f", 100 * a / b }'; }

echo "list_session.asp, $rounds rounds of ${seconds} s per store"
echo "before: $(uptime)"
declare -A figures
for round in $(seq 1 "$rounds"); do
  echo "round $round"
  measure "sessions in memory" "$memory_port" "$work/memory.lua" "$memory_pid"
  memory_rps=$rps memory_cpu=$cpu_us
  figures[memory_rps]+=" $rps" figures[memory_cpu]+=" $cpu_us"
  measure "sessions in Redis" "$redis_port_q" "$work/redis.lua" "${redis_pids[@]}"
  figures[redis_rps]+=" $rps" figures[redis_cpu]+=" $cpu_us"
  figures[redis_wall]+=" $(percent "$rps" "$memory_rps")"
  figures[redis_per_cpu]+=" $(percent "$memory_cpu" "$cpu_us")"
  measure "Redis, Session_OnEnd" "$onend_port" "$work/onend.lua" "${onend_pids[@]}"
  figures[onend_rps]+=" $rps" figures[onend_cpu]+=" $cpu_us"
  figures[onend_wall]+=" $(percent "$rps" "$memory_rps")"
  figures[onend_per_cpu]+=" $(percent "$memory_cpu" "$cpu_us")"
done
echo "after: $(uptime)"
echo "medians of $rounds rounds:"
for store in memory redis onend; do
  case $store in
    memory) label="sessions in memory" ;;
    redis) label="sessions in Redis" ;;
    *) label="Redis, Session_OnEnd" ;;
  esac
  printf '  %-24s %8.0f req/s %5.0f CPU us/req' "$label" \
    "$(median <<<"${figures[${store}_rps]}")" "$(median <<<"${figures[${store}_cpu]}")"
  if [ "$store" != memory ]; then
    printf '   %.1f %% of memory per second, %.1f %% per CPU second' \
      "$(median <<<"${figures[${store}_wall]}")" "$(median <<<"${figures[${store}_per_cpu]}")"
  fi
  echo
done

# What the load tests of `quorvex serve` start with, sourced after `build` is set: the
# `quorvex` of that build, a scratch folder removed at the end together with every process
# whose id is in `pids`, `free_port`, and `serve` to start a server and wait until it listens.
quorvex=$(realpath "$build/src/cli/quorvex")
work=$(mktemp -d)
pids=()
cleanup() {
  for p in "${pids[@]}"; do kill "$p" 2>/dev/null || true; done
  rm -rf "$work"
}
trap cleanup EXIT

free_port() { python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'; }

# serve SITE [OPTION...]: `quorvex serve` with 2 workers ($QV_BENCH_WORKERS to change) and no
# access log; sets `port` to where it listens and `pid` to its process (also added to `pids`).
# Its messages go to $work/serveN.log, N counting the servers started so far.
serve() {
  local site=$1
  shift
  log=$work/serve${#pids[@]}.log
  "$quorvex" serve "$site" --port 0 --workers "${QV_BENCH_WORKERS:-2}" --no-access-log "$@" >/dev/null 2>"$log" &
  pid=$!
  pids+=("$pid")
  port=
  for _ in $(seq 1 200); do
    port=$(grep -o "http://127.0.0.1:[0-9]*" "$log" 2>/dev/null | head -n 1 | cut -d: -f3 || true)
    [ -n "$port" ] && return
    sleep 0.05
  done
  echo "quorvex serve did not start: $(cat "$log")" >&2
  exit 1
}

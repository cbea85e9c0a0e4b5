#!/usr/bin/env bash
# A Redis server for the scale-out tests and benchmark: Debian's redis-server on loopback, in a
# scratch folder, without persistence, so that it holds nothing between runs.
#
#   redis.sh start DIR [PORT]   starts it (on a free port unless given) and prints the port
#   redis.sh stop DIR           stops it and waits until it is gone
set -u
cmd=${1:?usage: redis.sh start|stop DIR [PORT]}
dir=${2:?usage: redis.sh start|stop DIR [PORT]}
mkdir -p "$dir"

free_port() {
  python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])'
}

case $cmd in
  start)
    command -v redis-server >/dev/null || { echo "redis.sh: redis-server is not installed" >&2; exit 1; }
    port=${3:-$(free_port)}
    redis-server --port "$port" --bind 127.0.0.1 --save '' --appendonly no --dir "$dir" \
      --daemonize yes --pidfile "$dir/redis.pid" --logfile "$dir/redis.log" >/dev/null \
      || { echo "redis.sh: redis-server did not start, see $dir/redis.log" >&2; exit 1; }
    for _ in $(seq 1 100); do
      redis-cli -p "$port" ping >/dev/null 2>&1 && { echo "$port"; exit 0; }
      sleep 0.05
    done
    echo "redis.sh: redis-server does not answer on port $port, see $dir/redis.log" >&2
    exit 1
    ;;
  stop)
    [ -f "$dir/redis.pid" ] || exit 0
    pid=$(cat "$dir/redis.pid")
    kill "$pid" 2>/dev/null
    for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
    rm -f "$dir/redis.pid"
    ;;
  *)
    echo "usage: redis.sh start|stop DIR [PORT]" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# nginx on loopback as the load balancer in front of several `quorvex serve` processes, for
# the scale-out tests and benchmark: round robin, no sticky sessions, in a scratch folder.
#
#   nginx.sh start DIR PORT...   balances over the quorvex ports given; prints its own port
#   nginx.sh stop DIR            stops it and waits until it is gone
set -u
cmd=${1:?usage: nginx.sh start DIR PORT... | nginx.sh stop DIR}
dir=${2:?usage: nginx.sh start DIR PORT... | nginx.sh stop DIR}
mkdir -p "$dir"

case $cmd in
  start)
    shift 2
    [ $# -gt 0 ] || { echo "nginx.sh: name the ports of the quorvex servers" >&2; exit 2; }
    command -v nginx >/dev/null || { echo "nginx.sh: nginx is not installed" >&2; exit 1; }
    port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
    servers=""
    for p in "$@"; do servers+="    server 127.0.0.1:$p max_fails=0;"$'\n'; done
    cat >"$dir/nginx.conf" <<CONF
worker_processes 1;
pid $dir/nginx.pid;
error_log $dir/error.log;
events { worker_connections 1024; }
http {
  access_log off;
  client_body_temp_path $dir; proxy_temp_path $dir; fastcgi_temp_path $dir;
  uwsgi_temp_path $dir; scgi_temp_path $dir;
  upstream quorvex {
$servers    keepalive 32;
  }
  server {
    listen 127.0.0.1:$port;
    location / {
      proxy_pass http://quorvex;
      proxy_http_version 1.1;
      proxy_set_header Connection "";
      proxy_set_header Host \$host;
      proxy_next_upstream off;
    }
  }
}
CONF
    nginx -c "$dir/nginx.conf" -e "$dir/error.log" 2>"$dir/start.log" \
      || { echo "nginx.sh: nginx did not start: $(cat "$dir/start.log")" >&2; exit 1; }
    for _ in $(seq 1 100); do
      [ -s "$dir/nginx.pid" ] && { echo "$port"; exit 0; }
      sleep 0.05
    done
    echo "nginx.sh: nginx wrote no pid file, see $dir/error.log" >&2
    exit 1
    ;;
  stop)
    [ -f "$dir/nginx.pid" ] || exit 0
    pid=$(cat "$dir/nginx.pid")
    kill -QUIT "$pid" 2>/dev/null
    for _ in $(seq 1 100); do kill -0 "$pid" 2>/dev/null || break; sleep 0.05; done
    kill -0 "$pid" 2>/dev/null && kill "$pid" 2>/dev/null
    rm -f "$dir/nginx.pid"
    ;;
  *)
    echo "usage: nginx.sh start DIR PORT... | nginx.sh stop DIR" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# Stops the test servers that start.sh started and removes their scratch folder.
set -u
DIR=${QV_DB_DIR:-/tmp/quorvex-db}
[ -d "$DIR" ] || exit 0
if [ -f "$DIR/pg/PG_VERSION" ]; then
  if [ "$(id -u)" = 0 ]; then
    runuser -u postgres -- pg_ctl -D "$DIR/pg" -m immediate stop >/dev/null 2>&1
  else
    pg_ctl -D "$DIR/pg" -m immediate stop >/dev/null 2>&1
  fi
fi
if [ -f "$DIR/maria/mysqld.pid" ]; then
  pid=$(cat "$DIR/maria/mysqld.pid")
  kill "$pid" 2>/dev/null
  for _ in $(seq 1 40); do kill -0 "$pid" 2>/dev/null || break; sleep 0.25; done
fi
rm -rf "$DIR"
exit 0

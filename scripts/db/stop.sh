#!/usr/bin/env bash
# Returns the caller's lease on the test servers; when no lease is left, stops the servers that
# start.sh started and removes their scratch folder. Leases older than six hours are taken to
# belong to runs that died, and do not keep the servers up.
set -u
DIR=${QV_DB_DIR:-/tmp/quorvex-db}
[ -d "$DIR" ] || exit 0
rm -f "$DIR/leases/${QV_DB_LEASE:-$(pwd | md5sum | cut -c1-16)}"
find "$DIR/leases" -type f -mmin +360 -delete 2>/dev/null
if [ -n "$(ls -A "$DIR/leases" 2>/dev/null)" ]; then
  exit 0
fi
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

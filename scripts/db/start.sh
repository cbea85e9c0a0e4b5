#!/usr/bin/env bash
# Starts the PostgreSQL and MariaDB servers the `db` tests talk to, on loopback, in one scratch
# folder, each loaded with the test schema, and writes odbc.ini/odbcinst.ini with the DSNs
# "qv_pg" and "qv_maria". Safe to run again: a server that already answers is left running.
# A server that cannot start here is reported and skipped; the script still exits 0 so that
# the tests can skip themselves with a clear message instead of failing.
# Each caller takes a lease (by default one per working folder, so a normal and a sanitizer
# build each hold one); stop.sh stops the servers when the last lease is returned.
set -u

DIR=${QV_DB_DIR:-/tmp/quorvex-db}
PG_PORT=${QV_PG_PORT:-55432}
MARIA_PORT=${QV_MARIA_PORT:-53306}
HERE=$(cd "$(dirname "$0")" && pwd)
ODBC_LIB=/usr/lib/x86_64-linux-gnu/odbc

mkdir -p "$DIR"
chmod 755 "$DIR"
log() { echo "quorvex-db: $*" >&2; }

# PostgreSQL refuses to run as root: use the postgres account when we are root.
pg_run() {
  if [ "$(id -u)" = 0 ]; then
    runuser -u postgres -- "$@"
  else
    "$@"
  fi
}

start_pg() {
  local data=$DIR/pg
  command -v initdb >/dev/null && command -v pg_ctl >/dev/null || { log "PostgreSQL is not installed"; return 1; }
  if [ ! -f "$data/PG_VERSION" ]; then
    rm -rf "$data"
    mkdir -p "$data"
    [ "$(id -u)" = 0 ] && chown postgres "$data"
    # Local socket logins are trusted; TCP logins need a password, so that a wrong one fails.
    pg_run initdb -D "$data" -U postgres --auth-local=trust --auth-host=scram-sha-256 \
      -E UTF8 --locale=C.UTF-8 >"$DIR/pg-init.log" 2>&1 || { log "initdb failed, see $DIR/pg-init.log"; return 1; }
  fi
  if ! pg_run pg_ctl -D "$data" status >/dev/null 2>&1; then
    pg_run pg_ctl -D "$data" -l "$data/server.log" -w -t 15 \
      -o "-p $PG_PORT -k $data -c listen_addresses=127.0.0.1 -c fsync=off" start >/dev/null 2>&1 \
      || { log "PostgreSQL did not start, see $data/server.log"; return 1; }
  fi
  local psql=(pg_run psql -h "$data" -p "$PG_PORT" -U postgres -v ON_ERROR_STOP=1 -q)
  if ! "${psql[@]}" -d qvtest -c 'select 1' >/dev/null 2>&1; then
    "${psql[@]}" -d postgres -c "create role qv login password 'qv'" >/dev/null 2>&1
    "${psql[@]}" -d postgres -c "create database qvtest owner qv" >/dev/null || { log "cannot create qvtest"; return 1; }
    pg_run psql -h "$data" -p "$PG_PORT" -U qv -d qvtest -v ON_ERROR_STOP=1 -q \
      -f "$HERE/test_schema.sql" -f "$HERE/test_schema_pg.sql" >"$DIR/pg-load.log" 2>&1 \
      || { log "loading the test schema into PostgreSQL failed, see $DIR/pg-load.log"; return 1; }
  fi
}

maria_client() { mariadb --no-defaults --socket="$DIR/maria/mysqld.sock" -uroot "$@"; }

start_maria() {
  local data=$DIR/maria
  command -v mariadbd >/dev/null || { log "MariaDB is not installed"; return 1; }
  if [ ! -d "$data/mysql" ]; then
    rm -rf "$data"
    mkdir -p "$data"
    mariadb-install-db --no-defaults --datadir="$data" --user="$(id -un)" \
      --auth-root-authentication-method=socket --skip-test-db >"$DIR/maria-init.log" 2>&1 \
      || { log "mariadb-install-db failed, see $DIR/maria-init.log"; return 1; }
  fi
  if ! maria_client -e 'select 1' >/dev/null 2>&1; then
    mariadbd --no-defaults --datadir="$data" --socket="$data/mysqld.sock" --port="$MARIA_PORT" \
      --bind-address=127.0.0.1 --pid-file="$data/mysqld.pid" --log-error="$data/server.log" \
      --user="$(id -un)" --innodb-flush-log-at-trx-commit=0 --skip-log-bin >/dev/null 2>&1 &
    for _ in $(seq 1 60); do
      maria_client -e 'select 1' >/dev/null 2>&1 && break
      sleep 0.25
    done
    maria_client -e 'select 1' >/dev/null 2>&1 || { log "MariaDB did not start, see $data/server.log"; return 1; }
  fi
  if ! maria_client -e 'use qvtest' >/dev/null 2>&1; then
    maria_client -e "create database qvtest; create user if not exists 'qv'@'127.0.0.1' identified by 'qv';
      create user if not exists 'qv'@'localhost' identified by 'qv';
      grant all on qvtest.* to 'qv'@'127.0.0.1'; grant all on qvtest.* to 'qv'@'localhost';" \
      || { log "cannot create qvtest in MariaDB"; return 1; }
    cat "$HERE/test_schema.sql" "$HERE/test_schema_maria.sql" | maria_client qvtest >"$DIR/maria-load.log" 2>&1 \
      || { log "loading the test schema into MariaDB failed, see $DIR/maria-load.log"; return 1; }
  fi
}

write_odbc_ini() {
  cat >"$DIR/odbcinst.ini.tmp" <<INI
[PostgreSQL Unicode]
Description=PostgreSQL ODBC driver (Unicode)
Driver=$ODBC_LIB/psqlodbcw.so

[MariaDB Unicode]
Description=MariaDB Connector/ODBC (Unicode)
Driver=$ODBC_LIB/libmaodbc.so

[MDBTools]
Description=MDBTools Driver
Driver=$ODBC_LIB/libmdbodbc.so
INI
  cat >"$DIR/odbc.ini.tmp" <<INI
[qv_pg]
Driver=PostgreSQL Unicode
Servername=127.0.0.1
Port=$PG_PORT
Database=qvtest
Username=qv
Password=qv
ConnSettings=
UseDeclareFetch=0

[qv_maria]
Driver=MariaDB Unicode
Server=127.0.0.1
Port=$MARIA_PORT
Database=qvtest
User=qv
Password=qv

[qv_down]
Driver=PostgreSQL Unicode
Servername=127.0.0.1
Port=1
Database=qvtest

[qv_sqlserver]
Driver=PostgreSQL Unicode
Server=sqlhost.example
Database=Shop
Trusted_Connection=Yes

[qv_oracle]
Driver=PostgreSQL Unicode
ServerName=ORCL
Server=oracle.example
INI
  # Renamed into place, so that a run already reading them never sees half a file.
  mv "$DIR/odbcinst.ini.tmp" "$DIR/odbcinst.ini"
  mv "$DIR/odbc.ini.tmp" "$DIR/odbc.ini"
}

mkdir -p "$DIR/leases"
touch "$DIR/leases/${QV_DB_LEASE:-$(pwd | md5sum | cut -c1-16)}"
write_odbc_ini
# The markers tell the tests which servers answer; they change only once the outcome is known.
# Both servers start side by side: each takes a few seconds, mostly waiting.
start_pg &
pg_job=$!
start_maria &
maria_job=$!
if wait "$pg_job"; then touch "$DIR/pg.ok"; else rm -f "$DIR/pg.ok"; log "PostgreSQL tests will be skipped"; fi
if wait "$maria_job"; then touch "$DIR/maria.ok"; else rm -f "$DIR/maria.ok"; log "MariaDB tests will be skipped"; fi
echo "export QV_DB_DIR=$DIR ODBCSYSINI=$DIR ODBCINI=$DIR/odbc.ini"
exit 0

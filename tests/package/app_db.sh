#!/usr/bin/env bash
# Makes the database "qvapp" of the browser suite, fresh, on the PostgreSQL and MariaDB test
# servers that scripts/db/start.sh runs: the suite adds and deletes records, so it works in a
# database of its own and never touches the schema that the other db tests read.
#   app_db.sh pg|maria     prints the ODBC connection string, or nothing when the server is down
set -u
DIR=${QV_DB_DIR:-/tmp/quorvex-db}
PG_PORT=${QV_PG_PORT:-55432}
MARIA_PORT=${QV_MARIA_PORT:-53306}

rows() {
  echo "INSERT INTO genre (genre_id, name) VALUES (1, 'Drama'), (2, 'Comedy'), (3, 'Western');"
  for i in $(seq 1 23); do
    echo "INSERT INTO film (title, genre_id, released, price) VALUES ('Film $(printf %02d "$i")', $((i % 3 + 1)), DATE '19$((50 + i))-0$((i % 9 + 1))-1$((i % 9))', $i.50);"
  done
}

case ${1:-} in
  pg)
    pg() {
      if [ "$(id -u)" = 0 ]; then runuser -u postgres -- "$@"; else "$@"; fi
    }
    psql=(pg psql -h "$DIR/pg" -p "$PG_PORT" -U postgres -v ON_ERROR_STOP=1 -q -o /dev/null)
    "${psql[@]}" -d postgres -c 'select 1' >/dev/null 2>&1 || exit 0
    "${psql[@]}" -d postgres -c "set client_min_messages = warning" -c "drop database if exists qvapp" -c "create database qvapp owner qv" >/dev/null || exit 1
    {
      echo "CREATE TABLE genre (genre_id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL);"
      echo "CREATE TABLE film (film_id SERIAL PRIMARY KEY, title VARCHAR(80) NOT NULL,"
      echo "  genre_id INTEGER REFERENCES genre (genre_id), released DATE, price DECIMAL(8, 2));"
      rows
    } | pg psql -h "$DIR/pg" -p "$PG_PORT" -U qv -d qvapp -v ON_ERROR_STOP=1 -q >/dev/null || exit 1
    echo "Driver=PostgreSQL Unicode;Servername=127.0.0.1;Port=$PG_PORT;Database=qvapp;Username=qv;Password=qv"
    ;;
  maria)
    maria=(mariadb --no-defaults --socket="$DIR/maria/mysqld.sock" -uroot)
    "${maria[@]}" -e 'select 1' >/dev/null 2>&1 || exit 0
    "${maria[@]}" -e "drop database if exists qvapp; create database qvapp character set utf8mb4;
      grant all on qvapp.* to 'qv'@'127.0.0.1'; grant all on qvapp.* to 'qv'@'localhost';" || exit 1
    {
      echo "CREATE TABLE genre (genre_id INTEGER PRIMARY KEY, name VARCHAR(40) NOT NULL);"
      echo "CREATE TABLE film (film_id INTEGER AUTO_INCREMENT PRIMARY KEY, title VARCHAR(80) NOT NULL,"
      echo "  genre_id INTEGER REFERENCES genre (genre_id), released DATE, price DECIMAL(8, 2));"
      rows
    } | "${maria[@]}" qvapp || exit 1
    echo "Driver=MariaDB Unicode;Server=127.0.0.1;Port=$MARIA_PORT;Database=qvapp;User=qv;Password=qv"
    ;;
  *)
    echo "usage: app_db.sh pg|maria" >&2
    exit 2
    ;;
esac

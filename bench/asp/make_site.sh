#!/usr/bin/env bash
# Copies the benchmark site to DEST and gives it its database: a 1,000-row SQLite table.
#
#   bench/asp/make_site.sh DEST
set -euo pipefail
dest=${1:?usage: make_site.sh DEST}
here=$(cd "$(dirname "$0")" && pwd)
cp -r "$here/site" "$dest"
{
  echo "CREATE TABLE product (id INTEGER PRIMARY KEY, name TEXT, price REAL, note TEXT);"
  echo "BEGIN;"
  for i in $(seq 1 1000); do
    echo "INSERT INTO product VALUES ($i, 'Product <$i> & co', $((i * 3)).25, 'Note \"$i\" for the list');"
  done
  echo "COMMIT;"
} | sqlite3 "$dest/products.db"

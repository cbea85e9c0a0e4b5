#!/usr/bin/env bash
# Export of a long list by the default package: a table of 100,000 rows (and one of 10,000, to
# see whether memory grows with the rows), every export format on, served by `quorvex serve`
# with one worker; each format fetched whole with curl. Prints per format the time, the size,
# and the server's peak resident memory (VmHWM) after it, beside the peak after an ordinary
# list page, and the server's CPU time for it. Flat memory shows as the same peak for 10,000
# and 100,000 rows.
#
#   bench/package/export.sh BUILD_DIR [rows]
set -euo pipefail
build=${1:?usage: export.sh BUILD_DIR [rows]}
rows=${2:-100000}
source "$(dirname "$0")/common.sh"

# Orders with a text, a date, a number and a lookup to a small customer table.
table() {
  echo "CREATE TABLE $1 (id INTEGER PRIMARY KEY, customer INTEGER, placed DATE, city TEXT, total REAL, note TEXT);"
  echo "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < $2)"
  echo "INSERT INTO $1 SELECT i, i % 50 + 1, date('2020-01-01', '+' || (i % 1500) || ' days'),"
  echo "  'City ' || (i % 97), round(i * 0.37, 2), 'a note, with \"quotes\" and <tags> ' || i FROM n;"
}
{
  echo "CREATE TABLE customer (id INTEGER PRIMARY KEY, name TEXT);"
  echo "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < 50)"
  echo "INSERT INTO customer SELECT i, 'Customer ' || i FROM n;"
  table orders "$rows"
  table small $((rows / 10))
} | sqlite3 export.db

q new export.qvp --db "sqlite:$work/export.db"
for t in orders small; do
  q set export.qvp --table "$t" TblExportCsv=True TblExportExcel=True TblExportWord=True \
    TblExportXml=True TblExportHtml=True
  q set export.qvp --table "$t" --field city FldList=True
  q set export.qvp --table "$t" --field note FldList=True
  q set export.qvp --table "$t" --field customer FldHtmlTag=SELECT FldTagLnkTbl=customer \
    FldTagLnkFld=id FldTagLnkDisplay=name
done
q generate export.qvp --dest app --refresh-template

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
"$quorvex" serve app --port "$port" --workers 1 --no-access-log 2>serve.log &
server=$!
for _ in $(seq 1 50); do grep -q http:// serve.log && break; sleep 0.1; done
base="http://127.0.0.1:$port"
peak() { awk '/VmHWM/ {printf "%.1f MB", $2 / 1024}' "/proc/$server/status"; }
# The server's CPU time so far, in seconds: other work on a shared machine stretches the wall
# time of an export, not this.
cpu() { awk -v hz="$(getconf CLK_TCK)" '{printf "%.2f", ($14 + $15) / hz}' "/proc/$server/stat"; }

curl -sf "$base/orderslist.asp" >/dev/null
echo "after a list page of 20 rows: peak $(peak)"
for t in small orders; do
  n=$(sqlite3 export.db "SELECT COUNT(*) FROM $t")
  for f in csv excel word xml html; do
    before=$(cpu)
    out=$(curl -s -o body.out -w '%{http_code} %{time_total} %{size_download}' "$base/${t}export.asp?export=$f")
    read -r status secs bytes <<<"$out"
    [ "$status" = 200 ] || { echo "$t $f: HTTP $status: $(tail -n 3 serve.log)"; continue; }
    lines=$(grep -c '' body.out)
    printf '%7d rows %-6s %6.2f s wall %6.2f s CPU %7.1f MB %7d lines   server peak %s\n' "$n" "$f" \
      "$secs" "$(echo "$(cpu) - $before" | bc -l)" "$(echo "$bytes / 1048576" | bc -l)" "$lines" "$(peak)"
  done
done
exit 0

#!/usr/bin/env bash
# The default template package's figures, as a user meets them:
#  1. `quorvex generate` of the Chinook application: a first run (unpack, translate, write) and
#     a second into a new folder with nothing changed (goal: under 1 s);
#  2. a database of 500 tables of 10 columns: pages per second of the second run;
#  3. the list page of Chinook's largest table (PlaylistTrack, 8,715 rows), 20 rows, with every
#     feature on (lookups on both key columns, sorting, quick search, numbered pager, multi-
#     delete, inline edit and delete), served by `quorvex serve` with 2 workers under wrk with
#     32 connections (goal: 1,000 requests per second).
# Wall times wait for other work on a shared machine; the CPU times beside them do not.
#
#   bench/package/run.sh BUILD_DIR [seconds of load]
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR [seconds]}
seconds=${2:-10}
here=$(cd "$(dirname "$0")" && pwd)
shared=${QV_SHARED_DATA:-$here/../../../shared/data}
chinook=$(realpath "$shared/sqlite/chinook.sqlite")
source "$here/common.sh"

# `timed LABEL COMMAND...`: runs it once and prints wall and CPU seconds.
timed() {
  local label=$1
  shift
  /usr/bin/time -f '%e %U %S' -o time.txt "$@" >/dev/null
  read -r wall user sys <time.txt
  printf '%-44s %6.2f s wall, %6.2f s CPU\n' "$label" "$wall" "$(echo "$user + $sys" | bc -l)"
}

q new chinook.qvp --db "sqlite:$chinook"
t=(set chinook.qvp --table PlaylistTrack)
q "${t[@]}" TblMultiDelete=True TblInlineEdit=True TblInlineDelete=True TblPagerStyle=1 TblRecPerPage=20
q "${t[@]}" --field PlaylistId FldHtmlTag=SELECT FldTagLnkTbl=Playlist FldTagLnkFld=PlaylistId \
  FldTagLnkDisplay=Name FldBasicSearch=True
q "${t[@]}" --field TrackId FldHtmlTag=SELECT FldTagLnkTbl=Track FldTagLnkFld=TrackId \
  FldTagLnkDisplay=Name FldBasicSearch=True
timed "generate Chinook, first run" "$quorvex" --quiet generate chinook.qvp --dest app --refresh-template
timed "generate Chinook, scripts stored" "$quorvex" --quiet generate chinook.qvp --dest app2
echo "Chinook: $(find app2 -name '*.asp' | wc -l) pages"

{
  for ((i = 1; i <= 500; i++)); do
    echo "CREATE TABLE t$i (id INTEGER PRIMARY KEY, name TEXT NOT NULL, price REAL, born DATE,"
    echo "  note TEXT, qty INTEGER, code TEXT, flag BOOLEAN, city TEXT, zip TEXT);"
  done
} | sqlite3 wide.db
q new wide.qvp --db "sqlite:$work/wide.db"
q generate wide.qvp --dest wide1 --refresh-template
/usr/bin/time -f '%e %U %S' -o time.txt "$quorvex" --quiet generate wide.qvp --dest wide2 >/dev/null
read -r wall user sys <time.txt
pages=$(find wide2 -name '*.asp' | wc -l)
cpu=$(echo "$user + $sys" | bc -l)
printf '500 tables: %d pages in %.2f s wall (%d pages/s), %.2f s CPU (%d pages per CPU second)\n' \
  "$pages" "$wall" "$(echo "$pages / $wall" | bc)" "$cpu" "$(echo "$pages / $cpu" | bc)"

port=$(python3 -c 'import socket; s=socket.socket(); s.bind(("127.0.0.1",0)); print(s.getsockname()[1])')
"$quorvex" serve app --port "$port" --workers 2 --no-access-log 2>serve.log &
server=$!
for _ in $(seq 1 50); do grep -q http:// serve.log && break; sleep 0.1; done
url="http://127.0.0.1:$port/PlaylistTracklist.asp?start=121&order=x_TrackId&dir=ASC"
rows=$(curl -sf "$url" | grep -c 'name="key"' || true)
[ "$rows" -ge 20 ] || { echo "the list page shows $rows rows: $(tail -n 2 serve.log)"; exit 1; }
out=$(wrk -t2 -c32 -d"${seconds}s" --latency "$url")
printf 'PlaylistTrack list, 20 rows, 2 workers, 32 connections: %s req/s, p50 %s, p99 %s\n' \
  "$(awk '/Requests\/sec/ {print $2}' <<<"$out")" "$(awk '$1 == "50%" {print $2}' <<<"$out")" \
  "$(awk '$1 == "99%" {print $2}' <<<"$out")"
grep -q 'Non-2xx' <<<"$out" && echo "failed responses: $(grep 'Non-2xx' <<<"$out")"
# The server's own CPU time per request, which other work on the machine does not inflate:
# 2 workers can at best serve 2 / that many requests a second.
cpu_ticks() { awk '{print $14 + $15}' "/proc/$server/stat"; }
before=$(cpu_ticks)
wrk -t1 -c2 -d"${seconds}s" "$url" >wrk.txt
after=$(cpu_ticks)
done_requests=$(awk '/requests in/ {print $1}' wrk.txt)
ticks=$(getconf CLK_TCK)
ms=$(echo "($after - $before) * 1000 / $ticks / $done_requests" | bc -l)
printf 'server CPU per request: %.2f ms (at most %d req/s on 2 cores)\n' "$ms" "$(echo "2000 / $ms" | bc)"
exit 0

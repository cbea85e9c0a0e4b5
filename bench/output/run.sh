#!/usr/bin/env bash
# Page output speed: `quorvex generate` of 500 tables x 10 table controls (templates of about
# 20 KB of page text with a few hundred tags each), once the scripts are stored, against
# `cp -r` of the same tree in the same run. Prints pages per second, peak memory and the ratio.
set -euo pipefail
build=${1:?usage: run.sh BUILD_DIR}
quorvex=$(realpath "$build/src/cli/quorvex")
work=$(mktemp -d)
[ -n "${KEEP:-}" ] && echo "work: $work" || trap 'rm -rf "$work"' EXIT
cd "$work"
export HOME="$work/home" XDG_CONFIG_HOME=
mkdir -p home pkg

tables=${TABLES:-500}
{
  for ((t = 1; t <= tables; t++)); do
    echo "CREATE TABLE t$t (id INTEGER PRIMARY KEY, name TEXT, price REAL, born DATE,"
    echo "  note TEXT, qty INTEGER, code TEXT, flag BOOLEAN, city TEXT, zip TEXT);"
  done
} | sqlite3 bench.db

# One template of about 20 KB: page text with a tag every ~60 characters and a loop over fields.
python3 - <<'PY'
line = '<tr><td class="c"><!--##=TABLE.TblCaption##--></td><td>text text text</td></tr>\n'
body = line * 230
loop = '<!--## For Each f In TABLE.Fields ##--><th><!--##=f.FldCaption##--></th><!--## Next ##-->\n'
page = '<html><head><title><!--##=TABLE.TblName##--></title></head><body>\n' + loop + body + '</body></html>\n'
controls = ''.join(
    f' <control id="p{i}" type="table" ifiles="page.htm" ofile="p{i}" oext="*"/>\n' for i in range(10))
open('pkg/page.htm', 'w').write(page)
open('pkg/control.xml', 'w').write(
    '<QuorvexControl date="d" version="5.3" desc="bench" author="bench">\n' + controls +
    ' <control id="s" type="report" ifiles="s.htm" ofile="s" oext="*"><session type="key" value="k"/></control>\n'
    '</QuorvexControl>\n')
open('pkg/s.htm', 'w').write('<!--##session k##-->k<!--##/session##-->')
PY
(cd pkg && zip -qr ../pkg.zip .)
"$quorvex" --quiet new bench.qvp --db "sqlite:$work/bench.db" >/dev/null
"$quorvex" --quiet set bench.qvp OtherGen=False >/dev/null
# The first run translates and stores the scripts; the measured run only writes pages.
"$quorvex" --quiet generate bench.qvp --dest out1 --template pkg.zip --refresh-template >/dev/null
/usr/bin/time -f '%e %M %U %S' -o gen.time "$quorvex" --quiet generate bench.qvp --dest out2 \
  --template pkg.zip >gen.out
pages=$(find out2 -type f | wc -l)
read -r gen_s gen_kb gen_user gen_sys <gen.time
gen_cpu=$(echo "$gen_user + $gen_sys" | bc -l)
start=$(date +%s.%N)
cp -r out2 copy
end=$(date +%s.%N)
cp_s=$(echo "$end - $start" | bc -l)
echo "pages: $pages, size: $(du -sh out2 | cut -f1)"
echo "generate: ${gen_s} s, $(echo "$pages / $gen_s" | bc) pages/s, peak memory $((gen_kb / 1024)) MB"
# On a shared machine the wall time waits for other work; the CPU time is what one core spends.
echo "generate CPU: ${gen_cpu} s, $(echo "$pages / $gen_cpu" | bc) pages per CPU second"
# The system part is mostly the file system making 5,000 inodes, which cp -r pays as well; on
# a disk busy with deletions it swings by seconds between runs.
echo "generate CPU: user ${gen_user} s, system ${gen_sys} s"
echo "cp -r: $(printf '%.3f' "$cp_s") s, generate/cp ratio $(echo "$gen_s / $cp_s" | bc -l | xargs printf '%.1f')"

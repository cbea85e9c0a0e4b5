#!/usr/bin/env bash
# One entry point for newcomers and CI: installs what is missing, builds, and runs a job.
#
#   ./quorvex.sh build   configure and build (incremental)
#   ./quorvex.sh test    build, then run every test: the normal build and the sanitizer build
#   ./quorvex.sh demo    build the programs, then generate the sample shop's application and serve it
#   ./quorvex.sh bench   build, then run the benchmarks
#   ./quorvex.sh fuzz [seconds]   build the libFuzzer targets with clang and run each briefly
set -euo pipefail
cd "$(dirname "$0")"
ROOT=$(pwd)

# Debian packages the build, the tests and the benchmarks need. A library the build needs goes
# into DEMO_PACKAGES too.
PACKAGES=(
  cmake ninja-build g++ clang clang-format pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev
  libxml2-dev libzip-dev libsqlite3-dev sqlite3 unixodbc unixodbc-dev libpcre2-dev
  mdbtools mdbtools-dev odbc-mdbtools
  postgresql odbc-postgresql mariadb-server odbc-mariadb
  lua5.4
  libmicrohttpd-dev chromium wrk nginx-light curl lld
  libhiredis-dev redis-server
  libicu-dev libsodium-dev
)
# The demo's share: what configuring and building the programs need (the test and benchmark
# libraries too, since configuring looks for them), sqlite3 for the sample and curl for the
# check. No servers and no browser: on a fresh machine they would be most of the download.
DEMO_PACKAGES=(
  cmake ninja-build g++ pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev libcli11-dev
  libxml2-dev libzip-dev libsqlite3-dev sqlite3 unixodbc unixodbc-dev libpcre2-dev
  mdbtools mdbtools-dev libmicrohttpd-dev libhiredis-dev libicu-dev libsodium-dev curl
)

log() { printf '\033[1m== %s\033[0m\n' "$*" >&2; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

# ensure_packages [NAME...]: installs those of the packages (default: all of PACKAGES) that
# are missing.
ensure_packages() {
  local missing=() wanted=("$@")
  [ ${#wanted[@]} -eq 0 ] && wanted=("${PACKAGES[@]}")
  for p in "${wanted[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  log "installing: ${missing[*]}"
  as_root apt-get update -qq
  # Server packages must not try to start services during installation (no init system in CI).
  as_root env DEBIAN_FRONTEND=noninteractive RUNLEVEL=1 \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# puppeteer-core for the browser tests, into the project (never globally; it downloads no
# browser: the tests use Debian's chromium).
ensure_node_modules() {
  local dir="$ROOT/tests/asp/browser"
  [ -d "$dir/node_modules/puppeteer-core" ] && return 0
  command -v npm >/dev/null || { log "npm is missing: the browser tests will fail"; return 0; }
  log "installing puppeteer-core for the browser tests"
  (cd "$dir" && npm ci --no-audit --no-fund --loglevel=error >/dev/null)
}

configure() {
  local preset=$1 dir=$2
  if [ ! -f "$dir/build.ninja" ]; then
    cmake --preset "$preset" >/dev/null
  fi
}

build() {
  local preset=${1:-default} dir=build
  [ "$preset" = asan ] && dir=build-asan
  [ "$preset" = fuzz ] && dir=build-fuzz
  configure "$preset" "$dir"
  log "building ($preset)"
  cmake --build --preset "$preset"
}

# The programs and their data folder only: the demo runs nothing else, and the test suites are
# most of the compiling on a fresh machine.
build_programs() {
  configure default build
  log "building the programs"
  cmake --build --preset default --target programs
}

run_tests() {
  local preset=$1
  log "testing ($preset)"
  ctest --preset "$preset"
}

cmd=${1:-help}
shift || true
case "$cmd" in
  build)
    ensure_packages
    build default
    ;;
  test)
    ensure_packages
    ensure_node_modules
    build default
    run_tests default
    build asan
    run_tests asan
    ;;
  demo)
    ensure_packages "${DEMO_PACKAGES[@]}"
    build_programs
    exec "$ROOT/examples/demo.sh" "$ROOT/build"
    ;;
  bench)
    ensure_packages
    build default
    exec "$ROOT/bench/run.sh" "$ROOT/build" "$@"
    ;;
  fuzz)
    ensure_packages
    build fuzz
    seconds=${1:-60}
    # Every target of fuzz/ lands in build-fuzz/fuzz/ (fuzz/CMakeLists.txt), so new ones join here.
    for f in "$ROOT"/build-fuzz/fuzz/fuzz_*; do
      [ -f "$f" ] && [ -x "$f" ] || continue
      name=$(basename "$f")
      mkdir -p "$ROOT/build-fuzz/corpus/$name"
      seeds=()
      [ -d "$ROOT/fuzz/seeds/${name#fuzz_}" ] && seeds+=("$ROOT/fuzz/seeds/${name#fuzz_}")
      # The conformance scripts are the best seeds of the script front end; no need to copy them.
      [ "$name" = fuzz_vbscript ] && seeds+=("$ROOT/tests/vbscript/conformance")
      log "fuzzing $name for ${seconds}s"
      "$f" -max_total_time="$seconds" -timeout=10 "$ROOT/build-fuzz/corpus/$name" \
        "${seeds[@]}" 2>&1 | tail -n 3
    done
    ;;
  help | -h | --help)
    sed -n '2,/^[^#]/s/^# \{0,1\}//p' "$0"
    ;;
  *)
    echo "unknown command: $cmd (try: $0 help)" >&2
    exit 2
    ;;
esac

# What every benchmark of the default package starts with, sourced after `build` is set: the
# `quorvex` of that build, a scratch folder with its own settings store (removed at the end,
# with the server in $server if one was started), and `q` for a quiet command.
quorvex=$(realpath "$build/src/cli/quorvex")
work=$(mktemp -d)
server=
cleanup() {
  [ -n "$server" ] && kill "$server" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
cd "$work"
export HOME="$work/home" XDG_CONFIG_HOME=
mkdir -p home
q() { "$quorvex" --quiet "$@" >/dev/null; }

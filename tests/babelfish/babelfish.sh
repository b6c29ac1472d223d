#!/usr/bin/env bash
# The real T-SQL engine for the suites and for make run-sqlserver: Babelfish for PostgreSQL from
# the shared bundle, on free ports of 127.0.0.1.
#
#   babelfish.sh start STATE BUNDLE QIVO_TSQL [SCRIPT... | --sqlite FILE]
#       checks the bundle's sha256, unpacks it into STATE once, starts a fresh server, creates the
#       estate database and fills it (the suites' seed, or every row of an embedded database);
#       STATE/server then holds the TDS port, login, password and the server's home (STATE, or
#       a folder of /var/tmp when the server's own user cannot reach STATE)
#   babelfish.sh restart STATE    stops the server and starts it again on the same port
#   babelfish.sh stop STATE       stops it (nothing to do when it is not running)
set -euo pipefail
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
RUNTIME_PACKAGES="libicu72 libxml2 libssl3 libuuid1 zlib1g libstdc++6"
LOGIN=qivo
PASSWORD=qivo-Test-1
export BABELFISH_LOGIN=$LOGIN BABELFISH_PASSWORD=$PASSWORD BABELFISH_COLLATION=chinese_prc_ci_as

die() { echo "babelfish: $*" >&2; exit 1; }
port_in_use() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }

# Unpacks the bundle into STATE/bundle unless the same archive is already there.
unpack() {
  local state=$1 tar=$2
  [ -f "$tar" ] || die "the Babelfish bundle $tar is missing: the SQL Server suites cannot run without it"
  [ -f "$tar.sha256" ] || die "$tar.sha256 is missing"
  local sum
  sum=$(cut -d' ' -f1 "$tar.sha256")
  if [ "$sum" != "$(cat "$state/bundle.sha256" 2>/dev/null)" ]; then
    [ "$(sha256sum "$tar" | cut -d' ' -f1)" = "$sum" ] || die "$tar does not match its sha256"
    rm -rf "$state/bundle" && mkdir -p "$state/bundle"
    tar -C "$state/bundle" --strip-components=1 -xJf "$tar"
    echo "$sum" > "$state/bundle.sha256"
  fi
}

install_runtime() {
  local missing="" p
  for p in $RUNTIME_PACKAGES; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'ok installed' || missing="$missing $p"
  done
  [ -z "$missing" ] && return 0
  [ "$(id -u)" = 0 ] || die "missing packages:$missing (sudo apt-get install -y$missing)"
  apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq $missing >/dev/null
}

# A port P with P and P+1 free (TDS and the PostgreSQL protocol).
free_port() {
  local port
  for _ in $(seq 1 200); do
    port=$((20000 + RANDOM % 20000))
    if ! port_in_use "$port" && ! port_in_use $((port + 1)); then
      echo "$port"; return 0
    fi
  done
  die "no free port pair on 127.0.0.1"
}

# Where the bundle and the data go: STATE itself, unless root runs the server as "babelfish" and
# that user cannot reach STATE (a build under a private home folder); then a folder of /var/tmp
# named after STATE.
server_home() {
  local state=$1 dir
  if [ "$(id -u)" = 0 ]; then
    dir=$(dirname "$state")
    while [ "$dir" != / ]; do
      if [ $(( 0$(stat -c %a "$dir") & 1 )) -eq 0 ]; then
        echo "/var/tmp/qivo-babelfish-$(printf '%s' "$state" | sha256sum | cut -c1-12)"; return
      fi
      dir=$(dirname "$dir")
    done
  fi
  echo "$state"
}

# The home of the server STATE describes; STATE itself when it names none.
home_of() {
  local home
  home=$(sed -n 's/^home=//p' "$1/server" 2>/dev/null)
  echo "${home:-$1}"
}

stop_server() {
  local home=$1
  if [ -f "$home/data/postmaster.pid" ]; then
    "$home/bundle/stop.sh" "$home/data" >/dev/null
  fi
}

start() {
  local state=$1 tar=$2 tsql=$3
  shift 3
  mkdir -p "$state"
  state=$(cd "$state" && pwd)
  stop_server "$(home_of "$state")" 2>/dev/null || true
  local home
  home=$(server_home "$state")
  rm -rf "$home/data" "$state/server"
  mkdir -p "$home"
  unpack "$home" "$tar"
  install_runtime
  # The server's own user (root runs it as "babelfish") needs to reach the bundle and the data.
  chmod 755 "$home"
  local port
  port=$(free_port)
  "$home/bundle/start.sh" "$home/data" "$port" >/dev/null
  printf 'port=%s\nlogin=%s\npassword=%s\nhome=%s\n' "$port" "$LOGIN" "$PASSWORD" "$home" \
    > "$state/server"
  "$tsql" "$port" "$LOGIN" "$PASSWORD" master "$HERE/estate_schema.sql"
  if [ $# -gt 0 ]; then
    "$tsql" "$port" "$LOGIN" "$PASSWORD" estate "$@"
  fi
  echo "Babelfish on 127.0.0.1,$port: database estate, login $LOGIN (server in $home)"
}

case "${1:-}" in
  start) [ $# -ge 4 ] || die "usage: $0 start STATE BUNDLE QIVO_TSQL [SCRIPT...]"; shift; start "$@" ;;
  restart)
    [ -f "$2/server" ] || die "no server in $2"
    home=$(home_of "$2")
    stop_server "$home"
    "$home/bundle/start.sh" "$home/data" "$(sed -n 's/^port=//p' "$2/server")" >/dev/null ;;
  stop) [ $# -eq 2 ] || die "usage: $0 stop STATE"; stop_server "$(home_of "$2")" ;;
  *) die "usage: $0 start|restart|stop STATE ..." ;;
esac

#!/usr/bin/env bash
# The real T-SQL engine for the suites and for make run-sqlserver: Babelfish for PostgreSQL from
# the shared bundle, on free ports of 127.0.0.1.
#
#   babelfish.sh start STATE BUNDLE QIVO_TSQL [SCRIPT... | --sqlite FILE]
#       checks the bundle's sha256, unpacks it into STATE once, starts a fresh server, creates the
#       estate database and fills it (the suites' seed, or every row of an embedded database);
#       STATE/server then holds the TDS port, login and password
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

stop_server() {
  local state=$1
  if [ -f "$state/data/postmaster.pid" ]; then
    "$state/bundle/stop.sh" "$state/data" >/dev/null
  fi
}

start() {
  local state=$1 tar=$2 tsql=$3
  shift 3
  mkdir -p "$state"
  state=$(cd "$state" && pwd)
  stop_server "$state" 2>/dev/null || true
  rm -rf "$state/data" "$state/server"
  unpack "$state" "$tar"
  install_runtime
  # The server's own user (root runs it as "babelfish") needs to reach the bundle and the data.
  chmod 755 "$state"
  local port
  port=$(free_port)
  "$state/bundle/start.sh" "$state/data" "$port" >/dev/null
  printf 'port=%s\nlogin=%s\npassword=%s\n' "$port" "$LOGIN" "$PASSWORD" > "$state/server"
  "$tsql" "$port" "$LOGIN" "$PASSWORD" master "$HERE/estate_schema.sql"
  if [ $# -gt 0 ]; then
    "$tsql" "$port" "$LOGIN" "$PASSWORD" estate "$@"
  fi
  echo "Babelfish on 127.0.0.1,$port: database estate, login $LOGIN"
}

case "${1:-}" in
  start) [ $# -ge 4 ] || die "usage: $0 start STATE BUNDLE QIVO_TSQL [SCRIPT...]"; shift; start "$@" ;;
  restart)
    [ -f "$2/server" ] || die "no server in $2"
    stop_server "$2"
    "$2/bundle/start.sh" "$2/data" "$(sed -n 's/^port=//p' "$2/server")" >/dev/null ;;
  stop) [ $# -eq 2 ] || die "usage: $0 stop STATE"; stop_server "$2" ;;
  *) die "usage: $0 start|restart|stop STATE ..." ;;
esac

#!/usr/bin/env bash
# Runs a test suite of the Windows build under Wine, for ctest:
#   wine-run.sh PREFIX SUITE.exe [ARGS...]
# in the Wine prefix PREFIX, offscreen, within $QIVO_SUITE_SECONDS (280) seconds, its QtTest
# report on standard output. Wine hands a program no host variable starting with QT_, so each one
# goes in as WINEQT_…, which Wine passes on without the WINE.
set -u
export WINEPREFIX=$1 WINEDEBUG=${WINEDEBUG:--all} WINEDLLOVERRIDES="mscoree,mshtml="
program=$2
shift 2
while IFS='=' read -r name value; do
  export "WINE$name=$value"
done < <(env | grep -E '^QT_[A-Za-z_]+=')
export WINEQT_FORCE_STDERR_LOGGING=1
# Offscreen, Qt for Windows looks for fonts beside itself and finds none: the host's CJK fonts
# serve, so that text measures as on a workstation.
export WINEQT_QPA_FONTDIR=${WINEQT_QPA_FONTDIR:-Z:/usr/share/fonts/opentype/noto}
# With no console QtTest writes to the debugger; a report file is read back instead.
report=$(mktemp)
trap 'rm -f "$report"' EXIT
env -u DISPLAY timeout -k 10 "${QIVO_SUITE_SECONDS:-280}" wine "$program" "$@" -o "Z:$report,txt"
status=$?
tr -d '\r' < "$report"
[ "$status" -eq 124 ] && echo "wine-run: $(basename "$program") did not end within ${QIVO_SUITE_SECONDS:-280} s"
exit "$status"

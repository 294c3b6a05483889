#!/usr/bin/env bash
# Runs a Windows program of a build folder under that folder's Wine prefix.
# Usage: wine-run.sh BUILD_DIR PROGRAM [ARGS...]
# Wine's own stderr goes to a file and is printed after wine returns: the
# wineserver keeps an inherited pipe open for seconds after the last process
# ends, and CTest would wait for it.
set -u
build=$1; shift
here=$(dirname "$0")
"$here/wine-prefix.sh" "$build" || exit 1
export WINEPREFIX="$(cd "$build" && pwd)/wineprefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
err=$(mktemp)
wine "$@" 2>"$err"
rc=$?
cat "$err" >&2
rm -f "$err"
exit $rc

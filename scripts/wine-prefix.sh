#!/usr/bin/env bash
# Makes the private Wine prefix of one build folder, once, under a lock:
# null graphics driver (message boxes become real but invisible windows that
# tests can read and close), no crash dialog, Windows 10.
# Usage: wine-prefix.sh BUILD_DIR
set -eu
build=$(cd "$1" && pwd)
prefix="$build/wineprefix"
export WINEPREFIX="$prefix" WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
[ -f "$prefix/.tovarin-ready" ] && exit 0
exec 9>"$build/.wineprefix.lock"
flock 9
[ -f "$prefix/.tovarin-ready" ] && exit 0
rm -rf "$prefix"
log="$build/wineprefix.log"
{
  wineboot -i
  wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
  wine reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f
  wine winecfg -v win10
  wineserver -w
} >"$log" 2>&1 || { cat "$log" >&2; exit 1; }
touch "$prefix/.tovarin-ready"

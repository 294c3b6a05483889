#!/usr/bin/env bash
# Installs what the build needs on Debian 12 when it is missing; with "clang", the second compiler too.
# Usage: install-deps.sh [clang]
set -eu
need=()
command -v x86_64-w64-mingw32-g++-posix >/dev/null || need+=(g++-mingw-w64-x86-64-posix)
command -v wine >/dev/null || need+=(wine)
dpkg -s wine64 >/dev/null 2>&1 || need+=(wine64)
command -v cmake >/dev/null || need+=(cmake)
[ -f /usr/src/googletest/CMakeLists.txt ] || need+=(googletest)
command -v make >/dev/null || need+=(make)
command -v zip >/dev/null || need+=(zip)
command -v python3 >/dev/null || need+=(python3)
command -v clang-format >/dev/null || need+=(clang-format)
# The second compiler: clang and lld 14, with LLVM's resource compiler and archiver.
if [ "${1:-}" = clang ]; then
  command -v clang++-14 >/dev/null || command -v clang++ >/dev/null || need+=(clang)
  command -v ld.lld >/dev/null || need+=(lld)
  command -v llvm-windres-14 >/dev/null || command -v llvm-windres >/dev/null || need+=(llvm)
fi
[ ${#need[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo=sudo
echo "Installing: ${need[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${need[@]}" >/dev/null

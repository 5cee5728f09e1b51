#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: the whole suite on the release build, then the
# tests that need no screen once more under the address and undefined-behaviour sanitizers.
# Option: --quick   the release build's tests only
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh

case "${1:-}" in
"" | --quick) ;;
*) sed -n '2,4s/^# //p' "$0"; exit 2 ;;
esac

ensure_packages "${build_packages[@]}" "${screen_packages[@]}"

build_preset release
ctest --test-dir build/release --output-on-failure --no-tests=error -j2

[ "${1:-}" != --quick ] || exit 0
build_preset asan
ctest --test-dir build/asan --output-on-failure --no-tests=error -j2

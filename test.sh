#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test: those that use the real executable on a virtual screen
# on the release build, all the others under the address and undefined-behaviour sanitizers. Compiles the sources that
# only Windows builds, where the cross compiler is.
# Option: --release   the others on the release build too
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh

case "${1:-}" in
"" | --release) ;;
*) sed -n '2,5s/^# //p' "$0"; exit 2 ;;
esac

ensure_packages "${build_packages[@]}" "${screen_packages[@]}"

jobs=$(($(nproc) * 2)) # most of their time the tests wait
run_tests() { ctest --test-dir "build/$1" --output-on-failure --no-tests=error -j"$jobs" "${@:2}"; }

tools/windows/check-sources.sh
build_preset asan
run_tests asan
if [ "${1:-}" = --release ]; then
    build_preset release
    run_tests release -LE e2e
else
    build_preset release OvrynDeck2 ovryn_simulated_driver e2e_tests benchmarks
fi
run_tests release -L e2e

#!/usr/bin/env bash
# Builds the programs with worker threads under the thread sanitizer and runs their tests: one report fails a test.
# Options are passed to ctest, for example: -R monitor, --repeat until-fail:10
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/packages.sh

ensure_packages "${build_packages[@]}"
build_preset tsan thread_tests
exec ctest --test-dir build/tsan -L '^thread$' --output-on-failure --no-tests=error "$@"

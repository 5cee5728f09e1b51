#!/usr/bin/env bash
# Compiles every source that only Windows builds, where the cross compiler and the toolkit of build.sh are there, and
# says so where they are not; called by test.sh of the root folder.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

if ! command -v "$triplet-g++-posix" >/dev/null || [ ! -e "$toolkit/.copy_json" ]; then
    echo "The Windows sources are not compiled: no cross compiler, or no toolkit in $cache (tools/windows/build.sh)."
    exit 0
fi
if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset windows >/dev/null
cmake --build build/windows --target ovryn_platform ovryn_process_entry ovryn_device ovryn_guard TestShippedProgram \
    TestInstaller

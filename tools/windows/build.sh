#!/usr/bin/env bash
# One command on Debian 12: installs the cross compiler, builds the toolkit once into a cache folder, then the program
# for Windows: the folder build/windows/OvrynDeck2 and its installer, the simulated driver nvapi.dll and card-front.exe
# beside it. The cache is OVRYN_WINDOWS_CACHE, or ovryndeck-windows below the user's cache folder.
# Option: --tests   builds the test programs too, for test.sh
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

tests=OFF
case "${1:-}" in
"") ;;
--tests) tests=ON ;;
*) sed -n '2,5s/^# //p' "$0"; exit 2 ;;
esac

ensure_packages "${cross_packages[@]}"
tools/windows/toolkit.sh

if command -v ccache >/dev/null; then
    export CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake --preset windows -DOVRYN_BUILD_TESTS=$tests >/dev/null
if [ $tests = ON ]; then
    cmake --build build/windows
else
    cmake --build build/windows --target OvrynDeck2 ovryn_simulated_driver card-front
fi
tools/windows/folder.sh
tools/windows/installer.sh

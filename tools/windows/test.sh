#!/usr/bin/env bash
# One command on Debian 12: builds for Windows with all test programs (build.sh), makes a root folder with 32-bit Wine
# in the cache folder once (wine-root.sh), and runs every test under it. As root or through sudo.
# Options: --no-build        with what has been built
#          --only REGEX      only the test programs of these names
# Failures that Wine is the reason of stand in wine-differences.txt; any other makes the command fail.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

build=true
only=.
while [ $# -gt 0 ]; do
    case "$1" in
    --no-build) build=false; shift ;;
    --only) only=$2; shift 2 ;;
    *) sed -n '2,6s/^# //p' "$0"; exit 2 ;;
    esac
done

if $build; then
    tools/windows/build.sh --tests
fi
tools/windows/wine-root.sh
mkdir -p build/windows/wine

# An older version, with a file that the newer one has no more.
older=build/windows/wine/older
if [ ! -e "$older-setup.exe" ] || [ build/windows/OvrynDeck2 -nt "$older-setup.exe" ]; then
    rm -rf "$older"
    cp -r build/windows/OvrynDeck2 "$older"
    echo "no library" >"$older/no-longer-shipped.dll"
    tools/windows/installer.sh --version 1.0.0.0 --folder "$older" --output "$older-setup.exe"
fi

in_wine_root "$PWD/tools/windows/under-wine.sh" "$PWD" "$toolkit" \
    ctest --test-dir "$PWD/build/windows" -j"$(nproc)" -R "$only" --no-tests=error \
    >build/windows/wine/ctest.log 2>&1 || true # judged below
cp build/windows/Testing/Temporary/LastTest.log build/windows/wine/tests.log
tools/windows/judge.py build/windows/wine/ctest.log build/windows/wine/tests.log tools/windows/wine-differences.txt

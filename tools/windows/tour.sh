#!/usr/bin/env bash
# Visits the pages of the program in build/windows/OvrynDeck2 under Wine, by mouse, and leaves pictures of them in
# build/windows/screenshots. After build.sh; as root or through sudo.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

tools/windows/wine-root.sh
mkdir -p build/windows/screenshots
in_wine_root "$PWD/tools/windows/under-wine.sh" "$PWD" "$toolkit" \
    tools/tour.sh build/windows/OvrynDeck2/OvrynDeck2.exe build/windows/screenshots

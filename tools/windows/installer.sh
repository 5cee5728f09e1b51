#!/usr/bin/env bash
# Makes build/windows/OvrynDeck2-VERSION-setup.exe of the folder build/windows/OvrynDeck2; called by build.sh.
# Options, for the tests: --version A.B.C.D, --folder FOLDER and --output FILE
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

version=$(sed -n 's/^project(OvrynDeck2 VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
folder=$PWD/build/windows/OvrynDeck2
output=""
while [ $# -gt 0 ]; do
    case "$1" in
    --version) version=$2; shift 2 ;;
    --folder) folder=$(realpath "$2"); shift 2 ;;
    --output) output=$2; shift 2 ;;
    *) sed -n '2,3s/^# //p' "$0"; exit 2 ;;
    esac
done
output=${output:-build/windows/OvrynDeck2-$version-setup.exe}
ensure_packages nsis

# What the uninstaller deletes: files first, then the folders that they leave empty, the innermost first.
list=$PWD/build/windows/installed-files.nsh
{
    (cd "$folder" && find . -type f -printf '%P\n') | sort | sed 's|/|\\|g; s|.*|Delete "$INSTDIR\\&"|'
    (cd "$folder" && find . -mindepth 1 -depth -type d -printf '%P\n') | sed 's|/|\\|g; s|.*|RMDir "$INSTDIR\\&"|'
} >"$list"

makensis -V2 -WX -DTREE="$PWD" -DFOLDER="$folder" -DFILE_LIST="$list" -DVERSION="$version" \
    -DOUTPUT="$(realpath -m "$output")" tools/windows/installer.nsi
echo "$output: $(stat -c %s "$output") bytes"

#!/usr/bin/env bash
# Makes build/windows/OvrynDeck2, the folder that users get, of what has been built; called by build.sh. Which
# libraries belong to it is read from the executables, so nothing is missing and nothing is there for nothing.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

built=build/windows
folder=$built/OvrynDeck2
library_folders=("$toolkit/bin" "$(dirname "$("$triplet-g++-posix" -print-file-name=libstdc++-6.dll)")" "/usr/$triplet/lib")

# Of this system are the libraries that stand in none of these folders.
find_library() {
    local place
    for place in "${library_folders[@]}"; do
        [ ! -e "$place/$1" ] || { echo "$place/$1"; return; }
    done
}

# add_with_libraries FILE TARGET: copies the file without its symbols, and what it needs to the top of the folder.
add_with_libraries() {
    local name path
    mkdir -p "$(dirname "$2")"
    "$triplet-strip" -o "$2" "$1"
    for name in $("$triplet-objdump" -p "$1" | sed -n 's/^\s*DLL Name: //p'); do
        [ ! -e "$folder/$name" ] || continue
        path=$(find_library "$name")
        [ -z "$path" ] || add_with_libraries "$path" "$folder/$name"
    done
}

# add_text FILE TARGET: with the line ends of Windows.
add_text() {
    mkdir -p "$(dirname "$2")"
    sed 's/\r*$/\r/' "$1" >"$2"
}

rm -rf "$folder"
mkdir -p "$folder"
add_with_libraries "$built/bin/OvrynDeck2.exe" "$folder/OvrynDeck2.exe"
add_with_libraries "$built/bin/OvrynUpdate.exe" "$folder/OvrynUpdate.exe"
add_with_libraries "$built/bin/ovryn-fan-guard.exe" "$folder/ovryn-fan-guard.exe"
add_with_libraries "$toolkit/plugins/platforms/qwindows.dll" "$folder/platforms/qwindows.dll"
cp -r resources/updateLog "$folder/"

licences=$folder/licenses
add_text LICENSE "$licences/OvrynDeck2.txt"
add_text tools/windows/licenses.txt "$licences/README.txt"
for licence in resources/font/LICENSES/*; do
    add_text "$licence" "$licences/fonts/$(basename "$licence")"
done
for licence in "$toolkit"/licenses/*/*; do
    add_text "$licence" "$licences/$(basename "$(dirname "$licence")")/$(basename "$licence" .txt).txt"
done
add_text /usr/share/common-licenses/LGPL-2.1 "$licences/QuaZIP/LGPL-2.1.txt"
add_text "/usr/share/doc/gcc-mingw-w64-i686-posix-runtime/copyright" "$licences/gcc-runtime/copyright.txt"
add_text "/usr/share/doc/mingw-w64-i686-dev/copyright" "$licences/mingw-w64/copyright.txt"
add_text "/usr/share/doc/libz-mingw-w64-dev/copyright" "$licences/zlib/copyright.txt"

echo "$folder: $(du -sb "$folder" | cut -f1) bytes in $(find "$folder" -type f | wc -l) files"

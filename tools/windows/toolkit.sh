#!/usr/bin/env bash
# Builds Qt, QuaZIP and what else the program needs for Windows, once, into the cache folder; called by build.sh.
# About 30 minutes on two cores. What is there already is left alone.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

jobs=${OVRYN_WINDOWS_JOBS:-$(nproc)}
work=$cache/work
tree=$PWD
mkdir -p "$work" "$toolkit"

# Debian has the compiler in two kinds, and only the one with POSIX threads has std::thread. Names without the kind
# lead to it here.
compilers=$cache/compilers
mkdir -p "$compilers"
for name in gcc g++; do
    ln -sfn "/usr/bin/$triplet-$name-posix" "$compilers/$triplet-$name"
done
export PATH=$compilers:$PATH
if command -v ccache >/dev/null; then
    export CMAKE_C_COMPILER_LAUNCHER=ccache CMAKE_CXX_COMPILER_LAUNCHER=ccache
fi

# The same arithmetic as in cmake/WindowsToolchain.cmake.
arithmetic="-msse2 -mfpmath=sse -mstackrealign"

build_qt() {
    [ -e "$work/qt-source/configure" ] || fetch_source qtbase-opensource-src "$work/qt-source"
    # The names of libraries are in small letters here, and this file system cares.
    sed -i 's/-lSecur32/-lsecur32/; s/-lCrypt32/-lcrypt32/' "$work/qt-source/src/network/ssl/ssl.pri"
    rm -rf "$work/qt"
    mkdir -p "$work/qt"
    cd "$work/qt"
    # The system's own TLS (schannel) needs no library to ship. No feature "tabletevent": the source package has
    # no wintab.h.
    "$work/qt-source/configure" -prefix "$toolkit" -xplatform win32-g++ \
        -device-option "CROSS_COMPILE=$triplet-" -device-option "QMAKE_CFLAGS=$arithmetic" \
        -release -shared -opensource -confirm-license -nomake examples -nomake tests -nomake tools \
        -no-opengl -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype -qt-pcre -qt-harfbuzz -qt-doubleconversion \
        -no-feature-concurrent -no-feature-sql -no-feature-printer -no-feature-tabletevent \
        -no-dbus -no-icu -schannel -silent
    cd src
    ../bin/qmake "$work/qt-source/src/src.pro"
    make -j"$jobs" sub-moc sub-rcc sub-uic sub-network sub-xml sub-widgets sub-testlib sub-plugins
    local part
    for part in corelib gui network xml widgets testlib winmain moc rcc uic; do
        make "sub-$part-install_subtargets"
    done
    make -C plugins/platforms install
    # CMake's files of the toolkit ask for both.
    mkdir -p "$toolkit/bin"
    cp ../bin/qmake "$toolkit/bin/"
    cp -r "$work/qt-source/mkspecs" "$toolkit/"
    cp -r ../mkspecs/. "$toolkit/mkspecs/"
    mkdir -p "$toolkit/licenses/Qt"
    # The last one names the parts of others in it, with their licences.
    cp "$work/qt-source"/LICENSE.LGPL3 "$work/qt-source"/LICENSE.GPL3 "$work/qt-source/debian/copyright" \
        "$toolkit/licenses/Qt/"
    cd "$tree"
}

# Static, over a static zlib: both are small, and used by the update alone.
build_quazip() {
    [ -e "$work/quazip-source/CMakeLists.txt" ] || fetch_source libquazip1-qt5 "$work/quazip-source"
    rm -rf "$work/quazip"
    cmake -G Ninja -S "$work/quazip-source" -B "$work/quazip" -DCMAKE_BUILD_TYPE=Release \
        -DCMAKE_TOOLCHAIN_FILE="$tree/cmake/WindowsToolchain.cmake" -DCMAKE_INSTALL_PREFIX="$toolkit" \
        -DBUILD_SHARED_LIBS=OFF -DQUAZIP_QT_MAJOR_VERSION=5 -DQUAZIP_BZIP2=OFF -DQUAZIP_ENABLE_TESTS=OFF \
        -DZLIB_LIBRARY="/usr/$triplet/lib/libz.a"
    cmake --build "$work/quazip" -j"$jobs"
    cmake --install "$work/quazip"
    mkdir -p "$toolkit/licenses/QuaZIP"
    cp "$work/quazip-source/COPYING" "$toolkit/licenses/QuaZIP/"
}

# Static: it is used by the updater alone.
build_sodium() {
    [ -e "$work/sodium-source/configure.ac" ] || fetch_source libsodium "$work/sodium-source"
    [ -e "$work/sodium-source/configure" ] || (cd "$work/sodium-source" && autoreconf --install)
    rm -rf "$work/sodium"
    mkdir -p "$work/sodium"
    cd "$work/sodium"
    "$work/sodium-source/configure" --host="$triplet" --prefix="$toolkit" --disable-shared --disable-pie \
        CFLAGS="-O2 $arithmetic"
    make -j"$jobs"
    make install
    mkdir -p "$toolkit/licenses/libsodium"
    cp "$work/sodium-source/LICENSE" "$toolkit/licenses/libsodium/"
    cd "$tree"
}

# A prefix of its own: with /usr/include as a folder of headers the cross compiler would find the native ones.
copy_json() {
    mkdir -p "$toolkit/include" "$toolkit/share/cmake"
    cp -r /usr/include/nlohmann "$toolkit/include/"
    cp -r /usr/share/cmake/nlohmann_json "$toolkit/share/cmake/"
}

# once NAME: runs the step and remembers that it came to its end. In a process of its own, where each failure ends it.
once() {
    [ -e "$toolkit/.$1" ] && return 0
    echo "Windows toolkit: $1"
    tools/windows/toolkit.sh "$1" >"$cache/$1.log" 2>&1 ||
        { echo "It failed; the log is $cache/$1.log" >&2; exit 1; }
    touch "$toolkit/.$1"
}

if [ $# -gt 0 ]; then
    "$1"
    exit
fi
once build_qt
once build_quazip
once build_sodium
once copy_json

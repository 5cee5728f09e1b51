# Sourced by run.sh, test.sh and tools/tsan.sh: the Debian packages that the project needs, and their installation.

build_packages=(
    cmake ninja-build g++ ccache pkg-config
    qtbase5-dev libsm-dev libqt5x11extras5-dev libxcb-keysyms1-dev libquazip1-qt5-dev
    nlohmann-json3-dev libbenchmark-dev libsodium-dev minisign
)
# A virtual screen with a window manager, a compositor and a tray, and the tools that click and look.
screen_packages=(
    xvfb openbox picom trayer xdotool wmctrl x11-utils x11-xserver-utils imagemagick
    dbus-x11 xauth nginx-light
)

# ensure_packages NAME...: installs what is missing, as root or through sudo; elsewhere names it and ends.
ensure_packages() {
    local missing=() name
    if ! command -v dpkg-query >/dev/null; then
        command -v cmake >/dev/null && command -v ninja >/dev/null && return 0
        echo "This system has no apt. Install the equivalents of these Debian packages, then try again:" >&2
        printf '  %s\n' "$@" >&2
        exit 1
    fi
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return 0

    local root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and neither root nor sudo is here to install them:" >&2
            printf '  %s\n' "${missing[@]}" >&2
            exit 1
        fi
        root=(sudo)
    fi
    if ! command -v apt-get >/dev/null; then
        echo "These packages are missing:" >&2
        printf '  %s\n' "${missing[@]}" >&2
        exit 1
    fi
    echo "Installing: ${missing[*]}"
    "${root[@]}" apt-get update -q >/dev/null
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}" >/dev/null
}

# build_preset PRESET [TARGET...]: configures and builds, everything when no target is named.
build_preset() {
    local preset=$1
    shift
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    cmake --preset "$preset" -S . >/dev/null
    cmake --build "build/$preset" ${1:+--target "$@"}
}

# Sourced by the scripts of this folder, from the root of the tree: packages, cache folder and source packages.

. tools/packages.sh

# Everything that takes long to make and does not come from this tree: the toolkit and the root with Wine.
cache=${OVRYN_WINDOWS_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/ovryndeck-windows}
triplet=i686-w64-mingw32
toolkit=$cache/toolkit # the prefix of Qt, QuaZIP and nlohmann JSON for Windows

cross_packages=(
    g++-mingw-w64-i686-posix binutils-mingw-w64-i686 libz-mingw-w64-dev
    autoconf automake libtool cmake ninja-build make pkg-config ccache nlohmann-json3-dev dpkg-dev ca-certificates
)

# debian_mirror: the address of the mirror that this machine gets its Debian packages from.
debian_mirror() {
    local uri
    uri=$(apt-get indextargets --format '$(REPO_URI)|$(ORIGIN)|$(CODENAME)|$(COMPONENT)' 'Created-By: Packages' |
        awk -F'|' '$2 == "Debian" && $3 == "bookworm" && $4 == "main" { print $1; exit }')
    [ -n "$uri" ] || { echo "No Debian 12 mirror stands in this machine's package sources." >&2; return 1; }
    echo "$uri"
}

# fetch_source PACKAGE FOLDER: the unpacked and patched source package, as FOLDER. It uses lists of its own, so the
# machine's package sources stay as they are.
fetch_source() {
    local package=$1 folder=$2 apt=$cache/apt keyring=/usr/share/keyrings/debian-archive-keyring.gpg mirror
    mirror=$(debian_mirror)
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/sources"
    [ -e "$keyring" ] && keyring="[signed-by=$keyring] " || keyring=""
    printf 'deb-src %s%s bookworm main\n' "$keyring" "$mirror" >"$apt/sources.list"
    local options=(
        -o "Dir::Etc::sourcelist=$apt/sources.list" -o "Dir::Etc::sourceparts=/dev/null"
        -o "Dir::State::lists=$apt/lists" -o "Dir::Cache=$apt/cache" -o APT::Sandbox::User=root
    )
    [ -n "$(ls "$apt/lists" | grep -v -e partial -e lock)" ] || apt-get "${options[@]}" -q update >/dev/null
    rm -rf "$apt/unpack"
    mkdir -p "$apt/unpack"
    (cd "$apt/unpack" && apt-get "${options[@]}" -q source "$package" >/dev/null)
    rm -rf "$folder"
    mv "$apt/unpack"/*/ "$folder"
    rm -rf "$apt/unpack"
}

wine_root=$cache/wine-root

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# in_wine_root COMMAND...: runs it as root inside the root folder with Wine, where this tree and the cache's toolkit lie
# in the same places as outside. In mount and process namespaces of its own: what it mounts and starts is gone with it.
in_wine_root() {
    as_root unshare --mount --pid --fork --kill-child bash -c '
        set -e
        root=$1
        shift
        for place in "$1" "$2"; do
            mkdir -p "$root$place"
            mount --bind "$place" "$root$place"
        done
        shift 2
        mount --rbind /dev "$root/dev"
        mount -t proc proc "$root/proc"
        mount -t tmpfs tmpfs "$root/tmp"
        mkdir -m 1777 "$root/tmp/.X11-unix"
        exec chroot "$root" "$@"' in_wine_root "$wine_root" "$PWD" "$toolkit" "$@"
}

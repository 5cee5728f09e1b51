#!/usr/bin/env bash
# Makes a root folder of its own with 32-bit Wine and a virtual screen in the cache folder, once; called by test.sh.
# As root or through sudo, for debootstrap and chroot. A root of its own, since the 32-bit libraries of Wine and the
# 64-bit ones of a machine must have the same versions to be installed side by side.
set -euo pipefail
cd "$(dirname "$0")/../.."
. tools/windows/common.sh

wine_packages=(
    wine wine32 libwine cmake xvfb xauth openbox picom trayer xdotool x11-utils imagemagick dbus-x11
    fonts-wqy-microhei # for the Chinese pages of the installer
)

[ -e "$wine_root/.complete" ] && exit 0
ensure_packages debootstrap debian-archive-keyring
mkdir -p "$wine_root"
mirror=$(debian_mirror)
[ -e "$wine_root/debootstrap.done" ] ||
    as_root debootstrap --arch=i386 --variant=minbase bookworm "$wine_root" "$mirror" >"$cache/wine-root.log"
as_root touch "$wine_root/debootstrap.done"
in_wine_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -q -y --no-install-recommends "${wine_packages[@]}" >>"$cache/wine-root.log"
as_root touch "$wine_root/.complete"

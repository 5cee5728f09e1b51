#!/usr/bin/env bash
# Installs what is missing, builds, and starts the program on the simulated cards, whose lights and panels a window
# beside it shows.
# With no display it starts under a virtual one, visits the pages and leaves pictures of them.
# Options: --scene FILE   another scene of cards (drivers/simulated/scenes)
#          --tour         take the tour on the virtual screen although a display is there
set -euo pipefail
cd "$(dirname "$0")"
. tools/packages.sh

scene=""
tour=false
while [ $# -gt 0 ]; do
    case "$1" in
    --scene) scene=$(realpath "$2"); shift 2 ;;
    --tour) tour=true; shift ;;
    *) sed -n '2,6s/^# //p' "$0"; exit 2 ;;
    esac
done
[ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ] || tour=true

ensure_packages "${build_packages[@]}"
build_preset release OvrynDeck2 ovryn_simulated_driver card-front

export LD_LIBRARY_PATH="$PWD/build/release/drivers/simulated${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
[ -z "$scene" ] || export NVAPI_SIM_SCENARIO="$scene"
export NVAPI_SIM_STATE="${NVAPI_SIM_STATE:-$PWD/build/release/card-state.json}"

if $tour; then
    ensure_packages "${screen_packages[@]}"
    exec tools/tour.sh build/release/bin/OvrynDeck2 build/screenshots
fi
rm -f "$NVAPI_SIM_STATE"
build/release/bin/card-front & pids=($!)
build/release/bin/OvrynDeck2 & pids+=($!)
trap 'kill "${pids[@]}" 2>/dev/null || true' EXIT
trap 'exit 143' HUP INT TERM
wait "${pids[1]}"

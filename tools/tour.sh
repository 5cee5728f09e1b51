#!/usr/bin/env bash
# tour.sh PROGRAM FOLDER: starts the program on a virtual screen, visits its pages by mouse and leaves a picture of each
# in FOLDER. LD_LIBRARY_PATH chooses the driver. A card-front in the program's folder shows the simulated cards' lights
# and panels to the right of the program.
# A program for Windows is started under Wine; tools/windows/tour.sh does that.
set -euo pipefail
program=$(realpath "$1")
mkdir -p "$2"
pictures=$(realpath "$2")
. "$(dirname "$0")/screen.sh"

start_screen 1920x900 # room for both windows
place=$(mktemp -d)
# config.xml is in the executable's folder: a new folder gives a start without settings
case "$program" in
*.exe)
    cp -r "$(dirname "$program")"/. "$place/"
    start=(env -u QT_QPA_PLATFORM -u QT_PLUGIN_PATH -u WINEPATH wine "$place/OvrynDeck2.exe")
    ;;
*)
    cp -r "$program" "$(dirname "$program")/updateLog" "$place/"
    start=("$place/OvrynDeck2")
    ;;
esac
# with a runtime folder of its own it is the first instance even while another one runs
mkdir -m 700 "$place/runtime"
export NVAPI_SIM_STATE="$place/card-state.json"
pids=()
trap 'kill "${pids[@]}" 2>/dev/null || true; stop_screen; rm -rf "$place"' EXIT
front="$(dirname "$program")/card-front"
if [ -x "$front" ]; then
    "$front" & pids+=($!)
    wait_for 20 find_window "Card front"
fi
XDG_RUNTIME_DIR="$place/runtime" XDG_CONFIG_HOME="$place/settings" "${start[@]}" &
program_pid=$!
pids+=($program_pid)

wait_for 20 find_window OvrynDeckII
window=$(find_window OvrynDeckII)
place_of "$window"
rm -f "$pictures"/*.png

# look NAME [SECONDS]: the next picture; before it, the slides and the first samples need some time.
stop=0
look() {
    sleep "${2:-2}"
    stop=$((stop + 1))
    local file
    file=$(printf '%s/%02d-%s.png' "$pictures" "$stop" "$1")
    picture "$file"
    echo "  $file"
}

look first-start
sleep 0.3
. "$(dirname "$0")/tour-stops.sh"

if [ -x "$front" ]; then
    window_picture "$(find_window "Card front")" "$pictures/card-front.png"
    echo "  $pictures/card-front.png"
fi
kill $program_pid
wait $program_pid 2>/dev/null || true

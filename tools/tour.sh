#!/usr/bin/env bash
# tour.sh PROGRAM FOLDER: starts the program on a virtual screen, visits its pages by mouse and leaves a
# picture of each in FOLDER. The driver is whichever stands in LD_LIBRARY_PATH.
set -euo pipefail
program=$(realpath "$1")
mkdir -p "$2"
pictures=$(realpath "$2")
. "$(dirname "$0")/screen.sh"

start_screen
place=$(mktemp -d)
# config.xml lies beside the executable: a fresh place gives a fresh start
cp -r "$program" "$(dirname "$program")/updateLog" "$place/"
# and with a runtime folder of its own it is the first instance even while another one runs
mkdir -m 700 "$place/runtime"
XDG_RUNTIME_DIR="$place/runtime" XDG_CONFIG_HOME="$place/settings" "$place/OvrynDeck2" &
program_pid=$!
trap 'kill $program_pid 2>/dev/null || true; stop_screen; rm -rf "$place"' EXIT

wait_for 20 find_window OvrynDeckII
window=$(find_window OvrynDeckII)
place_of "$window"
rm -f "$pictures"/*.png

# the slides and the first samples need their time to be worth a picture
look() {
    sleep "${2:-2}"
    picture "$pictures/$1.png"
    echo "  $pictures/$1.png"
}

look 01-first-start
sleep 0.3
. "$(dirname "$0")/tour-stops.sh"

kill $program_pid
wait $program_pid 2>/dev/null || true

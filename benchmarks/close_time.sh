#!/usr/bin/env bash
# close_time.sh [RUNS [PROGRAM_FOLDER]]: the time from the request to end until the end of the process, with 1, 2, 4 and
# 8 simulated cards, and the time from the next start to its window. The medians of the runs, in a virtual screen. Needs
# the build of `run.sh`; PROGRAM_FOLDER is another build's bin folder.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/screen.sh
runs=${1:-5}
bin=$(realpath "${2:-build/release/bin}")
export LD_LIBRARY_PATH="$PWD/build/release/drivers/simulated${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
[ -x "$bin/OvrynDeck2" ] || { echo "Build first: ./run.sh --tour" >&2; exit 1; }

start_screen
place=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; stop_screen; rm -rf "$place"' EXIT
mkdir -m 700 "$place/runtime"
cp -r "$bin"/* "$place/"
export XDG_RUNTIME_DIR="$place/runtime" NVAPI_SIM_SCENARIO="$place/scene.json"

now_ms() { date +%s%3N; }
median() { sort -n | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }

for cards in 1 2 4 8; do
    printf '{ "cards": [{ "copies": %d }] }' "$cards" > "$NVAPI_SIM_SCENARIO"
    cat > "$place/config.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<OvrynParameter>
    <GeneralSetting StartOnBoot="0" MinimizeOnStart="0" ApplyLastParamOnStart="1" PageEffects="normal" Language="lang_en" RefreshTimeOfMonitor="1"/>
    <UpdateSetting CheckInterval="0" UpdateMode="0" UpdateStatus="1"/>
    <OtherSetting NotPromptHPS="1"/>
</OvrynParameter>
XML
    sed -i "s/<OtherSetting/<LastCheckDate>$(date +%Y\\/%m\\/%d)<\/LastCheckDate>&/" "$place/config.xml"
    closes="" restarts=""
    "$place/OvrynDeck2" >/dev/null 2>&1 &
    for _ in $(seq "$runs"); do
        wait_for 60 find_window OvrynDeckII
        sleep 2 # each worker is in its rhythm
        pid=$!
        wmctrl -i -c "$(find_window OvrynDeckII)"
        start=$(now_ms)
        wait_for 20 bash -c "! xdotool search --onlyvisible --name '^OvrynDeckII\$'"
        "$place/OvrynDeck2" >/dev/null 2>&1 &
        wait "$pid" || true
        closes+="$(($(now_ms) - start))"$'\n'
        wait_for 60 find_window OvrynDeckII || { echo "The second start brought no window." >&2; exit 1; }
        restarts+="$(($(now_ms) - start))"$'\n'
    done
    kill $!
    wait $! || true
    printf '%d card(s): end of the process after %5d ms, window of the next start after %5d ms\n' "$cards" \
        "$(printf %s "$closes" | median)" "$(printf %s "$restarts" | median)"
done

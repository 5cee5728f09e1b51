#!/usr/bin/env bash
# process_cpu.sh [SECONDS [RUNS]]: what share of one core the whole program takes on the simulated cards, in a virtual
# screen with window manager and compositor: hidden in the tray, with the effects "normal", and with them "advanced" in
# the memory readout, where glow and waves both move. The smallest of the runs counts. Needs the build of `run.sh`.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/screen.sh
seconds=${1:-20}
runs=${2:-3}

program=$PWD/build/release/bin/OvrynDeck2
export LD_LIBRARY_PATH="$PWD/build/release/drivers/simulated${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}"
[ -x "$program" ] || { echo "Build first: ./run.sh --tour" >&2; exit 1; }

start_screen
place=$(mktemp -d)
program_pid=""
stop_program() {
    [ -z "$program_pid" ] || kill "$program_pid" 2>/dev/null || true
    [ -z "$program_pid" ] || wait "$program_pid" 2>/dev/null || true
    program_pid=""
}
trap 'stop_program; stop_screen; rm -rf "$place"' EXIT

# config.xml lies beside the executable
mkdir -m 700 "$place/runtime"
cp -r "$program" "$(dirname "$program")/updateLog" "$place/"

# cpu_ns: what all threads of the program have run so far, in nanoseconds.
cpu_ns() { cat /proc/"$program_pid"/task/*/schedstat 2>/dev/null | awk '{ sum += $1 } END { printf "%.0f", sum }'; }

# share NAME EFFECTS ACTION: starts the program, puts it into its state and measures.
share() {
    local name=$1 effects=$2 action=$3 least="" run
    for run in $(seq "$runs"); do
        cat > "$place/config.xml" <<XML
<?xml version="1.0" encoding="UTF-8"?>
<OvrynParameter>
    <GeneralSetting StartOnBoot="0" MinimizeOnStart="0" ApplyLastParamOnStart="0" PageEffects="$effects" Language="lang_en" RefreshTimeOfMonitor="1"/>
    <OtherSetting NotPromptHPS="1"/>
</OvrynParameter>
XML
        XDG_RUNTIME_DIR="$place/runtime" "$place/OvrynDeck2" >/dev/null 2>&1 &
        program_pid=$!
        wait_for 20 find_window OvrynDeckII
        window=$(find_window OvrynDeckII)
        sleep 6 # the start-up picture comes to rest
        $action
        sleep 2
        local before after start end
        before=$(cpu_ns) start=$(date +%s%N)
        sleep "$seconds"
        after=$(cpu_ns) end=$(date +%s%N)
        stop_program
        least=$(awk -v c=$((after - before)) -v t=$((end - start)) -v l="$least" \
            'BEGIN { s = 100 * c / t; printf "%.2f", (l == "" || s < l) ? s : l }')
    done
    printf '%-34s %6s %% of one core\n' "$name" "$least"
}

stay() { :; }
minimize() {
    click "$window" 1005 101
    wait_for 10 bash -c "! xdotool search --onlyvisible --name '^OvrynDeckII\$'"
}
memory_readout() { click "$window" 510 577; } # the lowest segment of the ring

share "hidden in the tray, normal" normal minimize
share "hidden in the tray, advanced" advanced minimize
share "home page, normal" normal memory_readout
share "home page, advanced, clock" advanced stay
share "home page, advanced, memory" advanced memory_readout

# Sourced: a virtual screen of its own, with window manager, compositor and tray, and functions for mouse and keys.

# start_screen [SIZE]: sets DISPLAY; everything ends with the calling script.
start_screen() {
    local number size=${1:-1280x900}
    exec {display_fd}<> <(:)
    Xvfb -displayfd "$display_fd" -screen 0 "${size}x24" -noreset -nolisten tcp >/dev/null 2>&1 &
    screen_pids=($!)
    trap stop_screen EXIT
    read -r -t 20 -u "$display_fd" number || { echo "The virtual screen did not start." >&2; exit 1; }
    export DISPLAY=":$number" QT_QPA_PLATFORM=xcb
    openbox --config-file "$(dirname "${BASH_SOURCE[0]}")/openbox.xml" >/dev/null 2>&1 & screen_pids+=($!)
    picom --backend xrender --config /dev/null >/dev/null 2>&1 & screen_pids+=($!)
    trayer --edge top --align right --width 8 --height 24 --transparent true --alpha 255 >/dev/null 2>&1 & screen_pids+=($!)
    wait_for 10 xprop -root _NET_SUPPORTING_WM_CHECK
    xsetroot -solid '#29323c'
}

stop_screen() {
    kill "${screen_pids[@]:1}" 2>/dev/null || true
    kill "${screen_pids[0]}" 2>/dev/null || true
}

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
    local end=$((SECONDS + $1))
    shift
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $end ] || { echo "Waited in vain for: $*" >&2; return 1; }
        sleep 0.1
    done
}

# find_window NAME: prints the visible window of exactly that name.
find_window() { xdotool search --onlyvisible --name "^$1\$" | tail -n 1 | grep .; }

# place_of WINDOW: sets X, Y, WIDTH, HEIGHT.
place_of() { eval "$(xdotool getwindowgeometry --shell "$1" | grep -E '^(X|Y|WIDTH|HEIGHT)=')"; }

# click WINDOW X Y: the left button, in window pixels.
click() {
    place_of "$1"
    xdotool mousemove --sync "$((X + $2))" "$((Y + $3))" sleep 0.05 click 1
}

# picture FILE: the whole screen.
picture() { import -silent -window root "$1"; }

# window_picture WINDOW FILE: what is inside a window's frame.
window_picture() { import -silent -window "$1" "$2"; }

#!/bin/bash
# under-wine.sh TREE TOOLKIT COMMAND...: runs the command inside the root with Wine, with a screen and a Windows of its
# own: the simulated driver in its system folder, the toolkit's libraries found. Called by way of in_wine_root.
set -euo pipefail
tree=$1
toolkit=$2
shift 2
cd "$tree"

export HOME=/root LC_ALL=C.UTF-8 WINEARCH=win32 WINEDEBUG=${WINEDEBUG:--all}
# Neither of Mono and Gecko, which Wine would offer to download; the simulated driver, not one of Wine's own.
export WINEDLLOVERRIDES="mscoree,mshtml=;nvapi=n"
export WINEPREFIX=/tmp/wine
XDG_RUNTIME_DIR=$(mktemp -d)
export XDG_RUNTIME_DIR

Xvfb :77 -screen 0 1280x900x24 -noreset >/dev/null 2>&1 &
export DISPLAY=:77
until xdpyinfo >/dev/null 2>&1; do
    kill -0 $! || { echo "No screen" >&2; exit 1; }
    sleep 0.1
done
openbox --config-file tools/openbox.xml >/dev/null 2>&1 &
picom --backend xrender --config /dev/null >/dev/null 2>&1 &
trayer >/dev/null 2>&1 &

wineboot --init >/dev/null 2>&1
wine winecfg -v win10 >/dev/null 2>&1
wineserver --wait
cp build/windows/drivers/simulated/nvapi.dll "$WINEPREFIX/drive_c/windows/system32/"
# Windows folders for what test programs find in the toolkit, and for the compiler's libraries
export WINEPATH="Z:${toolkit//\//\\}\\bin;Z:${tree//\//\\}\\build\\windows\\OvrynDeck2"
export QT_PLUGIN_PATH="$toolkit/plugins"
# A test program's text goes to the debugger otherwise.
export QT_FORCE_STDERR_LOGGING=1

wineserver --persistent
# A program that stays. The services of Wine come with the first one and would otherwise hold the output of a test
# program open, and the test would seem to run on.
sleep infinity | wine cmd >/dev/null 2>&1 &
until pgrep -f services.exe >/dev/null && pgrep -f rpcss.exe >/dev/null; do
    sleep 0.2
done

status=0
"$@" || status=$?
wineserver --kill || true
exit $status

#!/usr/bin/env bash
# The installed monitor on a Wayland desktop: a headless Weston, the package's
# korvane-sim, and the monitor started through PATH with QT_QPA_PLATFORM=wayland.
# The compositor's own scene graph must show its window mapped on the output,
# and the console must say "connected to". The screen is kept as
# OUT_DIR/wayland-screenshot.png.
#   test_wayland.sh ROOT OUT_DIR
set -euo pipefail
root=$1
shot=$2/wayland-screenshot.png
source "$(dirname "$0")/testlib.sh"

work=$(mktemp -d)
started=()
cleanup()
{
    kill "${started[@]}" 2>/dev/null || true
    wait || true
    rm -rf "$work"
}
trap cleanup EXIT

export XDG_RUNTIME_DIR=$work/runtime HOME=$work/home XDG_CONFIG_HOME=$work/config
export WAYLAND_DISPLAY=korvane-test
mkdir -m 700 "$XDG_RUNTIME_DIR"
mkdir -p "$HOME" "$XDG_CONFIG_HOME"
unset DISPLAY

# --debug opens the scene graph and the screenshooter to this test's clients.
weston --backend=headless-backend.so --use-pixman --width=1280 --height=900 --idle-time=0 \
    --socket="$WAYLAND_DISPLAY" --debug --log="$work/weston.log" 2>"$work/weston.err" &
started+=($!)
if ! wait_for 30 test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY"; then
    cat "$work/weston.log" >&2
    exit 1
fi

"$root/usr/bin/korvane-sim" --listen 127.0.0.1:0 --seed 1 >"$work/sim.out" 2>"$work/sim.err" &
started+=($!)
wait_for 30 grep -q '^listening on ' "$work/sim.out"
address=$(sed -n 's/^listening on //p' "$work/sim.out")

PATH=$root/usr/bin:$PATH QT_QPA_PLATFORM=wayland \
    korvane-monitor --connect "$address" >"$work/monitor.out" 2>"$work/monitor.err" &
monitor=$!
started+=($monitor)

# The compositor's view of the monitor's window, without ids that change.
window()
{
    weston-debug scene-graph 2>/dev/null | awk -v pid="$monitor" '
        /^\t*View [0-9]+ \(/ { mine = index($0, "PID " pid ",") > 0 }
        mine && /role xdg_toplevel/ { sub(/^\tView [0-9]+ \(/, ""); sub(/, surface ID [0-9]+/, "");
                                      sub(/, 0x[0-9a-f]+\):$/, ""); print }
        mine && /outputs:/ { sub(/^\t+/, ""); print }'
}
mapped() { [[ $(window) == *"outputs: 0 (headless) (primary)" ]]; }
connected() { grep -q '^connected to ' "$work/monitor.out"; }

wait_for 60 mapped || true
expect_equal "the window is mapped on Weston's output" \
    "role xdg_toplevel, PID $monitor, top-level window 'Korvane Network Monitor' of com.korvane.Monitor
outputs: 0 (headless) (primary)" "$(window)"
wait_for 60 connected || true
expect_equal "the console" "connected to $address" "$(head -n 1 "$work/monitor.out")"
expect_equal "no warnings" "" "$(<"$work/monitor.err")"

# One poll cycle later the lists are filled; keep the screen for people to see.
sleep 2
rm -f "$shot"
(cd "$work" && weston-screenshooter) && mv "$work"/wayland-screenshot-*.png "$shot"
expect_equal "screenshot of the whole output" "1280x900" "$(identify -format '%wx%h' "$shot" 2>&1)"
echo "screenshot: $shot"
finish

#!/usr/bin/env bash
# Fresh machine to a running monitor: installs what is missing, builds, starts
# the bundled simulated processing server and the monitor connected to it.
# With no display both run under Xvfb: a screenshot is saved, its path
# printed, and everything is ended.
#   scripts/run.sh [extra korvane-sim options]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
bash scripts/build.sh build

bin=$PWD/build/bin
sim_log=$(mktemp)
"$bin/korvane-sim" --listen 127.0.0.1:0 --seed 1 "$@" >"$sim_log" &
sim=$!
monitor=
xvfb=
cleanup() {
    kill $monitor $sim $xvfb 2>/dev/null || true
    rm -f "$sim_log"
}
trap cleanup EXIT

for _ in $(seq 100); do
    address=$(sed -n 's/^listening on //p' "$sim_log" | head -1)
    [[ -n "$address" ]] && break
    sleep 0.1
done
if [[ -z "${address:-}" ]]; then
    echo "run: the simulator did not start" >&2
    exit 1
fi
echo "simulator listening on $address"

if [[ -n "${DISPLAY:-}" ]]; then
    "$bin/korvane-monitor" --connect "$address"
    exit 0
fi

shot=${KORVANE_SCREENSHOT:-$PWD/build/screenshot.png}
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
for _ in $(seq 50); do
    DISPLAY=$display xdpyinfo >/dev/null 2>&1 && break || sleep 0.1
done

DISPLAY=$display "$bin/korvane-monitor" --connect "$address" >/dev/null &
monitor=$!
sleep 4
# the program's own window when it can be found, else the whole screen
window=$(DISPLAY=$display xwininfo -name "Korvane Network Monitor" 2>/dev/null | awk '/Window id:/ {print $4}')
DISPLAY=$display import -window "${window:-root}" "$shot"
echo "screenshot: $shot"

#!/usr/bin/env bash
# Fresh machine to a running monitor: installs what is missing, builds, starts
# the bundled simulated processing server and the monitor connected to it.
# With no display both run under Xvfb: a screenshot is saved, its path
# printed, and everything is ended.
#   scripts/run.sh [extra korvane-sim options]
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

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

address=$(listening_address "$sim_log") || { echo "run: the simulator did not start" >&2; exit 1; }
echo "simulator listening on $address"

if [[ -n "${DISPLAY:-}" ]]; then
    "$bin/korvane-monitor" --connect "$address"
    exit 0
fi

shot=${KORVANE_SCREENSHOT:-$PWD/build/screenshot.png}
start_xvfb

DISPLAY=$display "$bin/korvane-monitor" --connect "$address" >/dev/null &
monitor=$!
sleep 4
screenshot_monitor "$display" "$shot"
echo "screenshot: $shot"

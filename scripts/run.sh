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
start_work
start_sim run --seed 1 "$@"
echo "simulator listening on $sim_address"

if [[ -n "${DISPLAY:-}" ]]; then
    "$bin/korvane-monitor" --connect "$sim_address"
    exit 0
fi

shot=${KORVANE_SCREENSHOT:-$PWD/build/screenshot.png}
picture_new_monitor run "$bin/korvane-monitor" "$sim_address" "$shot" || exit 1
echo "screenshot: $shot"

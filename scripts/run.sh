#!/usr/bin/env bash
# Fresh machine to a running monitor: installs what is missing, builds, starts
# the bundled simulated processing server, the web monitor and the desktop
# monitor connected to it. Headless Chromium saves a picture of the web
# monitor's page. With no display the desktop monitor runs under Xvfb: a
# screenshot is saved, its path printed, and everything is ended.
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
start_web run
echo "web monitor at http://$web_address/"
web_shot=${KORVANE_WEB_SCREENSHOT:-$PWD/build/screenshot-web.png}
node scripts/photograph-page.mjs "http://$web_address" "$web_shot" /batches || exit 1
echo "screenshot of the web monitor: $web_shot"

if [[ -n "${DISPLAY:-}" ]]; then
    "$bin/korvane-monitor" --connect "$sim_address"
    exit 0
fi

shot=${KORVANE_SCREENSHOT:-$PWD/build/screenshot.png}
picture_new_monitor run "$bin/korvane-monitor" "$sim_address" "$shot" || exit 1
echo "screenshot: $shot"

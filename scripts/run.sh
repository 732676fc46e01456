#!/usr/bin/env bash
# Fresh machine to a running monitor: installs what is missing, builds, and
# starts the program. With no display it runs under Xvfb, saves a screenshot,
# prints its path and ends the program.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh
bash scripts/build.sh build

bin=$PWD/build/bin
if [[ -n "${DISPLAY:-}" ]]; then
    exec "$bin/korvane-monitor" "$@"
fi

shot=${KORVANE_SCREENSHOT:-$PWD/build/screenshot.png}
display=:$((90 + RANDOM % 100))
Xvfb "$display" -screen 0 1024x768x24 -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
cleanup() { kill "$monitor" "$xvfb" 2>/dev/null || true; }
trap cleanup EXIT
for _ in $(seq 50); do
    DISPLAY=$display xdpyinfo >/dev/null 2>&1 && break || sleep 0.1
done

DISPLAY=$display "$bin/korvane-monitor" "$@" &
monitor=$!
sleep 3
# the program's own window when it can be found, else the whole screen
window=$(DISPLAY=$display xwininfo -name "Korvane Network Monitor" 2>/dev/null | awk '/Window id:/ {print $4}')
DISPLAY=$display import -window "${window:-root}" "$shot"
echo "screenshot: $shot"

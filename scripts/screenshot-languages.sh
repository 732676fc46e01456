#!/usr/bin/env bash
# Pictures of the main window in each language, connected to the simulated
# server, under Xvfb: docs/main-window-<code>.png. Needs a built build/.
#   scripts/screenshot-languages.sh [code...]   (default: ru fr es ja zh_CN)
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

bin=$PWD/build/bin
languages=("$@")
((${#languages[@]})) || languages=(ru fr es ja zh_CN)

work=$(mktemp -d)
sim=
xvfb=
monitor=
cleanup() {
    kill $monitor $sim $xvfb 2>/dev/null || true
    rm -rf "$work"
}
trap cleanup EXIT

"$bin/korvane-sim" --listen 127.0.0.1:0 --seed 1 >"$work/sim.log" &
sim=$!
address=$(listening_address "$work/sim.log") ||
    { echo "screenshot-languages: the simulator did not start" >&2; exit 1; }
start_xvfb

for code in "${languages[@]}"; do
    config=$work/config-$code
    mkdir -p "$config/Korvane"
    printf '[main]\nlanguage=%s\n' "$code" >"$config/Korvane/Monitor.conf"
    # The user's locale as in that country: Qt takes the Chinese or the
    # Japanese forms of the shared Han characters from it.
    case $code in
        *_*) locale=$code.UTF-8 ;;
        ja) locale=ja_JP.UTF-8 ;;
        *) locale=${code}_${code^^}.UTF-8 ;;
    esac
    DISPLAY=$display XDG_CONFIG_HOME=$config LANG=$locale "$bin/korvane-monitor" --connect "$address" >/dev/null &
    monitor=$!
    sleep 4
    shot=$PWD/docs/main-window-$code.png
    screenshot_monitor "$display" "$shot"
    kill $monitor
    wait $monitor 2>/dev/null || true
    monitor=
    echo "screenshot: $shot"
done

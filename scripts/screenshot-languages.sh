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

start_work
start_sim screenshot-languages --seed 1
start_xvfb screenshot-languages || exit 1

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
    DISPLAY=$display XDG_CONFIG_HOME=$config LANG=$locale "$bin/korvane-monitor" --connect "$sim_address" >/dev/null &
    monitor=$!
    pids+=("$monitor")
    sleep 4
    shot=$PWD/docs/main-window-$code.png
    screenshot_monitor "$display" "$shot"
    kill "$monitor"
    wait "$monitor" 2>/dev/null || true
    # Ended already: not one for the clean-up at exit.
    unset 'pids[-1]'
    echo "screenshot: $shot"
done

#!/bin/bash
# The browser page in Debian's headless Chromium, on loopback: the simulator
# and korvane-web serving the real page, then the same serving the naive page
# (bench/browser/naive); then each page against bench.mjs's own synthetic farm
# for the delta that changes all 10,000 batches. Prints one table. Builds
# nothing; stops what it started.
#   bench/browser/run.sh [BIN_DIR] [--heap-minutes M] [--speed X]
#                        (default: build-bench/bin, 2 minutes, the simulator's own speed 1)
#   bench/browser/run.sh build/bin --heap-minutes 10    (the full memory run)
#   bench/browser/run.sh build/bin --speed 60           (nodes hop between batches every reading)
set -u

here=$(cd "$(dirname "$0")" && pwd)
bin=$here/../../build-bench/bin
if [ $# -gt 0 ] && [ "${1#--}" = "$1" ]; then
    bin=$1
    shift
fi
heap_minutes=2
speed=1
while [ $# -gt 0 ]; do
    case $1 in
    --heap-minutes) heap_minutes=$2; shift 2 ;;
    --speed) speed=$2; shift 2 ;;
    *) echo "usage: run.sh [BIN_DIR] [--heap-minutes M] [--speed X]" >&2; exit 2 ;;
    esac
done
assets=$bin/../web-ui
logs=$(mktemp -d /tmp/browser-bench.XXXXXX)
# shellcheck source=bench/lib.sh
source "$here/../lib.sh"
sim_pid=
web_pid=
node_pid=
# A page's whole live run: three loads, the updates, the scroll and the heap samples.
live_limit=$((heap_minutes * 60 + 240))

cleanup() {
    # Playwright closes its browser on SIGTERM.
    stop "$node_pid"
    stop "$web_pid"
    stop "$sim_pid"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

# bench.mjs in the background, so that the trap can end it.
bench() {
    local limit=$1 name=$2
    shift 2
    node "$here/bench.mjs" "$@" --deadline-seconds "$limit" >"$logs/$name.out" 2>"$logs/$name.err" &
    node_pid=$!
    wait "$node_pid"
    local status=$?
    node_pid=
    [ "$status" -eq 0 ] || fail "bench.mjs $1 for $name ended with $status: $(tail -n 3 "$logs/$name.err")"
}

for program in korvane-sim korvane-web; do
    [ -x "$bin/$program" ] || fail "no $bin/$program; build it first"
done
[ -f "$assets/index.html" ] || fail "no $assets/index.html; build korvane-web first"
[ -d "$here/../../web/ui/node_modules/playwright-core" ] || fail "no playwright-core; run npm ci in web/ui"
[ -x /usr/bin/chromium ] || fail "no /usr/bin/chromium"

# Sixty simulated seconds a second: about a hundred batches and every working node change each reading.
"$bin/korvane-sim" --listen 127.0.0.1:0 --batches 10000 --nodes 2000 --seed 1 --speed "$speed" \
    >"$logs/sim.out" 2>"$logs/sim.err" &
sim_pid=$!
sim_port=$(listening_port "$logs/sim.out") || fail "the simulator did not listen"
echo "korvane-sim --batches 10000 --nodes 2000 --seed 1 --speed $speed on :$sim_port; heap sampled for $heap_minutes min a page"

for page in real naive; do
    extra=()
    [ "$page" = naive ] && extra=(--web.assets-dir "$here/naive")
    "$bin/korvane-web" --server "127.0.0.1:$sim_port" --web.listen-address 127.0.0.1:0 --interval 1 "${extra[@]}" \
        >"$logs/web-$page.out" 2>"$logs/web-$page.err" &
    web_pid=$!
    web_port=$(listening_port "$logs/web-$page.out") || fail "korvane-web did not listen"
    # The first reading of 10,000 batches, so that the page's first list is the farm's.
    for _ in $(seq 100); do
        curl -sf "http://127.0.0.1:$web_port/api/v1/snapshot" 2>/dev/null | grep -q '"batch_id"' && break
        sleep 0.2
    done
    echo "$page page: korvane-web --interval 1 on :$web_port"
    bench "$live_limit" "live-$page" live "http://127.0.0.1:$web_port/" "$logs/live-$page.json" \
        --label "$page" --heap-minutes "$heap_minutes"
    # The nodes list, where every working node's row changes each reading.
    if [ "$page" = real ]; then
        bench "$live_limit" live-real-nodes live "http://127.0.0.1:$web_port/nodes" "$logs/live-real-nodes.json" \
            --label "real, nodes list" --heap-minutes 0
    fi
    stop "$web_pid"
    web_pid=
done
stop "$sim_pid"
sim_pid=

echo "synthetic farm: 10,000 batches, 2,000 nodes, five deltas each changing every batch"
bench 180 burst-real burst "$assets" "$logs/burst-real.json" --label real
bench 180 burst-naive burst "$here/naive" "$logs/burst-naive.json" --label naive

node "$here/bench.mjs" table "$logs/live-real.json" "$logs/live-real-nodes.json" "$logs/live-naive.json" "$logs/burst-real.json" \
    "$logs/burst-naive.json" || fail "no table"
echo "logs: $logs"

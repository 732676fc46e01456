#!/bin/bash
# korvane-web under many browsers, on loopback: the simulator, web_load's
# counting proxy, then korvane-web reading the farm through the proxy; web_load
# opens the streams and prints one table. Builds nothing; stops what it started.
#   bench/web/run.sh [BIN_DIR]                 (default: build-bench/bin)
#   READINGS=60 STREAMS=500 ACTIONS=20 bench/web/run.sh
set -u

here=$(cd "$(dirname "$0")" && pwd)
bin=${1:-$here/../../build-bench/bin}
readings=${READINGS:-60}
streams=${STREAMS:-500}
actions=${ACTIONS:-20}
logs=$(mktemp -d /tmp/web-bench.XXXXXX)
# shellcheck source=bench/lib.sh
source "$here/../lib.sh"
sim_pid=
load_pid=
web_pid=

cleanup() {
    exec 3>&- 2>/dev/null
    stop "$load_pid"
    stop "$web_pid"
    stop "$sim_pid"
}
trap cleanup EXIT
trap 'exit 130' INT TERM

for program in korvane-sim korvane-web web_load; do
    [ -x "$bin/$program" ] || fail "no $bin/$program; build it first"
done
ulimit -n 8192 2>/dev/null

"$bin/korvane-sim" --listen 127.0.0.1:0 --batches 10000 --nodes 2000 --seed 1 >"$logs/sim.out" 2>"$logs/sim.err" &
sim_pid=$!
sim_port=$(listening_port "$logs/sim.out") || fail "the simulator did not listen"

mkfifo "$logs/control"
timeout $((readings * 8 + 400)) "$bin/web_load" --sim-port "$sim_port" --readings "$readings" \
    --streams "$streams" --actions "$actions" <"$logs/control" >"$logs/load.out" 2>"$logs/load.err" &
load_pid=$!
exec 3>"$logs/control"
proxy_port=$(listening_port "$logs/load.out") || fail "web_load's proxy did not listen"

"$bin/korvane-web" --server "127.0.0.1:$proxy_port" --web.listen-address 127.0.0.1:0 --interval 1 \
    --web.max-streams 600 >"$logs/web.out" 2>"$logs/web.err" &
web_pid=$!
web_port=$(listening_port "$logs/web.out") || fail "korvane-web did not listen"
echo "$web_port $web_pid" >&3

echo "korvane-sim --batches 10000 --nodes 2000 --seed 1 on :$sim_port, proxy :$proxy_port," \
    "korvane-web --web.max-streams 600 on :$web_port; $readings readings a phase, $streams streams"
wait "$load_pid"
status=$?
load_pid=
tail -n +2 "$logs/load.out"
[ -s "$logs/load.err" ] && cat "$logs/load.err" >&2
echo "logs: $logs"
[ "$status" -eq 0 ] || fail "web_load ended with $status"

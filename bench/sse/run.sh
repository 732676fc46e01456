#!/bin/bash
# Server-sent events fan-out, httplib against Beast, on loopback: each server
# started on its own, loaded by sse_load, then stopped. Builds nothing.
#   bench/sse/run.sh [BIN_DIR]          (default: build-sse/bin)
#   STREAMS=500 EVENTS=30 RUNS="httplib-4k beast-4k" bench/sse/run.sh
# Runs: {httplib,beast,beast2}-{4k,1500k}[-slow]; beast2 is Beast on two threads.
set -u

here=$(cd "$(dirname "$0")" && pwd)
bin=${1:-$here/../../build-sse/bin}
streams=${STREAMS:-500}
events=${EVENTS:-30}
runs=${RUNS:-"httplib-4k beast-4k httplib-4k-slow beast-4k-slow httplib-1500k beast-1500k httplib-1500k-slow beast-1500k-slow"}
logs=$(mktemp -d /tmp/sse-bench.XXXXXX)
port=18100
server_pid=

stop_server() {
    if [ -n "$server_pid" ]; then
        kill "$server_pid" 2>/dev/null
        wait "$server_pid" 2>/dev/null
        server_pid=
    fi
}
trap stop_server EXIT
trap 'exit 130' INT TERM

wait_for_port() {
    for _ in $(seq 50); do
        (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null && return 0
        sleep 0.1
    done
    return 1
}

run() {
    local name=$1 library size slow=
    library=${name%%-*}
    case $name in
        *-1500k*) size=1500000 ;;
        *) size=4096 ;;
    esac
    case $name in *-slow) slow=--slow ;; esac
    port=$((port + 1))
    local lifetime=$((events + 180)) command
    case $library in
        httplib) command=("$bin/httplib_sse" --threads $((streams + 8))) ;;
        beast) command=("$bin/beast_sse" --threads 1) ;;
        beast2) command=("$bin/beast_sse" --threads 2) ;;
        *) echo "unknown run $name" >&2; return 1 ;;
    esac
    if (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; then
        echo "$name: port $port is taken already" >&2
        return 1
    fi
    "${command[@]}" --port $port --size $size --lifetime $lifetime 2>"$logs/$name.server" &
    server_pid=$!
    if wait_for_port $port; then
        timeout $((events + 150)) "$bin/sse_load" --port $port --pid $server_pid --streams "$streams" \
            --events "$events" --label "$name" $slow 2>"$logs/$name.load"
    else
        echo "$name: the server did not listen" >&2
    fi
    # What the server said while the load was on, before the load's sockets closed.
    cp "$logs/$name.server" "$logs/$name.during"
    stop_server
    sleep 2
}

echo "load average before: $(cut -d' ' -f1-3 /proc/loadavg)"
"$bin/sse_load" --header
for name in $runs; do
    run "$name"
done
echo "load average after: $(cut -d' ' -f1-3 /proc/loadavg)"
echo
echo "Latency: publish stamp to the read of the event's last byte, every stream, $events events at 1 Hz."
echo "RSS: at the end with all streams open; peak: sampled each second. CPU: server utime+stime over the run, % of one core."
echo "slow B: bytes the slow reader (SO_RCVBUF 2048, 1 byte/s) got. load CPU: the load client's own, % of one core."
echo
for name in $runs; do
    [ -f "$logs/$name.during" ] || continue
    echo "$name: $(sed 's/^sse_load: [^:]*: //' "$logs/$name.load")"
    grep -E 'stream closed|dropped' "$logs/$name.during" | sed 's/ ([0-9]* so far)//' | sort | uniq -c | sed 's/^/    server, while loaded: /'
done
echo "server logs: $logs"

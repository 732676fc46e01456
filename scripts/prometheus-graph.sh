#!/usr/bin/env bash
# Takes the picture of Prometheus' graph page showing korvane_nodes by status:
# korvane-sim, korvane-exporter watching it and a Prometheus server scraping
# the exporter every second, all on loopback; after SECONDS (default 120)
# headless Chromium photographs the graph of the last minutes.
#   bash scripts/prometheus-graph.sh [OUTPUT.png] [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=$(realpath -m "${1:-docs/prometheus-graph.png}")
seconds=${2:-120}

need_chromium prometheus-graph
KORVANE_TARGETS="korvane-sim korvane-exporter" bash scripts/build.sh build >/dev/null

start_work


# A farm that moves: nodes fail and recover, batches start and finish.
build/bin/korvane-sim --listen 127.0.0.1:0 --seed 1 --nodes 40 --batches 400 --speed 30 \
    --failure-rate 30 >"$work/sim.out" 2>/dev/null &
pids+=($!)
sim_port=$(listening_port "$work/sim.out" prometheus-graph)
build/bin/korvane-exporter --server "127.0.0.1:$sim_port" --listen 127.0.0.1:0 \
    >"$work/exporter.out" 2>"$work/exporter.err" &
pids+=($!)
exporter_port=$(listening_port "$work/exporter.out" prometheus-graph)

# The first loopback port from 19090 on that nobody answers.
prometheus_port=19090
while (exec 3<>"/dev/tcp/127.0.0.1/$prometheus_port") 2>/dev/null; do
    prometheus_port=$((prometheus_port + 1))
done
cat >"$work/prometheus.yml" <<YAML
global:
  scrape_interval: 1s
  scrape_timeout: 1s
scrape_configs:
  - job_name: korvane
    static_configs:
      - targets: ['127.0.0.1:$exporter_port']
YAML
prometheus --config.file="$work/prometheus.yml" --storage.tsdb.path="$work/data" \
    --web.listen-address="127.0.0.1:$prometheus_port" --log.level=warn 2>"$work/prometheus.err" &
pids+=($!)

echo "prometheus-graph: collecting for $seconds s (Prometheus on 127.0.0.1:$prometheus_port)"
sleep "$seconds"

mkdir -p "$(dirname "$out")"
url="http://127.0.0.1:$prometheus_port/graph?g0.expr=korvane_nodes&g0.tab=0&g0.stacked=0&g0.range_input=${seconds}s"
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/chromium" --window-size=1400,900 --hide-scrollbars \
    --virtual-time-budget=15000 --screenshot="$out" "$url" 2>"$work/chromium.err" >/dev/null
echo "prometheus-graph: $out"

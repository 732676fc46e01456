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

start_picture prometheus-graph

# A farm that moves: nodes fail and recover, batches start and finish.
start_farm prometheus-graph one --seed 1 --nodes 40 --batches 400 --speed 30 --failure-rate 30

start_prometheus prometheus-graph 19090 "      - targets: ['127.0.0.1:$farm_exporter_port']"
sleep "$seconds"

photograph prometheus-graph \
    "http://127.0.0.1:$prometheus_port/graph?g0.expr=korvane_nodes&g0.tab=0&g0.stacked=0&g0.range_input=${seconds}s" \
    "$out" 900

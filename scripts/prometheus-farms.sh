#!/usr/bin/env bash
# Takes the picture of Prometheus' graph page with the dashboard's queries for
# two farms: two korvane-sim farms, a korvane-exporter beside each and one
# Prometheus server scraping both every second with farm labels "a" and "b",
# all on loopback; after SECONDS (default 90) headless Chromium photographs
# the graph page with the exporters' up, farm b's working batches (the
# dashboard's table query with farm=b), the batches by status per farm and
# the nodes' errors.
#   bash scripts/prometheus-farms.sh [OUTPUT.png] [SECONDS]
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh
out=$(realpath -m "${1:-docs/prometheus-farms.png}")
seconds=${2:-90}

need_chromium prometheus-farms
KORVANE_TARGETS="korvane-sim korvane-exporter" bash scripts/build.sh build >/dev/null

start_work


# Farm a and farm b: both number their batches from 1.
declare -A exporter_port
for farm in a b; do
    seed=$([[ $farm == a ]] && echo 1 || echo 2)
    build/bin/korvane-sim --listen 127.0.0.1:0 --seed "$seed" --nodes 40 --batches 60 --speed 20 \
        --failure-rate 30 >"$work/sim-$farm.out" 2>/dev/null &
    pids+=($!)
    sim_port=$(listening_port "$work/sim-$farm.out" prometheus-farms)
    build/bin/korvane-exporter --server "127.0.0.1:$sim_port" --web.listen-address 127.0.0.1:0 \
        >"$work/exporter-$farm.out" 2>"$work/exporter-$farm.err" &
    pids+=($!)
    exporter_port[$farm]=$(listening_port "$work/exporter-$farm.out" prometheus-farms)
done

prometheus_port=19190
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
      - targets: ['127.0.0.1:${exporter_port[a]}']
        labels: {farm: a}
      - targets: ['127.0.0.1:${exporter_port[b]}']
        labels: {farm: b}
YAML
prometheus --config.file="$work/prometheus.yml" --storage.tsdb.path="$work/data" \
    --web.listen-address="127.0.0.1:$prometheus_port" --log.level=warn 2>"$work/prometheus.err" &
pids+=($!)

echo "prometheus-farms: collecting for $seconds s (Prometheus on 127.0.0.1:$prometheus_port)"
sleep "$seconds"

# The dashboard's own expressions, with the variables set as Grafana sets them.
dashboard_expr() {
    python3 -c '
import json, sys
d = json.load(open("docs/grafana-dashboard.json"))
panel = [p for p in d["panels"] if p["title"] == sys.argv[1]][0]
target = [t for t in panel["targets"] if t["refId"] == sys.argv[2]][0]
print(target["expr"].replace("$farm", sys.argv[3]).replace("$instance", ".*"))' "$@"
}
urlencode() {
    python3 -c 'import sys, urllib.parse; print(urllib.parse.quote(sys.argv[1], safe=""))' "$1"
}
g=()
add() { # EXPR TAB(0 graph, 1 table)
    local i=${#g[@]}
    g+=("g$i.expr=$(urlencode "$1")&g$i.tab=$2&g$i.stacked=0&g$i.range_input=${seconds}s")
}
add "$(dashboard_expr "Exporter up" A '.*')" 1
add "$(dashboard_expr "Working batches" A b)" 1
add "$(dashboard_expr "Working batches" B '.*')" 1
add "$(dashboard_expr "Batches by status" A '.*')" 0
url="http://127.0.0.1:$prometheus_port/graph?$(IFS='&'; echo "${g[*]}")"
mkdir -p "$(dirname "$out")"
chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
    --disable-background-networking --disable-component-update --disable-sync \
    --user-data-dir="$work/chromium" --window-size=1400,2500 --hide-scrollbars \
    --virtual-time-budget=15000 --screenshot="$out" "$url" 2>"$work/chromium.err" >/dev/null
echo "prometheus-farms: $out"

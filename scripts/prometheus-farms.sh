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

start_picture prometheus-farms

# Farm a and farm b: both number their batches from 1.
declare -A exporter_port
for farm in a b; do
    seed=$([[ $farm == a ]] && echo 1 || echo 2)
    start_farm prometheus-farms "$farm" --seed "$seed" --nodes 40 --batches 60 --speed 20 --failure-rate 30
    exporter_port[$farm]=$farm_exporter_port
done

start_prometheus prometheus-farms 19190 "      - targets: ['127.0.0.1:${exporter_port[a]}']
        labels: {farm: a}
      - targets: ['127.0.0.1:${exporter_port[b]}']
        labels: {farm: b}"
sleep "$seconds"

# The dashboard's own expressions, with the variables set as Grafana sets them.
dashboard_expr() {
    # shellcheck disable=SC2016 # Python's text; "$farm" is Grafana's variable
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
photograph prometheus-farms "$url" "$out" 2500

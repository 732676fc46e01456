#!/usr/bin/env bash
# Pictures of the web monitor on the simulator, in Debian's headless
# Chromium: Batches, Nodes and a batch's details, light and dark, 375 pixels
# wide, and in Japanese. Prints each picture's path.
#   scripts/screenshot-web.sh [OUTPUT_DIR]   (default build/screenshots/web)
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

out=${1:-$PWD/build/screenshots/web}
mkdir -p "$out"
KORVANE_TARGETS="korvane-sim korvane-web" bash scripts/build.sh build >/dev/null
start_work
start_sim screenshot-web --seed 1 --batches 60
start_web screenshot-web
base=http://$web_address
# A batch that is working, for its details: the farm starts one within moments.
working=
for _ in $(seq 50); do
    working=$(build/bin/korvane-ctl --host "$sim_address" batches | awk '$5 == "Working" { print $1; exit }')
    [[ -n $working ]] && break
    sleep 0.2
done
[[ -n $working ]] || { echo "screenshot-web: no batch is working" >&2; exit 1; }

shoot() {
    node scripts/photograph-page.mjs "$base" "$out/$1.png" "${@:2}"
    echo "$out/$1.png"
}
for scheme in light dark; do
    shoot "batches-$scheme" /batches scheme=$scheme
    shoot "nodes-$scheme" /nodes scheme=$scheme
    shoot "details-$scheme" "/batches/$working" scheme=$scheme
done
for view in batches nodes; do
    shoot "$view-375" "/$view" width=375 height=740
done
shoot details-375 "/batches/$working" width=375 height=740
for view in batches nodes; do
    shoot "$view-ja" "/$view" locale=ja-JP
done
shoot details-ja "/batches/$working" locale=ja-JP

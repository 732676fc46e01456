#!/usr/bin/env bash
# Configures and builds one build tree.
#   scripts/build.sh [BUILD_DIR] [extra cmake arguments...]
# KORVANE_TARGETS="a b" builds only those targets.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
shift || true
generator=()
if command -v ninja >/dev/null; then
    generator=(-G Ninja)
fi
if [[ ! -f "$dir/CMakeCache.txt" ]]; then
    cmake -S . -B "$dir" "${generator[@]}" "$@"
else
    cmake -S . -B "$dir" "$@" >/dev/null
fi
targets=()
for target in ${KORVANE_TARGETS:-}; do
    targets+=(--target "$target")
done
cmake --build "$dir" -j"$(nproc)" "${targets[@]}"

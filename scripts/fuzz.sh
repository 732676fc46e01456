#!/usr/bin/env bash
# Builds the fuzz targets (fuzz/) with clang, libFuzzer, AddressSanitizer and
# UndefinedBehaviorSanitizer in build-fuzz/ and runs each for a while.
#   scripts/fuzz.sh [SECONDS] [TARGET...]
# SECONDS per target (default 50); TARGETs among those fuzz/CMakeLists.txt
# declares (default: all), which also sets each one's longest input. Each run
# starts from the seeds in fuzz/corpus/TARGET/ (only read) and what earlier
# runs kept in build-fuzz/corpus/TARGET/ (where new inputs go). A crash leaves
# its input in build-fuzz/artifacts/ and fails the script; put that input into
# fuzz/corpus/TARGET/ and write a plain test for it.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-50}
shift || true

KORVANE_TARGETS=korvane_fuzz_targets bash scripts/build.sh build-fuzz -DCMAKE_CXX_COMPILER=clang++ \
    -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVANE_FUZZ=ON -DKORVANE_SANITIZE=address,undefined >/dev/null

# "NAME MAX_LEN" a line, written by fuzz/CMakeLists.txt.
declare -A max_len=()
all=()
while read -r name length; do
    max_len[$name]=$length
    all+=("$name")
done <build-fuzz/fuzz-targets.txt
targets=("$@")
if ((${#targets[@]} == 0)); then
    targets=("${all[@]}")
fi
for target in "${targets[@]}"; do
    if [[ -z $target || -z ${max_len[$target]:-} ]]; then
        echo "fuzz: no target '$target'; the targets are: ${all[*]}" >&2
        exit 2
    fi
done

export ASAN_OPTIONS=detect_leaks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
mkdir -p build-fuzz/artifacts
status=0
for target in "${targets[@]}"; do
    mkdir -p "build-fuzz/corpus/$target"
    log="build-fuzz/fuzz_$target.log"
    if ! "build-fuzz/bin/fuzz_$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -max_len="${max_len[$target]}" -print_final_stats=1 -artifact_prefix="build-fuzz/artifacts/$target-" \
        "build-fuzz/corpus/$target" "fuzz/corpus/$target" >"$log" 2>&1; then
        echo "fuzz $target: FAILED, see $log and build-fuzz/artifacts/" >&2
        tail -n 30 "$log" >&2
        status=1
        continue
    fi
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    coverage=$(grep -E '^#[0-9]+' "$log" | tail -n 1 | sed -n 's/.*cov: \([0-9]*\) ft: \([0-9]*\) corp: \([0-9]*\).*/\1 edges, \2 features, \3 inputs kept/p')
    echo "fuzz $target: $runs runs in $seconds s, $coverage"
done
exit $status

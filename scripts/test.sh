#!/usr/bin/env bash
# Fresh machine to green: installs what is missing, builds, runs every test
# (gtest cases in a shuffled order, the seed printed; the slow ones beside
# the later stages), checks the sources with clang-tidy and cppcheck, builds
# again with AddressSanitizer and UndefinedBehaviorSanitizer and runs every
# test but the slow ones once more, runs the client, worker, panel and
# exporter tests, the code with threads of its own, under ThreadSanitizer, and
# last runs each fuzz target for a bounded time.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/setup.sh

bash scripts/build.sh build

# The slow tests (label slow: ten minutes of a real Prometheus watching a
# moving farm) mostly wait; they run beside everything up to the sanitizer
# builds' tests, and their result is collected before ThreadSanitizer.
slow_log=build/slow-tests.log
# In a process group of their own, so that a failure elsewhere ends them
# together with the programs they started.
setsid ctest --test-dir build --output-on-failure -L slow >"$slow_log" 2>&1 &
slow_pid=$!
trap 'kill -- "-$slow_pid" 2>/dev/null || true' EXIT

# A failure in the shuffled order is reproduced with the same seed:
#   GTEST_SHUFFLE=1 GTEST_RANDOM_SEED=<seed> ctest --test-dir build
seed=$((RANDOM % 99999 + 1))
echo "test: gtest cases shuffled, GTEST_RANDOM_SEED=$seed"
GTEST_SHUFFLE=1 GTEST_RANDOM_SEED=$seed ctest --test-dir build --output-on-failure -j2 -LE slow

bash scripts/lint.sh build

export ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
export LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DKORVANE_SANITIZE=address,undefined
ctest --test-dir build-asan --output-on-failure -j2 -LE slow

echo "test: waiting for the slow tests"
if ! wait "$slow_pid"; then
    cat "$slow_log"
    echo "test: the slow tests failed" >&2
    exit 1
fi
trap - EXIT
tail -n 3 "$slow_log"

threaded="test_client_deadline test_monitorworker test_monitor test_contextmenus test_monitorsimulator test_exporter_farmreader test_exporter_deadline test_exporter_http"
export TSAN_OPTIONS=suppressions=$PWD/tests/tsan.supp:halt_on_error=1:ignore_noninstrumented_modules=1
KORVANE_TARGETS="$threaded korvane_translations" \
    bash scripts/build.sh build-tsan -DCMAKE_BUILD_TYPE=Debug -DKORVANE_SANITIZE=thread
ctest --test-dir build-tsan --output-on-failure -j2 -R "^(${threaded// /|})\$"

# 50 s per target, five targets: within five minutes of fuzzing.
bash scripts/fuzz.sh 50

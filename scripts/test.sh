#!/usr/bin/env bash
# Fresh machine to green, in stages.
#   scripts/test.sh [STAGE...]   (default: all of them)
# The setup (installs what is missing) always runs first; then the stages
# asked for, in this order whatever the order they are given in:
#   build  builds build/
#   lint   clang-tidy and cppcheck over the sources (scripts/lint.sh)
#   plain  every test in build/, the gtest cases in a shuffled order (the seed
#          printed); the slow ones (label slow) beside it and the asan stage
#   asan   builds build-asan/ with AddressSanitizer and
#          UndefinedBehaviorSanitizer and runs every test there but the slow
#          ones
#   tsan   builds the tests of the code with threads of its own (label
#          threaded) in build-tsan/ with ThreadSanitizer and runs them
#   fuzz   runs each fuzz target for 50 s (scripts/fuzz.sh)
#   debian13  the setup, the build, the plain tests and the package in a new
#          Debian 13 tree (scripts/debian13.sh)
# A stage builds the tree it needs when that is missing or out of date, so
# each works alone. Each stage's time is printed at its end, and all of them
# at the end.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

stages=(build lint plain asan tsan fuzz debian13)
declare -A wanted=()
for stage in "$@"; do
    known=
    for s in "${stages[@]}"; do
        [[ $stage == "$s" ]] && known=1
    done
    if [[ -z $known ]]; then
        echo "test: no stage '$stage'; the stages are: ${stages[*]}" >&2
        exit 2
    fi
    wanted[$stage]=1
done
if ((${#wanted[@]} == 0)); then
    for s in "${stages[@]}"; do
        wanted[$s]=1
    done
fi

# What each stage took, for the summary at the end.
done_stages=()
took=()
current=
run_stage() {
    local start=$SECONDS
    current=$1
    "stage_$1"
    current=
    done_stages+=("$1")
    took+=($((SECONDS - start)))
    echo "test: stage $1 took $(minutes $((SECONDS - start)))"
}

summary() {
    local i
    ((${#done_stages[@]})) || return 0
    echo "test: time per stage"
    for i in "${!done_stages[@]}"; do
        printf 'test:   %-8s %s\n' "${done_stages[$i]}" "$(minutes "${took[$i]}")"
    done
    if [[ -n $slow_took ]]; then
        printf 'test:   %-8s %s, in the background\n' slow "$(minutes "$slow_took")"
    fi
    printf 'test:   %-8s %s\n' total "$(minutes "$SECONDS")"
}

slow_pid=
slow_took=
finish() {
    local status=$?
    if [[ -n $slow_pid ]]; then
        kill -- "-$slow_pid" 2>/dev/null || true
    fi
    if [[ -n $current ]]; then
        echo "test: stage $current failed" >&2
    fi
    summary
    exit $status
}
trap finish EXIT

built=
need_build() {
    [[ -n $built ]] && return 0
    bash scripts/build.sh build
    built=1
}

# The slow tests (label slow: ten minutes of a real Prometheus watching a
# moving farm) mostly wait; they run beside the plain and the sanitizer
# tests, and their result is collected before ThreadSanitizer. In a process
# group of their own, so that a failure elsewhere ends them together with the
# programs they started.
slow_log=build/slow-tests.log
start_slow() {
    slow_start=$SECONDS
    setsid ctest --test-dir build --output-on-failure -L '^slow$' --no-tests=error >"$slow_log" 2>&1 &
    slow_pid=$!
}

collect_slow() {
    echo "test: waiting for the slow tests"
    local waited=$SECONDS
    if ! wait "$slow_pid"; then
        slow_pid=
        cat "$slow_log"
        echo "test: the slow tests failed" >&2
        exit 1
    fi
    slow_pid=
    slow_took=$((SECONDS - slow_start))
    tail -n 3 "$slow_log"
    echo "test: the slow tests took $(minutes "$slow_took"), $(minutes $((SECONDS - waited))) of it waited for"
}

stage_setup() {
    bash scripts/setup.sh
}

stage_build() {
    need_build
}

stage_lint() {
    # clang-tidy reads build/compile_commands.json and the generated headers.
    need_build
    bash scripts/lint.sh build
}

stage_plain() {
    need_build
    start_slow
    # A failure in the shuffled order is reproduced with the same seed:
    #   GTEST_SHUFFLE=1 GTEST_RANDOM_SEED=<seed> ctest --test-dir build
    local seed=$((RANDOM % 99999 + 1))
    echo "test: gtest cases shuffled, GTEST_RANDOM_SEED=$seed"
    GTEST_SHUFFLE=1 GTEST_RANDOM_SEED=$seed ctest --test-dir build --output-on-failure -j2 -LE '^slow$' \
        --no-tests=error
}

stage_asan() {
    local -x ASAN_OPTIONS=detect_leaks=1:abort_on_error=0
    local -x LSAN_OPTIONS=suppressions=$PWD/tests/lsan.supp:print_suppressions=0
    local -x UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
    bash scripts/build.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DKORVANE_SANITIZE=address,undefined
    # The package and the accessibility tests are plain-build only (not even
    # defined here); the slow ones run in build/.
    ctest --test-dir build-asan --output-on-failure -j2 -LE '^(slow|package|accessibility)$' --no-tests=error
}

stage_tsan() {
    local -x TSAN_OPTIONS=suppressions=$PWD/tests/tsan.supp:halt_on_error=1:ignore_noninstrumented_modules=1
    # korvane_threaded_tests builds every test labelled threaded.
    KORVANE_TARGETS="korvane_threaded_tests korvane_translations" \
        bash scripts/build.sh build-tsan -DCMAKE_BUILD_TYPE=Debug -DKORVANE_SANITIZE=thread
    ctest --test-dir build-tsan --output-on-failure -j2 -L '^threaded$' --no-tests=error
}

stage_fuzz() {
    # 50 s per target, five targets: within five minutes of fuzzing.
    bash scripts/fuzz.sh 50
}

stage_debian13() {
    bash scripts/debian13.sh
}

run_stage setup
for stage in "${stages[@]}"; do
    [[ -n ${wanted[$stage]:-} ]] || continue
    run_stage "$stage"
    # The slow tests started with plain; collected after asan, or after
    # plain when asan does not run.
    if [[ -n $slow_pid && ($stage == asan || -z ${wanted[asan]:-}) ]]; then
        collect_slow
    fi
done

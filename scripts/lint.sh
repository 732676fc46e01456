#!/usr/bin/env bash
# Static analysis of the project's own sources (not the build trees):
# clang-tidy with the checks in .clang-tidy, over the compile commands of a
# configured build, then cppcheck. Any finding fails the script.
#   scripts/lint.sh [BUILD_DIR]   (default build; configured by scripts/build.sh)
# A finding that is wrong is silenced on its line with NOLINT(check) or
# cppcheck-suppress, followed by the reason.
set -euo pipefail
cd "$(dirname "$0")/.."
dir=${1:-build}
# The project's own folders, the one list of them: clang-tidy's files and
# headers (not the build trees' generated ones) and cppcheck's sources.
sources=(app bench client crash crashreporter ctl exporter fuzz http monitor options reading sim tests texts utf8 web webtexts)
pattern="^$PWD/($(
    IFS='|'
    echo "${sources[*]}"
))/"

if [[ ! -f "$dir/compile_commands.json" ]]; then
    echo "lint: no $dir/compile_commands.json; build first (scripts/build.sh $dir)" >&2
    exit 1
fi
echo "lint: clang-tidy"
run-clang-tidy -quiet -p "$dir" -j"$(nproc)" -header-filter="$pattern" "$pattern" >"$dir/clang-tidy.log" 2>&1 || {
    grep -E 'warning:|error:' "$dir/clang-tidy.log" >&2 || tail -n 30 "$dir/clang-tidy.log" >&2
    echo "lint: clang-tidy found the above; full output in $dir/clang-tidy.log" >&2
    exit 1
}

echo "lint: cppcheck"
includes=()
for d in "${sources[@]}" tests/support; do
    includes+=(-I "$d")
done
# Newer cppcheck (2.17, Debian 13) says where its normal level limits the
# analysis of branches; that note is no finding.
cppcheck --std=c++17 --language=c++ --library=qt --library=scripts/cppcheck.cfg \
    --enable=warning,performance,portability --suppress=missingIncludeSystem \
    --suppress=normalCheckLevelMaxBranches --inline-suppr \
    --error-exitcode=1 --quiet -j"$(nproc)" -I "$dir/generated" -I "$dir/tests/support/generated" \
    "${includes[@]}" "${sources[@]}"
echo "lint: no findings"

#!/usr/bin/env bash
# Builds the Debian package and the symbols archive. Prints the package's path
# as its last line.
#   scripts/package.sh              installs what is missing, then a clean
#                                   RelWithDebInfo build in build-package/
#   scripts/package.sh --reuse DIR  packages the build tree DIR as it is
# Both land in <build tree>/package/: korvane-monitor_<version>_amd64.deb
# (binaries stripped) and korvane-monitor-symbols-<version>.tar.gz (the
# build's symbols/ folder, for reading crash reports).
set -euo pipefail
cd "$(dirname "$0")/.."

if [[ ${1:-} == --reuse ]]; then
    dir=${2:?"usage: scripts/package.sh [--reuse BUILD_DIR]"}
else
    dir=build-package
    bash scripts/setup.sh
    rm -rf "$dir"
    bash scripts/build.sh "$dir" -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKORVANE_BUILD_TESTS=OFF
fi

version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$dir/CMakeCache.txt")
out=$dir/package
rm -f "$out"/korvane-monitor_*.deb "$out"/korvane-monitor-symbols-*.tar.gz
cpack -G DEB --config "$dir/CPackConfig.cmake" -B "$out" >"$dir/cpack.log" ||
    { cat "$dir/cpack.log" >&2; exit 1; }
deb=$out/korvane-monitor_${version}_amd64.deb
[[ -f $deb ]] || { echo "package: $deb was not made" >&2; exit 1; }

if [[ -d $dir/symbols ]]; then
    symbols=$out/korvane-monitor-symbols-$version.tar.gz
    tar --create --sort=name --owner=0 --group=0 --numeric-owner --mtime=@0 \
        --directory="$dir" symbols | gzip -9n >"$symbols"
    echo "symbols: $symbols"
fi
echo "$deb"

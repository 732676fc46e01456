#!/usr/bin/env bash
# Builds the package from this build tree and unpacks it into a fresh root.
#   build_package.sh SOURCE_DIR BUILD_DIR PACKAGE_FILE ROOT
set -euo pipefail
made=$(bash "$1/scripts/package.sh" --reuse "$2" | tail -n 1)
if [[ $made != "$3" ]]; then
    echo "package.sh made \"$made\", expected \"$3\"" >&2
    exit 1
fi
rm -rf "$4"
dpkg-deb -x "$3" "$4"
echo "$3: $(stat -c %s "$3") bytes"

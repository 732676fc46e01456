#!/usr/bin/env bash
# Runs lupdate over the sources into a copy of each catalogue and fails when a
# text has no finished translation or the catalogue is out of date.
set -euo pipefail
#   check_translations.sh LUPDATE SOURCE_ROOT FOLDER...
lupdate=$1
root=$2
shift 2
folders=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
for ts in "$root"/lang/monitor_*.ts; do
    copy=$work/$(basename "$ts")
    cp "$ts" "$copy"
    (cd "$root" && "$lupdate" -silent -locations none -no-obsolete "${folders[@]}" -ts "$copy")
    if grep -q 'type="unfinished"\|type="vanished"\|type="obsolete"' "$copy"; then
        echo "FAIL: $(basename "$ts") has texts without a finished translation:"
        grep -B3 'type="unfinished"' "$copy" | grep '<source>' || true
        status=1
    fi
    if ! cmp -s "$ts" "$copy"; then
        echo "FAIL: $(basename "$ts") is out of date; run: cmake --build <dir> --target update_translations"
        diff "$ts" "$copy" | head -20
        status=1
    fi
done
if ((status == 0)); then
    echo "1 passed, 0 failed"
fi
exit $status

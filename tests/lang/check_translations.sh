#!/usr/bin/env bash
# Runs lupdate over the sources into a copy of each catalogue and fails when
# the catalogue is out of date or a text has no finished, empty-free
# translation of its own (check_catalogue.py).
set -euo pipefail
#   check_translations.sh LUPDATE SOURCE_ROOT FOLDER...
lupdate=$1
root=$2
shift 2
folders=("$@")
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
status=0
catalogues=0
for ts in "$root"/lang/monitor_*.ts; do
    catalogues=$((catalogues + 1))
    copy=$work/$(basename "$ts")
    cp "$ts" "$copy"
    (cd "$root" && "$lupdate" -silent -locations none -no-obsolete "${folders[@]}" -ts "$copy")
    if ! python3 "$here/check_catalogue.py" "$copy" "$here/same_as_english.txt"; then
        status=1
    fi
    if ! cmp -s "$ts" "$copy"; then
        echo "FAIL: $(basename "$ts") is out of date; run: cmake --build <dir> --target update_translations"
        diff "$ts" "$copy" | head -20
        status=1
    fi
done
if ((status == 0)); then
    echo "$catalogues catalogues passed"
fi
exit $status

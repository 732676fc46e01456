#!/usr/bin/env bash
# The symbols archive beside the package holds, for each packaged program, the
# symbols of exactly that stripped binary, under the module id by which crash
# report readers look them up. A build that makes no symbols/ skips it (77).
#   test_symbols.sh ROOT ARCHIVE BUILD_DIR
set -euo pipefail
root=$1
archive=$2
if [[ ! -d $3/symbols ]]; then
    echo "this build makes no symbols/"
    exit 77
fi
source "$(dirname "$0")/testlib.sh"

# The module id: the build id's first 16 bytes as a GUID whose first three
# fields are byte-swapped, in capitals, then the age 0.
module_id()
{
    local b
    b=$(readelf --notes "$1" | sed -n 's/^ *Build ID: //p')
    b=${b:6:2}${b:4:2}${b:2:2}${b:0:2}${b:10:2}${b:8:2}${b:14:2}${b:12:2}${b:16:16}
    echo "${b^^}0"
}

for program in korvane-monitor crashreporter; do
    id=$(module_id "$root/usr/lib/korvane-monitor/$program")
    expect_equal "symbols of the packaged $program" "MODULE Linux x86_64 $id $program" \
        "$(tar --extract --gzip --to-stdout --file="$archive" "symbols/$program/$id/$program.sym" 2>&1 |
            head -n 1)"
done
finish

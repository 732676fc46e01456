#!/usr/bin/env bash
# Compares an unpacked package with the expected listing: every file and link,
# its mode and a link's target. Also: every link resolves once installed, and
# no program carries its symbols.
#   check_layout.sh ROOT EXPECTED_LISTING
set -euo pipefail
root=$1
source "$(dirname "$0")/testlib.sh"

listing=$(cd "$root" && find . -mindepth 1 \( -type l -printf '%M %P -> %l\n' \) -o \
    \( ! -type d -printf '%M %P\n' \) | LC_ALL=C sort -k 2,2)
expect_equal "files and links of the package" "$(<"$2")" "$listing"

# A link resolves inside the package or, for Qt's catalogues, on this system.
dangling=
while IFS= read -r link; do
    target=$(realpath -m "/$(dirname "$link")/$(readlink "$root/$link")")
    [[ -e $root$target || -e $target ]] || dangling+="$link -> $target"$'\n'
done < <(cd "$root" && find . -type l -printf '%P\n' | LC_ALL=C sort)
expect_equal "every link resolves" "" "${dangling%$'\n'}"

unstripped=
while IFS= read -r file; do
    if [[ $(file -b "$root/$file") == ELF* && $(file -b "$root/$file") != *", stripped" ]]; then
        unstripped+="$file"$'\n'
    fi
done < <(cd "$root" && find . -type f -printf '%P\n' | LC_ALL=C sort)
expect_equal "programs stripped" "" "${unstripped%$'\n'}"
finish

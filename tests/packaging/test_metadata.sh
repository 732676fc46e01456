#!/usr/bin/env bash
# The package's metadata through Debian's own validators: control fields,
# desktop entry, AppStream, manual pages, lintian.
#   test_metadata.sh ROOT PACKAGE_FILE EXPECTED_CONTROL
set -euo pipefail
root=$1
package=$2
source "$(dirname "$0")/testlib.sh"

# Depends names the libraries by their release's package names and
# versions (libjsoncpp25 or 26, libssl3 or libssl3t64): compared without
# the version, the soname and the t64 rename, it says which libraries.
expect_equal "control fields" "$(<"$3")" \
    "$(dpkg-deb --field "$package" Package Version Architecture Maintainer Depends Recommends Section \
        Priority Homepage | sed -E '/^Depends:/ { s/ \([^)]*\)//g; s/t64(,|$)/\1/g; s/([a-z+-])[0-9.]+(,|$)/\1\2/g }')"

entry=$root/usr/share/applications/com.korvane.Monitor.desktop
expect_equal "desktop-file-validate" "" "$(desktop-file-validate "$entry" 2>&1 || echo "exit status $?")"

# With the tree, the metainfo's launchable is checked against the desktop entry.
# --strict fails on any remark, even one for information; what the tool says
# and how differs by release, so it is shown only when it fails.
expect_equal "appstreamcli validate-tree --strict" "" \
    "$(output=$(appstreamcli validate-tree --no-net --strict "$root" 2>&1) || echo "$output
exit status $?")"

# The menu finds the monitor in each of the program's languages.
metainfo=$root/usr/share/metainfo/com.korvane.Monitor.metainfo.xml
for code in de ru fr es ja zh_CN; do
    expect_equal "desktop entry in $code" "GenericName[$code] Comment[$code] Keywords[$code]" \
        "$(grep -o -E "^(GenericName|Comment|Keywords)\[$code\]" "$entry" | paste -sd ' ')"
    expect_equal "AppStream summary and description in $code" "2" \
        "$(grep -c -E "<(summary|p) xml:lang=\"$code\">" "$metainfo")"
done
expect_equal "the menu's comment in Japanese" "Comment[ja]=分散処理サーバーのバッチとワーカーノードを監視・制御します" \
    "$(grep -F 'Comment[ja]=' "$entry")"

declare -A names=(
    [korvane-monitor]="korvane-monitor - operator's monitor for a distributed processing server"
    [korvane-ctl]="korvane-ctl - control tool for a distributed processing server"
    [korvane-sim]="korvane-sim - simulated processing server for demonstrations and tests"
    [korvane-exporter]="korvane-exporter - Prometheus exporter of a distributed processing server's farm"
    [korvane-web]="korvane-web - web monitor of a distributed processing server's farm"
)
for program in korvane-monitor korvane-ctl korvane-sim korvane-exporter korvane-web; do
    page=$root/usr/share/man/man1/$program.1.gz
    rendered=$(MANWIDTH=200 man --warnings -l "$page" 2>"$root.man-warnings" || echo "exit status $?")
    expect_equal "man -l $program.1: NAME" "NAME
       ${names[$program]}" "$(sed -n '/^NAME$/,/^$/p' <<<"$rendered" | sed '$d')"
    expect_equal "man -l $program.1: no warnings" "" "$(<"$root.man-warnings")"
    rm -f "$root.man-warnings"
done

expect_equal "conffiles" "/etc/default/korvane-exporter
/etc/default/korvane-web" "$(dpkg-deb --ctrl-tarfile "$package" |
    tar --extract --to-stdout ./conffiles)"

# Lintian's own note about running as root goes to standard error.
expect_equal "lintian: no errors, no warnings" "" \
    "$(lintian --fail-on error,warning "$package" 2>/dev/null || echo "exit status $?")"
finish

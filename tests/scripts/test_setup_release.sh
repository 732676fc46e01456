#!/usr/bin/env bash
# The setup on a system it does not install for: it names the releases it
# does install for and that system, and stops before it installs anything.
# Each system's /etc/os-release is bound over the real one in a mount
# namespace of its own (root only). Then the versioned name it reads from the
# release's package lists: clang's runtime package is that of the clang here.
#   test_setup_release.sh SOURCE_DIR WORK_DIR
set -euo pipefail
source_dir=$1
work=$2
source "$source_dir/tests/packaging/testlib.sh"
source "$source_dir/scripts/lib.sh"

if [[ $(id -u) -ne 0 ]]; then
    echo "skipped: binding a file over /etc/os-release needs root"
    exit 77
fi
mkdir -p "$work"
trap 'rm -rf "$work"' EXIT

# setup_on NAME OS_RELEASE_TEXT: setup's exit status and messages on that system
setup_on() {
    printf '%s' "$2" >"$work/$1"
    # shellcheck disable=SC2016 # the inner shell's arguments
    unshare --mount bash -c 'mount --bind "$1" /etc/os-release && bash "$2/scripts/setup.sh"' \
        setup "$work/$1" "$source_dir" 2>&1 && echo "exit status 0" || echo "exit status $?"
}

expect_equal "Ubuntu" "setup: this script installs the packages of Debian 12 (bookworm) or 13 (trixie); this system is Ubuntu 24.04.1 LTS
exit status 1" "$(setup_on ubuntu 'PRETTY_NAME="Ubuntu 24.04.1 LTS"
NAME="Ubuntu"
VERSION_ID="24.04"
ID=ubuntu
ID_LIKE=debian
')"
expect_equal "Debian 11" "setup: this script installs the packages of Debian 12 (bookworm) or 13 (trixie); this system is Debian GNU/Linux 11 (bullseye)
exit status 1" "$(setup_on bullseye 'PRETTY_NAME="Debian GNU/Linux 11 (bullseye)"
NAME="Debian GNU/Linux"
VERSION_ID="11"
ID=debian
')"
expect_equal "no name" "setup: this script installs the packages of Debian 12 (bookworm) or 13 (trixie); this system is unknown
exit status 1" "$(setup_on empty '')"

clang_major=$(clang --version | sed -En '1s/.*clang version ([0-9]+)\..*/\1/p')
expect_equal "clang's package on this release" "clang-$clang_major" "$(release_package clang 'clang-[0-9]+')"
expect_equal "its runtimes installed" "install ok installed" \
    "$(dpkg-query -W -f='${Status}' "libclang-rt-$clang_major-dev" 2>&1)"
finish

#!/usr/bin/env bash
# Installs everything the build, the tests and the run script need, from
# Debian 12's own packages. Safe to run again: only missing packages are fetched.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config ccache
    qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-translations-l10n
    libjsoncpp-dev libgtest-dev libgmock-dev libbenchmark-dev
    xvfb xauth x11-apps x11-utils imagemagick locales tzdata lldb
    clang libclang-rt-14-dev clang-tidy cppcheck
)

missing=()
for p in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$p")
    fi
done

if ((${#missing[@]})); then
    cmd="apt-get install -y --no-install-recommends ${missing[*]}"
    if [[ $(id -u) -ne 0 ]]; then
        echo "setup: missing packages; run as root:" >&2
        echo "  apt-get update && $cmd" >&2
        exit 1
    fi
    echo "setup: installing ${missing[*]}"
    export DEBIAN_FRONTEND=noninteractive
    apt-get update -qq
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

# A German locale for the tests that prove numbers ignore the user's region.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
    if [[ $(id -u) -eq 0 ]]; then
        sed -i 's/^# *\(de_DE.UTF-8 UTF-8\)/\1/' /etc/locale.gen
        locale-gen >/dev/null
    else
        echo "setup: no de_DE.UTF-8 locale; the locale test will be skipped" >&2
    fi
fi
echo "setup: all packages present"

#!/usr/bin/env bash
# Installs everything the build, the tests and the run script need, from
# the release's own packages, on Debian 12 (bookworm) or 13 (trixie)
# (fonts-noto-cjk draws the Japanese and Chinese texts). Safe to run again:
# only missing packages are fetched.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
source "$root/scripts/lib.sh"

IFS='|' read -r id version name < <(
    . /etc/os-release 2>/dev/null || true
    echo "${ID:-}|${VERSION_ID:-}|${PRETTY_NAME:-unknown}"
)
if [[ $id != debian || ($version != 12 && $version != 13) ]]; then
    echo "setup: this script installs the packages of Debian 12 (bookworm) or 13 (trixie);" \
        "this system is $name" >&2
    exit 1
fi

# clang's sanitizer and fuzzer runtimes are packaged under clang's major
# version, which differs between releases: ask the release which it is.
clang_runtime=$(release_package clang 'clang-[0-9]+' | sed 's/^clang-/libclang-rt-/; s/$/-dev/')

packages=(
    build-essential cmake ninja-build pkg-config ccache
    # icons, manual pages, the Debian package and its checks, Wayland
    librsvg2-bin help2man dpkg-dev file lintian desktop-file-utils appstream man-db
    bash-completion qt6-wayland weston
    qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-translations-l10n
    libjsoncpp-dev libgtest-dev libgmock-dev libbenchmark-dev
    xvfb xauth x11-apps x11-utils imagemagick locales tzdata lldb
    fonts-noto-cjk
    libcpp-httplib-dev prometheus systemd
    # the web monitor's event-driven HTTP server: Boost.Beast and Asio (headers
    # only), and the browser its tests drive through Playwright
    libboost-dev chromium
    # network namespaces, veth pairs and tc for the network fault tests
    iproute2
    # kill(1), for the web monitor's reload in the unit tests
    procps
    # the exporter's web configuration: YAML, TLS, bcrypt through crypt(), and its tests
    libyaml-cpp-dev libssl-dev libcrypt-dev openssl curl
    clang "$clang_runtime" clang-tidy cppcheck
    # the accessibility tests: the AT-SPI bus read from Python, keys sent by xdotool
    at-spi2-core dbus dbus-x11 python3-pyatspi python3-dogtail xdotool
)

need_packages setup "${packages[@]}"

# A German locale for the tests that prove numbers ignore the user's region.
if ! locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
    if [[ $(id -u) -eq 0 ]]; then
        sed -i 's/^# *\(de_DE.UTF-8 UTF-8\)/\1/' /etc/locale.gen
        locale-gen >/dev/null
    else
        echo "setup: no de_DE.UTF-8 locale; the locale test will be skipped" >&2
    fi
fi
# The web side's tools (the API description's linter) from the npm registry,
# pinned by web/ui/package-lock.json; installed again only when it changed.
command -v npm >/dev/null || need_packages setup nodejs npm
ui=$root/web/ui
if [[ ! -f $ui/node_modules/.package-lock.json || $ui/package-lock.json -nt $ui/node_modules/.package-lock.json ]]; then
    echo "setup: installing web/ui's packages from the npm registry (npm ci)"
    (cd "$ui" && npm ci --no-audit --no-fund --loglevel=error >/dev/null)
fi

# Breakpad, the crash handler's client library, is not packaged for Debian.
# The npm registry's "minidump" package carries its whole source tree and
# Breakpad's own minidump_stackwalk, minidump_dump and dump_syms. Pinned by
# version and tarball integrity in breakpad/minidump.pin (which the build
# reads too); unpacked once into .cache/.
pin() { sed -n "s/^$1=//p" "$root/breakpad/minidump.pin"; }
breakpad_version=$(pin version)
breakpad_integrity=$(pin integrity)
if [[ -z $breakpad_version || -z $breakpad_integrity ]]; then
    echo "setup: breakpad/minidump.pin needs a version= and an integrity= line" >&2
    exit 1
fi
breakpad_cache=$root/.cache/minidump-$breakpad_version
if [[ ! -f "$breakpad_cache/.unpacked" ]]; then
    command -v npm >/dev/null || need_packages setup npm
    download=$(mktemp -d)
    trap 'rm -rf "$download"' EXIT
    echo "setup: fetching minidump@$breakpad_version (Breakpad) from the npm registry"
    (cd "$download" && npm pack --silent "minidump@$breakpad_version" >/dev/null 2>&1)
    tarball=$download/minidump-$breakpad_version.tgz
    actual="sha512-$(sha512sum "$tarball" | cut -c1-128 | tr a-f A-F | basenc --base16 -d | base64 -w0)"
    if [[ "$actual" != "$breakpad_integrity" ]]; then
        echo "setup: minidump-$breakpad_version.tgz has integrity $actual, expected $breakpad_integrity" >&2
        exit 1
    fi
    rm -rf "$breakpad_cache"
    mkdir -p "$breakpad_cache"
    tar -xzf "$tarball" -C "$breakpad_cache"
    touch "$breakpad_cache/.unpacked"
fi

echo "setup: all packages present"

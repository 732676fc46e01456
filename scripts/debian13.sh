#!/usr/bin/env bash
# This tree on Debian 13 (trixie), from a Debian 12 or 13 host, as root:
#   scripts/debian13.sh
# A new trixie tree from Debian's archive (debootstrap) in a temporary
# folder, with this tree's files copied in. There: the setup, the build,
# every plain test but the slow ones (ten minutes of a moving farm, which
# the host's plain stage runs), and the Debian package built,
# installed and its programs started; the installed monitor's picture, on
# the simulator under Xvfb there, lands in build/debian13-monitor.png.
# Everything it made is ended, unmounted and removed when it ends, also on
# failure; nothing is kept for a next run.
# DEBIAN13_MIRROR is the archive (default http://deb.debian.org/debian).
# shellcheck disable=SC2016 # the commands run inside the tree expand there
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/lib.sh

if [[ $(id -u) -ne 0 ]]; then
    echo "debian13: debootstrap, mount and chroot need root" >&2
    exit 1
fi
need_packages debian13 debootstrap

mirror=${DEBIAN13_MIRROR:-http://deb.debian.org/debian}
tree=$(mktemp -d /var/tmp/korvane-debian13.XXXXXX)
log=$tree.log

# Every process whose root is the tree is ended, then every mount under it
# is taken down, deepest first; the tree is removed only when no mount is
# left in it, and never across into another file system.
mounts_in_tree() {
    findmnt -rn -o TARGET | awk -v tree="$tree" '$0 == tree || index($0, tree "/") == 1'
}
remove_tree() {
    local status=$? proc mounts
    for proc in /proc/[0-9]*; do
        [[ $(readlink "$proc/root" 2>/dev/null) == "$tree" ]] && kill -KILL "${proc#/proc/}" 2>/dev/null
    done
    mounts=$(mounts_in_tree | sort -r)
    for mount in $mounts; do
        umount "$mount" 2>/dev/null || umount -l "$mount"
    done
    if [[ -n $(mounts_in_tree) ]]; then
        echo "debian13: mounts remain under $tree; left in place" >&2
        exit 1
    fi
    rm -rf --one-file-system "$tree" "$log"
    exit "$status"
}
trap remove_tree EXIT

start=$SECONDS
step() {
    echo "debian13: $1 ($(minutes $((SECONDS - start))))"
}

step "debootstrap trixie from $mirror into $tree"
debootstrap --variant=minbase trixie "$tree" "$mirror" >"$log" 2>&1 ||
    { tail -n 20 "$log" >&2; exit 1; }

# The tree a mount point of its own, so that "/" inside is one (ip netns
# makes it a slave), and private, so that nothing under it spreads.
mount --bind "$tree" "$tree"
mount --make-private "$tree"
mount -t proc proc "$tree/proc"
mount -t sysfs sysfs "$tree/sys"
mount --rbind /dev "$tree/dev"
mount --make-rslave "$tree/dev"
mount -t tmpfs tmpfs "$tree/run"
mount -t tmpfs tmpfs "$tree/tmp"
cp /etc/resolv.conf "$tree/etc/resolv.conf"
# Certificate authorities this host trusts locally (a site's proxy, say),
# for the npm registry's TLS inside the tree.
if compgen -G '/usr/local/share/ca-certificates/*.crt' >/dev/null; then
    mkdir -p "$tree/usr/local/share/ca-certificates"
    cp /usr/local/share/ca-certificates/*.crt "$tree/usr/local/share/ca-certificates/"
fi

# This tree's files as they are, tracked or new, but nothing ignored (no
# build trees, no caches).
mkdir "$tree/src"
git ls-files -z --cached --others --exclude-standard | tar --null -cf - -T - | tar -xf - -C "$tree/src"

inside() {
    chroot "$tree" /usr/bin/env -i HOME=/root LANG=C.UTF-8 TERM=dumb DEBIAN_FRONTEND=noninteractive \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        NODE_EXTRA_CA_CERTS=/etc/ssl/certs/ca-certificates.crt \
        bash -c "set -euo pipefail; cd /src; $1"
}

step "setup"
# ca-certificates first: it takes in the copied authorities.
inside 'apt-get update -qq && apt-get install -y -qq --no-install-recommends ca-certificates >/dev/null'
inside 'bash scripts/setup.sh'

step "build"
inside 'bash scripts/build.sh build'

step "plain tests"
inside 'ctest --test-dir build --output-on-failure -j2 --no-tests=error -LE "^slow$"'

step "the package, installed"
# From a folder apt's own user may read.
inside 'install -m 644 build/package/korvane-monitor_*_amd64.deb /tmp/ &&
    apt-get install -y -qq --no-install-recommends /tmp/korvane-monitor_*_amd64.deb >/dev/null'
inside 'for program in korvane-monitor korvane-ctl korvane-web; do echo "debian13: $program --version: $($program --version)"; done'
# The installed monitor on the installed simulator under Xvfb there: it
# must still run after four seconds, and its picture comes out here.
inside 'source scripts/lib.sh
    start_work
    korvane-sim --listen 127.0.0.1:0 --seed 1 >"$work/sim.out" &
    pids+=($!)
    picture_new_monitor debian13 korvane-monitor "$(listening_address "$work/sim.out")" /tmp/monitor.png
    kill -0 "${pids[-1]}" || { echo "debian13: the installed monitor ended" >&2; exit 1; }'
mkdir -p build
cp "$tree/tmp/monitor.png" build/debian13-monitor.png
echo "debian13: the installed monitor: build/debian13-monitor.png"

step "done"

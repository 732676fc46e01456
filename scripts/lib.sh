# shellcheck shell=bash
# Shared by the scripts: installing Debian packages, waiting for a program to
# listen, a virtual screen, a picture of the monitor's window, and the
# Prometheus pictures' farms. Sourced.

# need_packages WHO PACKAGE...: installs those of the Debian packages that are
# missing. Only root may; anyone else is told the exact command to run as
# root, and the script stops.
need_packages() {
    local who=$1 p missing=()
    shift
    for p in "$@"; do
        if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
            missing+=("$p")
        fi
    done
    ((${#missing[@]})) || return 0
    if [[ $(id -u) -ne 0 ]]; then
        echo "$who: missing packages; run as root:" >&2
        echo "  apt-get update && apt-get install -y --no-install-recommends ${missing[*]}" >&2
        exit 1
    fi
    echo "$who: installing ${missing[*]}"
    DEBIAN_FRONTEND=noninteractive apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# release_package PACKAGE PATTERN: the name of the package, matching the
# extended regular expression PATTERN, that this release's PACKAGE depends on
# (clang on clang-14 or clang-19, say). The package lists are read first
# when they are missing, which needs root.
release_package() {
    local name
    name=$(dependency_named "$1" "$2")
    if [[ -z $name && $(id -u) -eq 0 ]]; then
        DEBIAN_FRONTEND=noninteractive apt-get update -qq
        name=$(dependency_named "$1" "$2")
    fi
    if [[ -z $name ]]; then
        echo "setup: this release's package lists name no $1; run as root: apt-get update" >&2
        return 1
    fi
    echo "$name"
}

dependency_named() {
    apt-cache depends "$1" 2>/dev/null | sed -En "s/^ *Depends: ($2)\$/\1/p" | head -n 1
}

# minutes SECONDS: "M min S s"
minutes() {
    echo "$(($1 / 60)) min $(($1 % 60)) s"
}

# listening_address LOG: the ADDRESS:PORT of the first "listening on
# ADDRESS:PORT" line that korvane-sim or korvane-exporter writes to LOG; fails
# when none comes within ten seconds.
listening_address() {
    local address
    for _ in $(seq 100); do
        address=$(sed -n 's/^listening on //p' "$1" | head -n 1)
        if [[ -n $address ]]; then
            echo "$address"
            return 0
        fi
        sleep 0.1
    done
    return 1
}

# start_xvfb WHO: a virtual screen of its own, after start_work. Sets display
# (":N"); Xvfb is ended with the other programs. Fails, saying so, when the
# screen does not answer within five seconds.
start_xvfb() {
    local xvfb number
    # Xvfb takes a display nobody holds and writes its number once it listens:
    # a display picked here could be another server's, which would answer.
    Xvfb -displayfd 3 -screen 0 1280x900x24 -nolisten tcp 3>"$work/xvfb.display" >"$work/xvfb.log" 2>&1 &
    xvfb=$!
    pids+=("$xvfb")
    for _ in $(seq 50); do
        kill -0 "$xvfb" 2>/dev/null || break
        number=$(cat "$work/xvfb.display")
        if [[ -n $number ]]; then
            display=:$number
            DISPLAY=$display xdpyinfo >/dev/null 2>&1 && return 0
        fi
        sleep 0.1
    done
    if kill "$xvfb" 2>/dev/null; then
        echo "$1: Xvfb did not answer within 5 s; ended it" >&2
    else
        echo "$1: Xvfb ended before it answered" >&2
    fi
    wait "$xvfb" 2>/dev/null || true
    tail -n 5 "$work/xvfb.log" >&2
    return 1
}

# picture_new_monitor WHO MONITOR ADDRESS FILE: MONITOR connected to
# ADDRESS on a virtual screen of its own (after start_work), and its picture
# in FILE four seconds later; the monitor is the last of $pids.
picture_new_monitor() {
    start_xvfb "$1" || return 1
    DISPLAY=$display "$2" --connect "$3" >/dev/null &
    pids+=($!)
    sleep 4
    screenshot_monitor "$display" "$4"
}

# screenshot_monitor DISPLAY FILE: the monitor's own window when it can be
# found, else the whole screen.
screenshot_monitor() {
    local window
    window=$(DISPLAY=$1 xwininfo -name "Korvane Network Monitor" 2>/dev/null | awk '/Window id:/ {print $4}')
    DISPLAY=$1 import -window "${window:-root}" "$2"
}

# need_chromium WHO: Chromium, where the setup has not brought it.
need_chromium() {
    command -v chromium >/dev/null || need_packages "$1" chromium
}

# start_work: a folder of its own ($work) and a list of started programs
# ($pids, append with pids+=($!)); at exit the programs are ended and the
# folder removed.
start_work() {
    work=$(mktemp -d)
    pids=()
    trap end_work EXIT
}

end_work() {
    local i
    # The last started first: the monitor goes before its screen and server.
    for ((i = ${#pids[@]} - 1; i >= 0; i--)); do
        kill "${pids[$i]}" 2>/dev/null || true
    done
    wait 2>/dev/null || true
    rm -rf "$work"
}

# start_sim WHO SIM_ARGS...: korvane-sim with SIM_ARGS on a loopback port of
# its own, after start_work; its output in $work/sim.out, its messages on the
# caller's stderr. Sets $sim_address (ADDRESS:PORT).
start_sim() {
    local who=$1
    shift
    build/bin/korvane-sim --listen 127.0.0.1:0 "$@" >"$work/sim.out" &
    pids+=($!)
    # shellcheck disable=SC2034 # the caller's
    sim_address=$(listening_address "$work/sim.out") || { echo "$who: the simulator did not start" >&2; exit 1; }
}

# start_web WHO: korvane-web on loopback reading the simulator of start_sim;
# sets $web_address.
start_web() {
    build/bin/korvane-web --server "$sim_address" --web.listen-address 127.0.0.1:0 >"$work/web.out" 2>"$work/web.err" &
    pids+=($!)
    # shellcheck disable=SC2034 # the caller's
    web_address=$(listening_address "$work/web.out") || { echo "$1: korvane-web did not start" >&2; exit 1; }
}

# start_picture WHO: what each picture of Prometheus' pages starts with:
# Chromium, korvane-sim and korvane-exporter built, and start_work.
start_picture() {
    need_chromium "$1"
    KORVANE_TARGETS="korvane-sim korvane-exporter" bash scripts/build.sh build >/dev/null
    start_work
}

# listening_port LOG WHO: the port of a program's "listening on ADDR:PORT" line.
listening_port() {
    local address
    address=$(listening_address "$1") || { echo "$2: nothing listens, see $1" >&2; exit 1; }
    echo "${address##*:}"
}

# start_prometheus WHO FIRST_PORT STATIC_CONFIGS: a Prometheus server in $work
# scraping every second, on the first loopback port from FIRST_PORT that
# nobody answers (set as $prometheus_port); STATIC_CONFIGS is the YAML list
# under static_configs.
start_prometheus() {
    prometheus_port=$2
    while (exec 3<>"/dev/tcp/127.0.0.1/$prometheus_port") 2>/dev/null; do
        prometheus_port=$((prometheus_port + 1))
    done
    cat >"$work/prometheus.yml" <<YAML
global:
  scrape_interval: 1s
  scrape_timeout: 1s
scrape_configs:
  - job_name: korvane
    static_configs:
$3
YAML
    prometheus --config.file="$work/prometheus.yml" --storage.tsdb.path="$work/data" \
        --web.listen-address="127.0.0.1:$prometheus_port" --log.level=warn 2>"$work/prometheus.err" &
    pids+=($!)
    # shellcheck disable=SC2154 # $seconds: the caller's collecting time
    echo "$1: collecting for $seconds s (Prometheus on 127.0.0.1:$prometheus_port)"
}

# photograph WHO URL OUTPUT HEIGHT: headless Chromium's picture of a page,
# 1400 pixels wide.
photograph() {
    mkdir -p "$(dirname "$3")"
    chromium --headless --no-sandbox --disable-gpu --disable-quic --no-first-run \
        --disable-background-networking --disable-component-update --disable-sync \
        --user-data-dir="$work/chromium" --window-size="1400,$4" --hide-scrollbars \
        --virtual-time-budget=15000 --screenshot="$3" "$2" 2>"$work/chromium.err" >/dev/null
    echo "$1: $3"
}

# start_farm WHO NAME SIM_ARGS...: korvane-sim with SIM_ARGS and a
# korvane-exporter watching it, both on loopback, their output in
# $work/sim-NAME.out and $work/exporter-NAME.*; sets $farm_exporter_port.
start_farm() {
    local who=$1 name=$2 sim_port
    shift 2
    build/bin/korvane-sim --listen 127.0.0.1:0 "$@" >"$work/sim-$name.out" 2>/dev/null &
    pids+=($!)
    sim_port=$(listening_port "$work/sim-$name.out" "$who")
    build/bin/korvane-exporter --server "127.0.0.1:$sim_port" --web.listen-address 127.0.0.1:0 \
        >"$work/exporter-$name.out" 2>"$work/exporter-$name.err" &
    pids+=($!)
    # shellcheck disable=SC2034 # the caller's
    farm_exporter_port=$(listening_port "$work/exporter-$name.out" "$who")
}

# Shared by the scripts that start the programs: waiting for a program to
# listen, a virtual screen, and a picture of the monitor's window. Sourced.

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

# start_xvfb: a virtual screen of its own. Sets display (":N") and xvfb (its
# process id, for the caller's clean-up).
start_xvfb() {
    display=:$((90 + RANDOM % 100))
    Xvfb "$display" -screen 0 1280x900x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb=$!
    for _ in $(seq 50); do
        DISPLAY=$display xdpyinfo >/dev/null 2>&1 && return 0
        sleep 0.1
    done
}

# screenshot_monitor DISPLAY FILE: the monitor's own window when it can be
# found, else the whole screen.
screenshot_monitor() {
    local window
    window=$(DISPLAY=$1 xwininfo -name "Korvane Network Monitor" 2>/dev/null | awk '/Window id:/ {print $4}')
    DISPLAY=$1 import -window "${window:-root}" "$2"
}

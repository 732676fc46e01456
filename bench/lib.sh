# shellcheck shell=bash
# What the benchmarks' run scripts share: ending what they started, failing
# with the logs' place, and the port a program says it listens on.
#   source bench/lib.sh   (after setting $logs)

# stop PID: SIGTERM, up to five seconds, then SIGKILL.
stop() {
    local pid=$1
    [ -n "$pid" ] || return 0
    kill "$pid" 2>/dev/null
    for _ in $(seq 50); do
        kill -0 "$pid" 2>/dev/null || break
        sleep 0.1
    done
    kill -9 "$pid" 2>/dev/null
    wait "$pid" 2>/dev/null
}

fail() {
    # shellcheck disable=SC2154 # $logs: the caller's
    echo "run.sh: $*; logs in $logs" >&2
    exit 1
}

# The "listening on ADDR:PORT" line a program prints first, waited for.
listening_port() {
    local line
    for _ in $(seq 100); do
        line=$(head -n 1 "$1" 2>/dev/null)
        case $line in *listening\ on*:*)
            echo "${line##*:}"
            return 0
            ;;
        esac
        sleep 0.1
    done
    return 1
}

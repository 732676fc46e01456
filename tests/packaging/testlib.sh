# Shared by the package tests: comparisons that show what differs, and waits.

failures=0

# expect_equal WHAT EXPECTED ACTUAL
expect_equal()
{
    if [[ $2 != "$3" ]]; then
        echo "FAILED: $1" >&2
        diff -u <(printf '%s\n' "$2") <(printf '%s\n' "$3") | tail -n +3 >&2 || true
        failures=$((failures + 1))
    else
        echo "ok: $1"
    fi
}

# wait_for SECONDS COMMAND...: true once COMMAND succeeds, false after SECONDS
wait_for()
{
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        ((SECONDS < deadline)) || return 1
        sleep 0.1
    done
}

finish()
{
    if ((failures)); then
        echo "$failures check(s) failed" >&2
        exit 1
    fi
}

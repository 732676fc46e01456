#!/usr/bin/env bash
# The API description: Redocly's linter finds nothing in it, under its
# strict rules.
#   test_openapi.sh SOURCE_DIR
set -euo pipefail
source "$1/tests/packaging/testlib.sh"
ui=$1/web/ui
# No telemetry, no update check: nothing leaves this machine.
export REDOCLY_TELEMETRY=off REDOCLY_SUPPRESS_UPDATE_NOTICE=true NO_UPDATE_NOTIFIER=1
output=$(cd "$ui" && npx --no-install redocly lint --config redocly.yaml --format=stylish ../openapi.json 2>&1 |
    grep -v '^npm warn' || echo "exit status $?")
expect_equal "redocly lint: valid" "yes" "$(grep -q 'Your API description is valid' <<<"$output" && echo yes || echo "$output")"
expect_equal "redocly lint: no warnings" "" "$(grep -E 'warning|error' <<<"$output" || true)"
finish

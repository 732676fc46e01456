#!/usr/bin/env bash
# Bash completion of korvane-ctl as installed: bash-completion loads it on
# demand from the package's completions folder, then answers partial lines.
#   test_completion.sh ROOT
set -euo pipefail
root=$1
source "$(dirname "$0")/testlib.sh"
source /usr/share/bash-completion/bash_completion

# The on-demand loader looks in XDG_DATA_DIRS, the package's usr/share first.
XDG_DATA_DIRS=$root/usr/share __load_completion korvane-ctl || true
expect_equal "registered on demand" "complete -F _korvane_ctl korvane-ctl" "$(complete -p korvane-ctl 2>&1)"
shopt -s extdebug
expect_equal "loaded from the package" "_korvane_ctl 3 $root/usr/share/bash-completion/completions/korvane-ctl" \
    "$(declare -F _korvane_ctl)"
shopt -u extdebug

# complete LINE WORD...: the words bash makes of LINE, the cursor at its end
complete_line()
{
    COMP_LINE=$1
    COMP_POINT=${#COMP_LINE}
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    _korvane_ctl korvane-ctl "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    printf '%s\n' "${COMPREPLY[@]}"
}

expect_equal "korvane-ctl pa" "pause-batch
pause-node" "$(complete_line "korvane-ctl pa" korvane-ctl pa)"
expect_equal "korvane-ctl --" "--host
--port
--json
--help
--version" "$(complete_line "korvane-ctl --" korvane-ctl --)"
expect_equal "korvane-ctl --host=farm:5840 re" "resume-batch
resume-node" "$(complete_line "korvane-ctl --host=farm:5840 re" korvane-ctl --host = farm : 5840 re)"
expect_equal "korvane-ctl --json batch-priority 7 " "highest
high
normal
low
lowest" "$(complete_line "korvane-ctl --json batch-priority 7 " korvane-ctl --json batch-priority 7 "")"
expect_equal "korvane-ctl node-priority 3 lo" "low
lowest" "$(complete_line "korvane-ctl node-priority 3 lo" korvane-ctl node-priority 3 lo)"
expect_equal "korvane-ctl pause-node 3 " "" "$(complete_line "korvane-ctl pause-node 3 " korvane-ctl pause-node 3 "")"
finish

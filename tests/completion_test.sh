#!/bin/bash
# What the completion of bash offers.
# Usage: completion_test.sh PROGRAM SAMPLE_DIRECTORY
program=$1
export sample=$2 # for the words of the cases
# shellcheck source=/dev/null
source <("$program" completion bash)
failures=0

# The shell does not complete now: what would be left to it is kept here.
compopt() { leftToShell=$2; }

complete_line() {
    COMP_WORDS=("$program" "$@")
    COMP_CWORD=$#
    leftToShell=
    _lagestatus
    offered="${COMPREPLY[*]}$leftToShell"
}

check() {
    local expected=$1
    shift
    complete_line "$@"
    [ "$offered" = "$expected" ] || {
        echo "$*: offers \"$offered\", not \"$expected\""
        failures=$((failures + 1))
    }
}

while IFS='|' read -r expected words; do
    eval "check '$expected' $words"
done < <(grep -v '^#' "$(dirname "$0")/data/completions.txt")

echo "$failures failures"
[ $failures = 0 ]

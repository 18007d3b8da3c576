#!/bin/bash
# What the completion of bash offers, and that help, manual and completion tell of the same options.
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

complete_line ''
commands=("${COMPREPLY[@]}")
[ ${#commands[@]} -gt 5 ] || failures=$((failures + 1))
for command in "${commands[@]}"; do
    inHelp=$("$program" "$command" --help | sed -nE 's/^  (-[a-z], )?(--[a-z0-9-]+)( .*|$)/\2/p' | sort)
    complete_line "$command" --
    inManual=$("$program" manual | sed -n "/^\\.SS $command\$/,/^\\.S[SH] /p" | sed 's/\\-/-/g')
    [ "$(printf '%s\n' "${COMPREPLY[@]}" | sort)" = "$inHelp" ] || {
        echo "$command: completion and help differ: $offered"
        failures=$((failures + 1))
    }
    for option in $inHelp; do
        [ "$option" = --help ] || grep -qF -- "\\fB$option\\fR" <<<"$inManual" || {
            echo "$command: the manual lacks $option"
            failures=$((failures + 1))
        }
    done
done
echo "$failures failures"
[ $failures = 0 ]

#!/usr/bin/env bash
# The words that the bash completion of perf-store offers.
#
#   completion_test.sh PERF_STORE
set -euo pipefail

perf_store=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export OPSTORE_URL="lmdb:$work/no-store"

fail() {
    echo "completion_test: $*"
    exit 1
}

# shellcheck source=/dev/null
source "$(dirname "$0")/../../tools/perf-store/completion/perf-store.bash" || fail "the completion does not load"
registered=$(complete -p perf-store) || fail "nothing is registered for perf-store"
[[ $registered =~ -F\ ([^ ]+) ]] || fail "no function is registered for perf-store"
function=${BASH_REMATCH[1]}

# The words offered for the last of the arguments, sorted, in one line.
offered() {
    COMP_WORDS=(perf-store "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    "$function" "$perf_store" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' '
}

# expect WORDS ARGUMENT...
expect() {
    local expected=$1 actual
    shift
    actual=$(offered "$@")
    [ "$actual" = "$expected" ] || fail "'perf-store $*' offers '$actual' instead of '$expected'"
}

expect 'dump gen get load ls rm schema stat types' ''
expect 'dump' d
expect '--help --version' -
expect '--root' dump --r
expect 'chkpt main resp rx' dump --root ''
expect 'resp rx' ls --root r
expect 'chkpt main resp rx' dump --root =
expect 'main' dump --root = m
expect '--path' dump --root main --p
expect '--empty' load --replace --e
expect '' dump --node ''
expect '' stat ''
expect 'pm_summary_parcel pm_summary_timer_drift_parcel' schema pm_summ
expect "$("$perf_store" types | cut -d' ' -f1 | LC_ALL=C sort | paste -sd ' ')" schema ''
expect '' schema pm_summary_parcel ''

touch "$work/a set.ndjson"
expect "$work/a set.ndjson" load "$work/a"
expect "$work/a set.ndjson" load --replace - "$work/a"

# Everything that the program's help names is offered.
"$perf_store" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p' >"$work/subcommands"
[ -s "$work/subcommands" ] || fail "perf-store --help lists no subcommands"
while read -r subcommand; do
    [[ " $(offered '') " == *" $subcommand "* ]] || fail "subcommand $subcommand is not offered"
    "$perf_store" "$subcommand" --help | grep -Eo '^  (-[a-z],)?--[a-z-]+' | grep -Eo -- '--[a-z-]+' >"$work/options"
    while read -r option; do
        [[ " $(offered "$subcommand" --) " == *" $option "* ]] || fail "$subcommand $option is not offered"
    done <"$work/options"
done <"$work/subcommands"

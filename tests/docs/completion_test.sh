#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The words that the bash completions of perf-store and perf-show offer.
#
#   completion_test.sh PERF_STORE PERF_SHOW
set -euo pipefail

perf_store=$1 perf_show=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LC_ALL=C.UTF-8 OPSTORE_URL="lmdb:$work/no-store"

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
program=$perf_store
offered() {
    COMP_WORDS=("${program##*/}" "$@")
    COMP_CWORD=$#
    COMPREPLY=()
    "$function" "$program" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"
    [ ${#COMPREPLY[@]} -eq 0 ] || printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' '
}

# expect WORDS ARGUMENT...
expect() {
    local expected=$1 actual
    shift
    actual=$(offered "$@")
    [ "$actual" = "$expected" ] || fail "'perf-store $*' offers '$actual' instead of '$expected'"
}

expect 'diff dump gen get load ls rm schema stat types verify' ''
expect 'diff dump' d
expect '--counters' diff --c
expect '' diff --ignore ''
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
expect "$work/a set.ndjson" diff --counters - "$work/a"
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

# What is in the store: the ids of nodes, and items one step of their paths at a time.
cat >"$work/set" <<'END'
{"item":{"root":"main","node":256,"path":"summary","type":"pm_summary_parcel","record":{}}}
{"item":{"root":"main","node":16,"path":"intf/detail/eth0/0/0/0","type":"pm_intf_parcel","record":{}}}
{"item":{"root":"main","node":16,"path":"session/1","type":"pm_session_parcel","record":{}}}
{"item":{"root":"main","node":16,"path":"session/f","type":"pm_session_parcel","record":{}}}
END
export OPSTORE_URL="lmdb:$work/store"
"$perf_store" load "$work/set" >"$work/log" || fail "the store cannot be filled"
expect '0x10 0x100' dump --node ''
expect '0x100' ls --node 0x100
expect 'intf/ session/' get --root main --node 0x10 ''
expect 'session/1 session/f' get --root main --node 0x10 session/
expect 'summary' rm --root=main --node 0x100 ''
expect 'intf/ session/ summary' dump --path ''

# perf-show.
# shellcheck source=/dev/null
source "$(dirname "$0")/../../infra/perf-measure/completion/perf-show.bash" || fail "perf-show's does not load"
function=_perf_show program=$perf_show
expect '0x10 0x100' -c 9 -N ''
expect '19' -c 4 -t 1
expect '' -c 1 -i ''
types=" $(offered -c '') " options=" $(offered '') "
for type in {0..199}; do
    "$perf_show" -c "$type" >"$work/out" 2>"$work/err" || true
    known=yes
    ! grep -q '^Show command type invalid' "$work/err" || known=no
    offers=no
    [[ $types != *" $type "* ]] || offers=yes
    [ $known = $offers ] || fail "command type $type: known $known, offered $offers"
done
for letter in {a..z} {A..Z}; do
    "$perf_show" "-$letter" 0 -c 0 >"$work/out" 2>"$work/err" || true
    known=yes
    ! grep -q 'Unrecognised argument' "$work/err" || known=no
    offers=no
    [[ $options != *" -$letter "* ]] || offers=yes
    [ $known = $offers ] || fail "option -$letter: known $known, offered $offers"
done

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The words and names that the bash completion of perf-measure offers, and how fast it finds them among many.
#
#   words_completion_test.sh PERF_MEASURE PERF_STORE LIMIT-MSEC
set -euo pipefail

perf_measure=$1 perf_store=$2 limit=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export OPSTORE_URL="lmdb:$work/store"

fail() {
    echo "words_completion_test: $*"
    exit 1
}

cat >"$work/set.ndjson" <<'END'
{"node":{"id":16,"name":"lc0"}}
{"node":{"id":256,"name":"rp0"}}
{"item":{"root":"main","node":16,"path":"intf/detail/eth0/0/0/0","type":"pm_intf_parcel","record":{}}}
{"item":{"root":"main","node":16,"path":"intf/detail/eth0/0/0/1","type":"pm_intf_parcel","record":{}}}
{"item":{"root":"main","node":256,"path":"endpoint/detail/ep-2001:db8::22","type":"pm_endpoint_common","record":{}}}
{"item":{"root":"main","node":256,"path":"srpolicy/detail/a \"b\" 50%","type":"pm_srpolicy_parcel","record":{}}}
{"item":{"root":"main","node":256,"path":"rsvpte/detail/te10","type":"pm_rsvpte_parcel","record":{}}}
{"item":{"root":"main","node":256,"path":"name-profile/0x0/0x2/gold%20one","type":"pm_name_profile_parcel","record":{}}}
END
"$perf_store" load "$work/set.ndjson" >"$work/load.log" || fail "cannot load a set"

# shellcheck source=/dev/null
source "$(dirname "$0")/../../tools/perf-measure/completion/perf-measure.bash" || fail "the completion does not load"
registered=$(complete -p perf-measure) || fail "nothing is registered for perf-measure"
[[ $registered =~ -F\ ([^ ]+) ]] || fail "no function is registered for perf-measure"
function=${BASH_REMATCH[1]}
COMP_WORDBREAKS=$' \t\n"\'><=;|&(:'

# expect WORDS LINE CURRENT: the words offered for CURRENT at the end of LINE, sorted, in one line.
expect() {
    local actual=''
    COMP_LINE=$2
    COMP_POINT=${#2}
    COMPREPLY=()
    "$function" "$perf_measure" "$3" ''
    [ ${#COMPREPLY[@]} -eq 0 ] || actual=$(printf '%s\n' "${COMPREPLY[@]}" | LC_ALL=C sort | paste -sd ' ')
    [ "$actual" = "$1" ] || fail "'$2' offers '$actual' instead of '$1'"
}

expect 'help metrics plot show' 'perf-measure ' ''
expect 'plot' 'perf-measure p' p
expect 'probe-sessions process profiles' 'perf-measure sh pro' pro
expect 'counters' 'perf-measure show interfaces c' c
expect 'cpu npu' 'perf-measure show sr-policies host ' ''
expect '--json' 'perf-measure show summary --j' --j
expect 'lc0 rp0' 'perf-measure show summary node ' ''
expect 'eth0/0/0/0 eth0/0/0/1' 'perf-measure show interfaces name e' e
expect 'eth0/0/0/1' 'perf-measure --json sh int na eth0/0/0/1' eth0/0/0/1
expect 'te10' 'perf-measure plot delay rsvp-te ' ''
expect 'gold\ one' 'perf-measure show profiles named name g' g
# Bash replaces what follows the last colon.
expect ':22' 'perf-measure show endpoints name ep-2001:db8:' ':' # of ep-2001:db8::22
expect 'a\ \"b\"\ 50%' 'perf-measure show sr-policies name ' ''
expect 'a "b" 50%' "perf-measure show sr-policies name 'a" "'a"
expect '' 'perf-measure show nonsense ' ''
expect '' 'perf-measure show sr-policies color ' ''
OPSTORE_URL="lmdb:$work/none" expect '' 'perf-measure show interfaces name ' ''

# A hundred thousand names.
awk 'BEGIN { for (i = 0; i < 100000; ++i) printf "{\"item\":{\"root\":\"main\",\"node\":256,\"path\":\"srpolicy/detail/policy-c%d\",\"type\":\"pm_srpolicy_parcel\",\"record\":{\"Color\":%d}}}\n", i, i }' |
    "$perf_store" load - >"$work/load.log"
best=1000
for _ in 1 2 3 4 5 6 7 8 9 10; do
    for beginning in '' p policy-c99 policy-c12345; do
        begin=$(date +%s%N)
        "$perf_measure" __complete show sr-policies name "$beginning" >"$work/names"
        msec=$((($(date +%s%N) - begin) / 1000000))
        [ -s "$work/names" ] || fail "no name begins with '$beginning'"
        if [ "$beginning" = p ] && [ $msec -lt $best ]; then best=$msec; fi
    done
done
[ $best -lt "$limit" ] || fail "100000 names took $best ms"
# What so many begin with, and all of few.
[ "$("$perf_measure" __complete show sr-policies name p | cut -f1 | paste -sd ' ')" = "$(echo policy-c{0..9})" ] ||
    fail "of many names their beginnings should be offered"
[ "$("$perf_measure" __complete show sr-policies name policy-c9999 | wc -l)" = 11 ] || fail "of few names all should be"

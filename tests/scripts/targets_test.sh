#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The table of targets says which are met, and fails for one that is missed by more than a tenth.
#
#   targets_test.sh TARGETS-SH
set -euo pipefail
. "$1"

fail() {
    echo "targets_test: $*"
    exit 1
}

# expect VERDICT most|least TARGET MEASURED
expect() {
    local found
    found=$(verdict "$2" "$3" "$4")
    [ "$found" = "$1" ] || fail "at $2 $3, measured '$4': $found, not $1"
}
expect met most 1.5 1.2
expect met most 1.5 1.5
expect near most 1.5 1.65
expect MISSED most 1.5 1.66
expect met least 300 300
expect met least 300 9000
expect near least 300 273
expect MISSED least 300 272
expect MISSED least 300 0
# A measurement that failed is not a fast one.
expect MISSED most 1.5 ""
expect MISSED most 1.5 0
expect MISSED most 1.5 nan
expect MISSED least 300 ""

# Each table in a shell of its own, as a script has one only.
table() (
    while read -r what bound wanted measured; do
        target "$what" "$bound" "$wanted" "$measured"
    done
    print_targets
)
printf 'fast most 2 1\nnear least 10 9.5\n' | table >/dev/null || fail "a table without a missed target fails"
if out=$(printf 'fast most 2 1\nslow most 2 3\nlast most 2 1\n' | table); then
    fail "a table with a missed target does not fail"
fi
[ "$(grep -c 'MISSED$' <<<"$out")" -eq 1 ] || fail "not one line is missed: $out"
grep -Eq '^slow +at most +2 +3  MISSED$' <<<"$out" || fail "the missed line is another: $out"
[ "$(grep -c 'met$' <<<"$out")" -eq 2 ] || fail "the lines around it are not met: $out"
if out=$(table </dev/null); then
    fail "a table without a line does not fail"
fi
if out=$(printf 'silent most 2\n' | table); then
    fail "a measurement that gave nothing is no miss"
fi
grep -q 'nothing  MISSED$' <<<"$out" || fail "the line does not say so: $out"

# Programs that measure by themselves.
good() { printf 'what it does\ntarget\tgood one\tmost\t2\t1\ntarget\tbetter one\tleast\t0.5\t0.9\n'; }
bad() { printf 'target\tbad one\tmost\t2\t3\n'; }
silent() { printf 'targets are not measured\n'; }
broken() { good && false; }
judged() (
    measure "first program" good
    measure "second program" "$1"
    print_targets
)
out=$(judged good) || fail "a table of targets that are met fails"
grep -q '^what it does$' <<<"$out" || fail "what a program says is not shown: $out"
grep -Eq '^good one +at most +2 +1  met$' <<<"$out" || fail "a program's line is another: $out"
grep -Eq '^better one +at least +0.5 +0.9  met$' <<<"$out" || fail "a program's second line is another: $out"
! grep -q ' program ' <<<"$out" || fail "a program that measures has a line of its own: $out"
for program in bad silent broken; do
    if out=$(judged $program); then
        fail "the $program program does not fail the table"
    fi
    grep -Eq '^good one .*met$' <<<"$out" || fail "the line before is not met: $out"
done
for program in silent broken; do
    out=$(judged $program) || true
    grep -Eq '^second program .*nothing  MISSED$' <<<"$out" || fail "nothing is said of the $program program: $out"
done

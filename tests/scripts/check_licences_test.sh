#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# scripts/check-licences names each source that has no licence line, and nothing else.
#
#   check_licences_test.sh CHECK_LICENCES
set -euo pipefail

check=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "check_licences_test: $*"
    exit 1
}

licence='SPDX-License-Identifier: Apache-2.0'
printf '// %s\n// Good.\n' "$licence" >"$work/good.cc"
printf '#!/bin/sh\n# %s\n' "$licence" >"$work/good"
echo 'text' >"$work/notes.md"
export GIT_CEILING_DIRECTORIES=$work/..
"$check" "$work" >"$work/good.log" || fail "complains of good sources: $(cat "$work/good.log")"

expect_offence() {
    local out status=0
    out=$("$check" "$work") || status=$?
    [ $status -eq 1 ] || fail "$1: status $status"
    [[ $out == *"$1: "* ]] || fail "$1 is not named: $out"
    rm "$work/$1"
}
echo '// Bad.' >"$work/bad.h"
expect_offence bad.h
printf '#!/bin/sh\ntrue\n' >"$work/bad"
expect_offence bad
printf '// 1\n// 2\n// 3\n// %s\n' "$licence" >"$work/late.cc"
expect_offence late.cc

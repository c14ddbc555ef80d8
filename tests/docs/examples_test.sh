#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Every example of the manual pages runs on the example chassis, and each of its commands prints something.
#
#   examples_test.sh FOLDER_OF_PROGRAMS
set -euo pipefail

programs=$1
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export PATH="$programs:$PATH" LC_ALL=C.UTF-8 TZ=UTC PERF_SHOW_NOW=1709647390000

fail() {
    echo "examples_test: $*"
    exit 1
}

for set in chassis captured changed; do
    cp "$root/examples/chassis.ndjson" "$work/$set.ndjson"
done

# Before it was captured, fewer packets had been sent.
sed -E 's/("QueryPacketsSent": *[0-9]+)[0-9]/\1/' "$work/captured.ndjson" >"$work/before.ndjson"

# examples PAGE: the lines of its examples, a command that goes on in the next line as one.
examples() {
    sed -n '/^\.SH EXAMPLES/,/^\.SH SEE/p' "$root/docs/man/$1" |
        sed -n '/^\.EX/,/^\.EE/{/^\.E[XE]/d;p}' |
        sed 's/\\-/-/g; s/\\(dq/"/g; s/\\(aq/'"'"'/g; s|/tmp/|'"$work"'/|g' |
        sed -e ':more' -e '/|$/{N;s/\n */ /;b more}'
}

# Whether a show has more than the headers of nodes.
shows() { grep -v '^ *$\|^-*$\|^rp[0-9]*$\|^lc[0-9]*$' "$1" | grep -v 'Item not found\|PM process is not running' >/dev/null; }

run() {
    local line=$1
    local status=0 wanted=0
    [[ $line != *'perf-store diff '* ]] || wanted=1 # they differ
    bash -c "cd '$work'; $line" >"$work/out" 2>"$work/err" || status=$?
    [ $status -eq $wanted ] || fail "$line: status $status: $(head -n 1 "$work/err")"
    [ ! -s "$work/err" ] || fail "$line: $(head -n 1 "$work/err")"
    case $line in
    *perf-show*) shows "$work/out" || fail "$line: shows nothing" ;;
    *) [ -s "$work/out" ] || fail "$line: prints nothing" ;;
    esac
    ran=$((ran + 1))
}

for page in perf-show.1 perf-store.1; do
    ran=0
    export OPSTORE_URL="lmdb:$work/$page"
    perf-store load "$work/chassis.ndjson" >"$work/out" || fail "the example chassis cannot be loaded"
    while IFS= read -r line; do
        case $line in
        'export '*) eval "$line" ;;
        '{'* | ' '*) printf '%s\n' "$line" >>"$work/small.ndjson" ;;
        *) run "$line" ;;
        esac
    done < <(examples $page)
    [ $ran -gt 5 ] || fail "$page: only $ran examples were found"
done

# The small data set shows what it holds.
export OPSTORE_URL="lmdb:$work/small"
run "perf-store load small.ndjson"
run "perf-show -c 9 -D 0"
grep -q '^rp0$' "$work/out" || fail "the small data set has no node rp0"

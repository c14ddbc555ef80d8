#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The manual pages render without a warning and name all that the programs have.
#
#   man_pages_test.sh PERF_SHOW PERF_STORE PERF_MEASURE
set -euo pipefail

perf_show=$1 perf_store=$2 perf_measure=$3
pages=$(cd "$(dirname "$0")/../../docs/man" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LC_ALL=C.UTF-8 MANWIDTH=80 OPSTORE_URL="lmdb:$work/no-store"

fail() {
    echo "man_pages_test: $*"
    exit 1
}

# Renders a page into $work/PAGE.
render() {
    man --warnings -E UTF-8 -P cat -l "$pages/$1" >"$work/rendered" 2>"$work/warnings" ||
        fail "$1: man failed: $(head -n 1 "$work/warnings")"
    [ ! -s "$work/warnings" ] || fail "$1: $(head -n 1 "$work/warnings")"
    MANWIDTH=50 man --warnings -E UTF-8 -P cat -l "$pages/$1" 2>"$work/warnings" >"$work/narrow" ||
        fail "$1: man failed in 50 columns"
    [ ! -s "$work/warnings" ] || fail "$1, in 50 columns: $(head -n 1 "$work/warnings")"
    # Without overstriking, and with one kind of hyphen.
    col -bx <"$work/rendered" | sed 's/[‐−]/-/g' >"$work/$1"
    [ -s "$work/$1" ] || fail "$1: empty"
    ! grep -n '.\{81\}' "$work/$1" >"$work/long" || fail "$1: wider than 80 columns: line $(head -n 1 "$work/long")"
}

command -v man >/dev/null || fail "man is not installed (package man-db)"
render perf-show.1
render perf-store.1
render perf-probed.8
render perf-probed.yaml.5
render perf-measure.1

# Every key that the configuration of perf-probed has is in its page.
sources=$pages/../../infra/perf-probed/config
grep -ohE '(read|read_[a-z]+)\("[a-z-]+"' "$sources"/*.cc | sed 's/.*"\([a-z-]*\)"/\1/' | sort -u >"$work/keys"
[ "$(wc -l <"$work/keys")" -gt 40 ] || fail "few keys of perf-probed's configuration were found"
while read -r key; do
    grep -Eq -- "(^|[ .(])$key([ .,;)]|$)" "$work/perf-probed.yaml.5" || fail "perf-probed.yaml.5: the key $key is missing"
done <"$work/keys"

# Whether perf-show takes these options; command type 0 ends it before it reads anything.
takes() {
    "$perf_show" "$@" -c 0 >"$work/out" 2>"$work/err" || true
    ! grep -q 'Unrecognised argument' "$work/err"
}

# Options: each letter has a paragraph, with an argument exactly when the program wants one.
known=0
for letter in {a..z} {A..Z} {0..9}; do
    if ! takes "-$letter" 0; then
        ! grep -Eq "^ {7}-$letter( [A-Z]+)?( |$)" "$work/perf-show.1" || fail "perf-show.1: the program has no -$letter"
        continue
    fi
    known=$((known + 1))
    # An option that wants an argument takes the next option for it.
    "$perf_show" "-$letter" >"$work/out" 2>"$work/err" </dev/null || true
    if grep -q 'Unrecognised argument' "$work/err"; then
        grep -Eq "^ {7}-$letter [A-Z]+( |$)" "$work/perf-show.1" || fail "perf-show.1: -$letter and its argument are missing"
    else
        grep -Eq "^ {7}-$letter( {2}|$)" "$work/perf-show.1" || fail "perf-show.1: -$letter is missing"
    fi
done
[ "$known" -gt 0 ] || fail "perf-show takes no option at all"

# Command types: a row in both tables exactly when the program knows the type.
sed -n '/^COMMAND TYPES/,/^   What each reads/p' "$work/perf-show.1" >"$work/shows"
sed -n '/^   What each reads/,/^   Subtypes/p' "$work/perf-show.1" >"$work/reads"
for type in {0..199}; do
    "$perf_show" -c "$type" >"$work/out" 2>"$work/err" || true
    for table in shows reads; do
        if grep -q '^Show command type invalid' "$work/err"; then
            ! grep -Eq "^ {7}$type +[a-zA-Z]" "$work/$table" || fail "perf-show.1: there is no command type $type"
        else
            grep -Eq "^ {7}$type +[a-zA-Z]" "$work/$table" || fail "perf-show.1: command type $type is missing"
        fi
    done
done

# Subcommands: a paragraph each, and their options.
"$perf_store" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p' >"$work/subcommands"
[ -s "$work/subcommands" ] || fail "perf-store --help lists no subcommands"
while read -r subcommand; do
    grep -Eq "^ {7}$subcommand( |$)" "$work/perf-store.1" || fail "perf-store.1: subcommand $subcommand is missing"
    "$perf_store" "$subcommand" --help | grep -Eo '^  (-[a-z],)?--[a-z-]+' | grep -Eo -- '--[a-z-]+' >"$work/options"
    while read -r option; do
        grep -Fq -- "$option" "$work/perf-store.1" || fail "perf-store.1: $subcommand $option is missing"
    done <"$work/options"
done <"$work/subcommands"

# The words: a paragraph for each command and for each plain option.
"$perf_measure" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z][a-z -]*[a-z]\)\( NAME\)\{0,1\}  .*/\1/p' >"$work/commands"
[ "$(wc -l <"$work/commands")" -gt 40 ] || fail "perf-measure --help lists hardly any command"
while read -r words; do
    grep -Eq "^ {7}$words( NAME)?$" "$work/perf-measure.1" || fail "perf-measure.1: '$words' is missing"
done <"$work/commands"
"$perf_measure" --help | grep -Eo '^  (-[a-z],)?--[a-z-]+' | grep -Eo -- '--[a-z-]+' >"$work/options"
while read -r option; do
    grep -Eq "^ {7}$option( |$)" "$work/perf-measure.1" || fail "perf-measure.1: $option is missing"
done <"$work/options"

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The scripts tell what they do, refuse arguments that they do not know, and are the same through a symbolic link.
#
#   arguments_test.sh SCRIPTS
set -euo pipefail

scripts=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "arguments_test: $*"
    exit 1
}

for script in demo check bench fuzz prove-packages other-machines; do
    about=$(sed -n '3s/^# //p' "$scripts/$script")
    ln -s "$scripts/$script" "$work/link"
    for way in "$scripts/$script" "$work/link"; do
        "$way" --help >"$work/out" 2>"$work/err" || fail "$way --help: status $?"
        [ "$(head -n 1 "$work/out")" = "$about" ] || fail "$way --help does not say what it does"
        [ ! -s "$work/err" ] || fail "$way --help: $(head -n 1 "$work/err")"
        status=0
        "$way" nonsense >"$work/out" 2>"$work/err" || status=$?
        [ $status -eq 1 ] || fail "$way nonsense: status $status"
        grep -q "^scripts/$script: unknown argument nonsense" "$work/err" || fail "$way: $(head -n 1 "$work/err")"
    done
    rm "$work/link"
done

for wrong in 0 -1 1.5 10000000 --cover; do
    status=0
    "$scripts/fuzz" "$wrong" >"$work/out" 2>"$work/err" || status=$?
    [ $status -eq 1 ] || fail "fuzz $wrong: status $status"
    grep -qx "scripts/fuzz: unknown argument $wrong (see scripts/fuzz --help)" "$work/err" || fail "fuzz $wrong: $(cat "$work/err")"
done
status=0
"$scripts/fuzz" 5 6 >"$work/out" 2>"$work/err" || status=$?
[ $status -eq 1 ] && grep -q '^scripts/fuzz: unknown argument 6' "$work/err" || fail "fuzz 5 6: $(cat "$work/err")"

"$scripts/mutants" --help >"$work/out" 2>"$work/err" || fail "mutants --help: status $?"
grep -q '^Changes the sources of a folder' "$work/out" || fail "mutants --help does not say what it does"
while IFS='|' read -r arguments wanted; do
    status=0
    # shellcheck disable=SC2086
    "$scripts/mutants" $arguments >"$work/out" 2>"$work/err" || status=$?
    [ $status -eq 1 ] || fail "mutants $arguments: status $status"
    grep -qxF "scripts/mutants: $wanted" "$work/err" || fail "mutants $arguments: $(cat "$work/err")"
done <<'END'
|which folder? (see scripts/mutants --help)
nonsense|nonsense is no folder of sources
--count 0 fuzz|--count takes a number from 1 on
--count x fuzz|argument --count: invalid int value: 'x' (see scripts/mutants --help)
--jobs 0 fuzz|--jobs takes a number from 1 on
scripts fuzz/corpus|scripts has no sources to be changed
--quick fuzz|unknown argument --quick (see scripts/mutants --help)
END
# What is changed is code: no comment, no text, no directive.
mkdir "$work/sources"
printf '#include <a == b>\n// a == b\nbool f(int a) { return g(a, "==") == 7; }  // ==\n' >"$work/sources/a.cc"
"$scripts/mutants" --list "$work/sources" | sed 's/.*a.cc:3: .*  ->  //' | sort >"$work/out"
cat >"$work/wanted" <<'END'
bool f(int a) { return g(a, "==") != 7; }  // ==
bool f(int a) { return g(a, "==") == 8; }  // ==
bool f(int a) { return {}; }  // ==
END
cmp -s "$work/out" "$work/wanted" || fail "mutants --list: $(cat "$work/out")"
# Each folder has a sample of its own, which stays when other lines come.
mkdir "$work/more"
for line in {1..30}; do echo "int f$line(int a) { return a + $line; }"; done >"$work/more/b.cc"
"$scripts/mutants" --list --count 9 "$work/more" "$work/sources" >"$work/before"
[ "$(grep -c "/more/b.cc" "$work/before")" -eq 9 ] && [ "$(grep -c "/sources/a.cc" "$work/before")" -eq 3 ] ||
    fail "mutants --list of two folders: $(cat "$work/before")"
sed -i '1i // More.' "$work/more/b.cc"
"$scripts/mutants" --list --count 9 "$work/more" "$work/sources" >"$work/after"
cmp -s <(sed 's/:[0-9]*:/:/' "$work/before") <(sed 's/:[0-9]*:/:/' "$work/after") || fail "another line changes the sample"
"$scripts/mutants" --list --count 9 --seed 2 "$work/more" >"$work/after"
! cmp -s <(head -n 9 "$work/before") "$work/after" || fail "another seed gives the same sample"

#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# What scripts/fuzz says of its targets and does with what they find; the targets and the build are stood in for.
#
#   fuzz_test.sh SCRIPTS
set -euo pipefail

scripts=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
    echo "fuzz_test: $*"
    exit 1
}

# program NAME: makes an executable of standard input.
program() {
    cat >"$work/$1"
    chmod +x "$work/$1"
}

mkdir -p "$work"/{scripts,bin,build/sanitizers/bin,fuzz/corpus/{calm,dead}}
cp "$scripts/fuzz" "$scripts/lib.sh" "$work/scripts"
touch "$work/fuzz/calm_main.cc"
program bin/cmake <<<'#!/bin/sh'
program bin/dpkg-query <<<'#!/bin/sh
echo install ok installed'
program build/sanitizers/bin/calm_fuzz <<'END'
#!/bin/sh
echo "$@" >>calm_arguments
echo "#2	INITED cov: 10 ft: 11 corp: 1/1b exec/s: 0 rss: 30Mb"
echo "#1234	DONE   cov: 20 ft: 321 corp: 2/2b lim: 4096 exec/s: 617 rss: 30Mb"
echo "stat::number_of_executed_units: 1234"
END

run() {
    status=0
    PATH="$work/bin:$PATH" "$work/scripts/fuzz" "$@" >"$work/out" 2>"$work/err" || status=$?
}

run 2
[ $status -eq 0 ] || fail "a calm run: status $status: $(cat "$work/err")"
grep -qx 'calm: 1234 executions, 321 features' "$work/out" || fail "no executions and features: $(cat "$work/out")"
grep -qx 'scripts/fuzz: nothing was found' "$work/out" || fail "a calm run does not say so"
grep -q -- '-max_total_time=120 .*build/fuzz/corpus/calm fuzz/corpus/calm$' "$work/calm_arguments" ||
    fail "the target is run by: $(cat "$work/calm_arguments")"
mkdir -p "$work/fuzz/crashers/calm"
run
grep -q -- '-max_total_time=300 .*fuzz/corpus/calm fuzz/crashers/calm$' "$work/calm_arguments" ||
    fail "without a number, and with crashers: $(tail -n 1 "$work/calm_arguments")"

# One that finds something leaves the smallest form of it, and the other targets have their turn.
touch "$work/fuzz/bad_main.cc"
mkdir "$work/fuzz/corpus/bad"
program build/sanitizers/bin/bad_fuzz <<'END'
#!/bin/sh
for each; do
    case $each in
    -exact_artifact_path=*) printf small >"${each#*=}" ;;
    -artifact_prefix=*) printf 'a large input' >"${each#*=}crash-1"; printf slow >"${each#*=}timeout-2" ;;
    esac
done
echo "stat::number_of_executed_units: 7"
exit 77
END
run 1
[ $status -eq 1 ] || fail "a run that found something: status $status"
[ "$(cat "$work/fuzz/crashers/bad/crash-1")" = small ] || fail "the input is not minimised"
[ "$(cat "$work/fuzz/crashers/bad/timeout-2")" = slow ] || fail "an input that is no crash is not kept"
[ "$(ls "$work/fuzz/crashers/bad" | wc -l)" -eq 2 ] || fail "more is left: $(ls "$work/fuzz/crashers/bad")"
grep -q '^scripts/fuzz: bad: fuzz/crashers/bad/crash-1 (5 bytes). See it with: build/sanitizers/bin/bad_fuzz fuzz/crashers/bad/crash-1; ' \
    "$work/err" || fail "it is not said what was found: $(cat "$work/err")"
grep -qx 'calm: 1234 executions, 321 features' "$work/out" || fail "the next target has no turn"

# One that does not run at all found nothing, which is no good end.
rm "$work/fuzz/bad_main.cc"
program build/sanitizers/bin/calm_fuzz <<<'#!/bin/sh
exit 1'
run 1
[ $status -eq 1 ] && grep -q '^scripts/fuzz: calm did not run; see build/logs/fuzz-calm.log' "$work/err" ||
    fail "a target that does not run: status $status: $(cat "$work/err")"

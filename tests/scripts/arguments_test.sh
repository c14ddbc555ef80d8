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

for script in demo check bench prove-packages other-machines; do
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

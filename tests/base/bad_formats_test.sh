#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# Formats that must not compile, and what the compiler has to say of each.
#
#   bad_formats_test.sh COMPILER SOURCES
set -euo pipefail

compiler=$1 sources=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export LC_ALL=C

# No quotations of the source in messages: words that are searched for could be found there as well.
quiet=-fno-diagnostics-show-caret
[[ $("$compiler" --version) != *clang* ]] || quiet=-fno-caret-diagnostics

failed=0
complain() {
    echo "bad_formats_test: $*"
    failed=1
}

# compiles STATEMENT: whether it compiles within a function; the compiler's message is in $work/message.
compiles() {
    cat >"$work/statement.cc" <<EOF
#include "base/pm_output.h"
void statement() { $1; }
EOF
    "$compiler" -std=c++20 -fsyntax-only $quiet -I"$sources" "$work/statement.cc" 2>"$work/message"
}

# refused STATEMENT WORDS
refused() {
    if compiles "$1"; then
        complain "$1 compiles"
    elif ! grep -q "error: .*$2\|note: .*$2" "$work/message"; then
        complain "the message on $1 does not say '$2':"
        cat "$work/message"
    fi
}

compiles 'pm_print<"%-5s|%*.*s|%05u|%%|%lx|%c\n">("a", 1, 2, "b", 3, 4, 5)' ||
    complain "a good format does not compile: $(cat "$work/message")"
compiles 'pm_print_cut<"%s", 255>(2, "a")' || complain "a good format does not compile: $(cat "$work/message")"

refused 'pm_print<"%y">(1)' unknown_conversion
refused 'pm_print<"50% of">()' unknown_conversion
refused 'pm_print<"%-12">(1)' unknown_conversion
refused 'pm_print<"%hu">(1)' unknown_conversion
refused 'pm_print<"%ls">("a")' a_text_takes_no_length_modifier_and_no_zero_flag
refused 'pm_print<"%05s">("a")' a_text_takes_no_length_modifier_and_no_zero_flag
refused 'pm_print<"%.3u">(1)' a_number_takes_no_precision
refused 'pm_print<"%.*lx">(1, 1)' a_number_takes_no_precision
refused 'pm_print<"%u">()' 'the format takes another number of arguments'
refused 'pm_print<"%*u">(1)' 'the format takes another number of arguments'
refused 'pm_print<"%s">(1)' '%s takes a text'
refused 'pm_print<"%u">("a")' 'a number conversion takes a number'
refused 'pm_print_cut<"%y", 255>(2, 1)' unknown_conversion
refused 'pm_print_error<"%y">(1)' unknown_conversion
exit $failed

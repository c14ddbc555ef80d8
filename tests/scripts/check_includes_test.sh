#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# scripts/check-includes on small trees: one that is in order, and one for each offence.
#
#   check_includes_test.sh CHECK_INCLUDES
set -euo pipefail

check_includes=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

failed=0
complain() {
    echo "check_includes_test: $*"
    failed=1
}

# file NAME LINE...: writes a source of the tree.
file() {
    local name=$work/tree/$1
    shift
    mkdir -p "$(dirname "$name")"
    printf '%s\n' "$@" >"$name"
}

# figure ROOM...: writes the figure, each room as "NAME|WHAT|WHAT IT MAY INCLUDE".
figure() {
    local room name what arrow
    for room in "$@"; do
        IFS='|' read -r name what arrow <<<"$room"
        printf '    %-15s   %s\n      <- %s\n' "$name" "$what" "${arrow// /$'\n'         }"
    done >"$work/rooms"
    file docs/data-path.md '# A page' '' '    before   no room' '      <- nothing' '' '## The rooms' '' \
        "$(cat "$work/rooms")" '' '## After' '' '    after   no room' '      <- front'
}

src=infra/perf-measure/src
# A tree whose includes are in order; one room has a catalogue.
tree() {
    rm -rf "$work/tree"
    figure "tool/top|the tool|front base" "front|commands|records/deep base" \
        "records|made from a catalogue; includes <library.h>|base" "records/deep|what is below|nothing" \
        "base|all need it|nothing"
    file tools/tool/top/main.cc '#include "front/show.h"' '#include "base/text.h"'
    file $src/front/show.h '#include <vector>' '#include "records/deep/shape.h"'
    file $src/front/show.cc '#include "front/show.h"' '#include "base/text.h"'
    file $src/records/catalogue.txt '# types' 'include base/text.h'
    file $src/records/own.cc '#include "records/own_records.h"' '#include <library.h>'
    file $src/records/deep/shape.h ''
    file $src/base/text.h '#include <string>'
}

# accepted WHAT, refused WHAT WORDS: runs the check on the tree as it is.
accepted() {
    "$check_includes" "$work/tree" >"$work/out" 2>&1 || complain "$1: refused: $(cat "$work/out")"
}
refused() {
    if "$check_includes" "$work/tree" >"$work/out" 2>&1; then
        complain "$1: accepted"
    elif ! grep -qF -- "$2" "$work/out"; then
        complain "$1: does not say '$2' but: $(cat "$work/out")"
    fi
}

tree
accepted "a tree in order"

file $src/base/up.cc '#include "front/show.h"'
refused "an include that points upward" 'base/up.cc: includes "front/show.h", but base may not include front'

tree
file $src/records/sideways.cc '#include "records/deep/shape.h"'
refused "an include of a room below that is not allowed" 'records may not include records/deep'

tree
file $src/base/one.h '#include "base/two.h"'
file $src/base/two.h '  #  include "base/one.h"'
refused "two files of one room that include each other" 'a cycle of files: base/one.h -> base/two.h -> base/one.h'

tree
file $src/base/self.h '#include "base/self.h"'
refused "a file that includes itself" 'a cycle of files: base/self.h -> base/self.h'

tree
file $src/base/reader.cc '#include "records/own_records.h"'
refused "an include of a generated header above" 'base may not include records'

tree
file $src/records/catalogue.txt 'include front/show.h'
refused "a catalogue that includes a header above" 'records/own_records.h: includes "front/show.h"'

tree
file $src/front/show.cc '#include "show.h"'
refused "an include that is not rooted" 'front/show.cc: there is no "show.h"'

tree
file $src/front/show.cc '#include "base/nowhere_records.h"'
refused "a generated header without a catalogue" 'there is no "base/nowhere_records.h"'

tree
file $src/front/show.cc '#include <library.h>'
refused "a library's header outside its room" 'includes <library.h>, which only records may include'

tree
file $src/cellar/text.h ''
refused "a room that is not in the figure" 'draws no room cellar'

tree
figure "tool/top|the tool|front base" "front|commands|tool/top records/deep base" "records|what it is|base" \
    "records/deep|what is below|nothing" "base|all need it|nothing"
refused "a figure with an arrow upward" 'front may include tool/top, which is not drawn below it'

# No cycle of rooms, but one of the folders "records" and "base", each with its subfolders.
tree
figure "tool/top|the tool|front base" "front|commands|records/deep base" "records|what it is|base" \
    "base|all need it|records/deep" "records/deep|what is below|nothing"
file $src/base/text.h '#include "records/deep/shape.h"'
refused "a folder between another and its subfolder" 'a cycle of folders, 1 deep: base -> records -> base'

tree
rm "$work/tree/docs/data-path.md"
file docs/data-path.md 'nothing'
refused "a tree without a figure" 'no rooms or no sources'
exit $failed

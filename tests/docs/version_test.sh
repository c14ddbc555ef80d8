#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# The version is one number, everywhere.
#
#   version_test.sh VERSION FOLDER_OF_PROGRAMS
set -euo pipefail

version=$1 programs=$2
cd "$(dirname "$0")/../.."

fail() {
    echo "version_test: $*"
    exit 1
}

for page in docs/man/*.[1-9]; do
    grep -Eq "^\.TH .*\"(perf-show|perf-measure|perf-store|perf-probed) $version\"" "$page" || fail "$page is not of $version"
done
head -n 1 debian/changelog | grep -Fq "($version)" || fail "debian/changelog does not begin with $version"
grep -Fq "## [$version] - " CHANGELOG.md || fail "CHANGELOG.md has no $version"
for program in perf-store perf-measure; do
    [ "$("$programs/$program" --version)" = "$program $version" ] || fail "$program --version is not $program $version"
done

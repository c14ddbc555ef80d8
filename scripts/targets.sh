# SPDX-License-Identifier: Apache-2.0
# A table of targets: what was measured, what it was to be, and a verdict for each line.
# Sourced; `target` and `measure` add lines, `print_targets` prints the table and tells whether every target was met.

verdicts=()
missed=0

# verdict most|least TARGET MEASURED: "met"; "near", by a tenth at the most, since measurements differ; or "MISSED", which
# also a measurement is that gave no number.
verdict() {
  awk -v bound="$1" -v target="$2" -v measured="$3" 'BEGIN {
    if (measured !~ /^[0-9]+([.][0-9]+)?$/ || measured <= 0) { print "MISSED"; exit }
    excess = bound == "most" ? measured / target : target / measured
    print excess <= 1 ? "met" : excess <= 1.1 ? "near" : "MISSED" }'
}

# target WHAT most|least TARGET MEASURED: a line of the table.
target() {
  local result
  result=$(verdict "$2" "$3" "$4")
  [ "$result" != MISSED ] || missed=1
  verdicts+=("$(printf '%-46s at %-5s %9s %11s  %s' "$1" "$2" "$3" "${4:-nothing}" "$result")")
}

# measure WHAT COMMAND...: lines for a program that measures by itself. It prints lines "target", what, most or least, the
# target and what was measured, with tabs between them, which are added to the table; its others are shown. A program
# that fails, or prints no such line, is a target that is missed.
measure() {
  local what=$1 output line name bound wanted measured failed="" before=${#verdicts[@]}
  shift
  output=$("$@") || failed=yes
  while IFS= read -r line; do
    if [[ $line == target$'\t'* ]]; then
      IFS=$'\t' read -r _ name bound wanted measured <<<"$line"
      target "$name" "$bound" "$wanted" "$measured"
    else
      echo "$line"
    fi
  done <<<"$output"
  [ -z "$failed" ] && [ ${#verdicts[@]} -gt "$before" ] || target "$what" least 1 ""
}

# The table. False when a target was missed, or when there was none.
print_targets() {
  printf '\n%-46s %-8s %9s %11s\n' target "" "" measured
  [ ${#verdicts[@]} -gt 0 ] || return 1
  printf '%s\n' "${verdicts[@]}"
  return $missed
}

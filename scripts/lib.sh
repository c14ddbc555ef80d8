# SPDX-License-Identifier: Apache-2.0
# What the scripts share: installing what is missing, steps that fail with one clear line, and the list of the show
# commands.
# Sourced; expects $me, the script's name.
set -euo pipefail
script=$(readlink -f "$0")
cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.."
logs=build/logs

fail() {
  echo "$me: $*" >&2
  exit 1
}

# answer_help ARGUMENT...: the comment that a script begins with, when that is asked for.
answer_help() {
  [ "${1:-}" = --help ] || [ "${1:-}" = -h ] || return 0
  awk 'NR > 1 && !/^#/ { exit } /^# / && !/SPDX-/ { print substr($0, 3) } /^#$/ { print "" }' "$script"
  exit 0
}

# refuse_arguments ARGUMENT...: for scripts that take none.
refuse_arguments() { [ $# -eq 0 ] || fail "unknown argument $1 (see $me --help)"; }

# The folder of what is built may be that of another user, who ran a script first.
require_own_build() {
  local place
  for place in build "$logs"; do
    [ ! -e "$place" ] || [ -w "$place" ] ||
      fail "$PWD/$place belongs to $(stat -c %U "$place"): run $me as that user, or remove $PWD/build"
  done
  [ -e build ] || [ -w . ] || fail "$PWD belongs to $(stat -c %U .), and build/ is made in it: run $me as that user"
}

# install PACKAGE...: installs the Debian packages that are missing.
install() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  command -v apt-get >/dev/null ||
    fail "apt-get is not installed. What is needed are these packages of Debian 12, or what they hold: ${missing[*]}"
  local root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "packages are missing, and there is no sudo. An administrator installs them by:
  apt-get install --no-install-recommends ${missing[*]}"
    root=(sudo)
  fi
  step "installing ${missing[*]}" install_packages "${missing[@]}"
}

install_packages() {
  "${root[@]}" apt-get update -q || return
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -qy --no-install-recommends "$@"
}

# step WHAT COMMAND...: runs a command with its output in a log; on failure shows the log's end and
# says in one line what failed.
step() {
  local what=$1 log
  shift
  require_own_build
  mkdir -p "$logs"
  log="$logs/$(tr -c 'a-z0-9\n' '-' <<<"${what,,}" | cut -c1-60).log"
  echo "== $what"
  if ! "$@" >"$log" 2>&1; then
    tail -n 40 "$log" >&2
    fail "$what failed; the whole log is in $log"
  fi
}

build_packages=(g++ cmake ninja-build liblmdb-dev libxxhash-dev rapidjson-dev libcli11-dev
  libedit-dev libbsd-dev libncurses-dev libhiredis-dev libssl-dev libyaml-cpp-dev libcpp-httplib-dev)
bench_packages=(libbenchmark-dev protobuf-compiler libprotobuf-dev libnanopb-dev nanopb redis-server)

# build PRESET [CMAKE-OPTION...]: configures and builds a preset.
build() {
  local preset=$1
  shift
  step "configuring $preset" cmake --preset "$preset" "$@"
  step "building $preset" cmake --build --preset "$preset"
}

# The fuzz targets, by name: each has an entry point fuzz/NAME_main.cc, seeds in fuzz/corpus/NAME and, when it has found
# something, inputs in fuzz/crashers/NAME.
fuzz_targets() { basename -s _main.cc -a fuzz/*_main.cc; }

# list_lines TYPE|FORM: the lines of one kind of examples/commands.txt, each with '|' between its fields and none of the
# blanks around them, "-" for nothing, and its words in braces replaced. A line for a form begins with its type.
list_lines() {
  awk -v wanted="$1" '
    /^#/ || /^$/ { next }
    /^[a-z]+ =/ { name = $1; sub(/^[a-z]+ = */, ""); texts["{" name "}"] = $0; next }
    {
      kind = /^[0-9]/ ? "TYPE" : "FORM"
      if (kind == "TYPE") type = $1
      if (kind != wanted) next
      gsub(/^ +| +$/, ""); gsub(/ +[|] +/, "|")
      for (text in texts)
        while (at = index($0, text)) $0 = substr($0, 1, at - 1) texts[text] substr($0, at + length(text))
      count = split($0, fields, "|")
      line = kind == "FORM" ? type : ""
      for (i = 1; i <= count; ++i) line = line (line == "" ? "" : "|") (fields[i] == "-" ? "" : fields[i])
      print line
    }' examples/commands.txt
}

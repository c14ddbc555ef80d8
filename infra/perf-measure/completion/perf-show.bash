# SPDX-License-Identifier: Apache-2.0
# Bash completion for perf-show.

# The ids of the nodes that the store has items of. perf-store is the one beside the program.
_perf_show_nodes() {
    local store=perf-store
    [[ $1 == */* ]] && store=${1%/*}/perf-store
    "$store" stat 2>/dev/null | while read -r _ node _; do [[ $node == 0x* ]] && echo "$node"; done
}

# _perf_show COMMAND CURRENT PREVIOUS, as complete -F calls it.
_perf_show() {
    local program=$1 current=$2 previous=$3 words=''
    COMPREPLY=()
    case $previous in
    -c)
        words='1 2 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 20 22 23 24 25 26 27 28 30 31 32 33 34 35 36 37'
        ;;
    -t) words='3 19 21 29' ;;
    -N) words=$(_perf_show_nodes "$program") ;;
    -[DLMW]) words='0 1 2 3' ;;
    -[aefghiklmnosuQTV]) return ;;
    *) words='-A -D -L -M -N -O -P -Q -S -T -V -W -a -b -c -d -e -f -g -h -i -j -k -l -m -n -o -p -r -s -t -u -v' ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _perf_show perf-show

# SPDX-License-Identifier: Apache-2.0
# Bash completion for perf-store.

# The options of a subcommand.
_perf_store_options() {
    case $1 in
    load) echo --replace --empty ;;
    dump) echo --root --node --path --damaged ;;
    diff) echo --ignore --counters --interval ;;
    ls | get) echo --root --node ;;
    rm) echo --root --node --recursive ;;
    gen) echo --nodes --interfaces --policies --paths --endpoints --tunnels --seed ;;
    esac
    echo --help
}

# The ids of the nodes that the store has items of.
_perf_store_nodes() {
    "$1" stat 2>/dev/null | while read -r _ node _; do [[ $node == 0x* ]] && echo "$node"; done | sort -u
}

# _perf_store_paths PROGRAM BEGINNING: the paths of the items of the branch that the line names, one step further than
# what is typed.
_perf_store_paths() {
    local program=$1 beginning=$2 branch=() i rest
    for ((i = 1; i < COMP_CWORD; ++i)); do
        [[ ${COMP_WORDS[i]} != --root && ${COMP_WORDS[i]} != --node ]] || {
            [[ ${COMP_WORDS[i + 1]} == = ]] && rest=${COMP_WORDS[i + 2]} || rest=${COMP_WORDS[i + 1]}
            branch+=("${COMP_WORDS[i]}" "$rest")
        }
    done
    "$program" ls "${branch[@]}" -- "$beginning" 2>/dev/null | while read -r _ _ _ path; do
        rest=${path:${#beginning}}
        [[ $rest == */* ]] && echo "$beginning${rest%%/*}/" || echo "$path"
    done | sort -u
}

# _perf_store COMMAND CURRENT PREVIOUS, as complete -F calls it.
_perf_store() {
    local program=$1 current=$2 previous=$3 subcommand='' words='' i
    COMPREPLY=()

    # Bash makes three words of --root=main.
    if [[ $current == = ]]; then
        current=''
    elif [[ $previous == = ]]; then
        previous=${COMP_WORDS[COMP_CWORD - 2]}
    fi

    for ((i = 1; i < COMP_CWORD; ++i)); do
        if [[ ${COMP_WORDS[i]} != -* ]]; then
            subcommand=${COMP_WORDS[i]}
            break
        fi
    done

    if [[ -z $subcommand ]]; then
        words='load dump diff ls get rm types schema stat verify gen'
        [[ $current == -* ]] && words='--help --version'
    else
        case $previous in
        --root) words='main resp rx chkpt' ;;
        --node) words=$(_perf_store_nodes "$program") ;;
        --path) mapfile -t COMPREPLY < <(_perf_store_paths "$program" "$current"); return ;;
        --ignore | --interval) return ;;
        --nodes | --interfaces | --policies | --paths | --endpoints | --tunnels | --seed) return ;;
        *)
            if [[ $current == -* ]]; then
                words=$(_perf_store_options "$subcommand")
            elif [[ $subcommand == load || $subcommand == diff ]]; then
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
                return
            elif [[ $subcommand == ls || $subcommand == get || $subcommand == rm ]]; then
                mapfile -t COMPREPLY < <(_perf_store_paths "$program" "$current")
                [[ ${#COMPREPLY[@]} -ne 1 || ${COMPREPLY[0]} != */ ]] || compopt -o nospace 2>/dev/null
                return
            elif [[ $subcommand == schema && $previous == schema ]]; then
                words=$("$program" types 2>/dev/null | while read -r type _; do echo "$type"; done)
            fi
            ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}

complete -F _perf_store perf-store

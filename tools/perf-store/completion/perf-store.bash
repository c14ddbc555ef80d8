# Bash completion for perf-store.

# The options of a subcommand.
_perf_store_options() {
    case $1 in
    load) echo --replace --empty ;;
    dump) echo --root --node --path ;;
    ls | get) echo --root --node ;;
    rm) echo --root --node --recursive ;;
    gen) echo --nodes --interfaces --policies --paths --endpoints --tunnels --seed ;;
    esac
    echo --help
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
        words='load dump ls get rm types schema stat gen'
        [[ $current == -* ]] && words='--help --version'
    else
        case $previous in
        --root) words='main resp rx chkpt' ;;
        --node | --path | --nodes | --interfaces | --policies | --paths | --endpoints | --tunnels | --seed) return ;;
        *)
            if [[ $current == -* ]]; then
                words=$(_perf_store_options "$subcommand")
            elif [[ $subcommand == load ]]; then
                compopt -o filenames 2>/dev/null
                mapfile -t COMPREPLY < <(compgen -f -- "$current")
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

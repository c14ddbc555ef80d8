# SPDX-License-Identifier: Apache-2.0
# Bash completion for perf-measure. The program itself knows what may follow, also the names in the store.

# _perf_measure COMMAND CURRENT PREVIOUS, as complete -F calls it.
_perf_measure() {
    local line=${COMP_LINE:0:COMP_POINT} word help mark known
    local typed=${line##*[[:space:]]}
    COMPREPLY=()
    while IFS=$'\t' read -r word help; do
        # The beginning of several names: the next character follows at once.
        [[ $help != ... ]] || compopt -o nospace 2>/dev/null
        # Within quotes bash puts in what is needed.
        [[ $2 == [\'\"]* ]] || printf -v word %q "$word"
        COMPREPLY+=("$word")
    done < <("$1" __complete --line "$line" 2>/dev/null)
    # Bash ends words at some characters, such as the colons of an address, and replaces what follows them only.
    for mark in : =; do
        if [[ $typed == *$mark* && $COMP_WORDBREAKS == *$mark* ]]; then
            known=${typed%"${typed##*"$mark"}"}
            COMPREPLY=("${COMPREPLY[@]#"$known"}")
        fi
    done
}

complete -F _perf_measure perf-measure

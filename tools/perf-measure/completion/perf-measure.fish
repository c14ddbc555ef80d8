# SPDX-License-Identifier: Apache-2.0
# Fish completion for perf-measure. The program itself knows what may follow, also the names in the store.
complete -c perf-measure -f -a '(perf-measure __complete --line (commandline -cp) 2>/dev/null)'

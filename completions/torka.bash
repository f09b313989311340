# SPDX-License-Identifier: Apache-2.0
# Completion of torka for bash. The tool itself tells what can follow; nothing of its answer is evaluated.

_torka() {
    local line
    COMPREPLY=()
    while IFS= read -r line; do
        case $line in
            $'\tfiles') compopt -o default ;;
            $'\tfolders') compopt -o dirnames ;;
            *=) COMPREPLY+=("$line"); compopt -o nospace ;;
            */) COMPREPLY+=("$line"); compopt -o nospace ;;
            *) COMPREPLY+=("$line") ;;
        esac
    done < <("$1" complete bash "$COMP_WORDBREAKS" "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
}

complete -F _torka torka

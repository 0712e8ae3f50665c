# shellcheck shell=bash source=/dev/null
# Prints what bash offers for command lines: capture.bash COMPLETION LINE...
#
# Words are separated by single blanks. Each line's offers are followed by a line "end of offers".
. /usr/share/bash-completion/bash_completion
. "$1"
shift
for line; do
    COMP_LINE=$line
    COMP_POINT=${#line}
    read -ra COMP_WORDS <<<"$line"
    [[ $line != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    COMPREPLY=()
    # The function that bash itself would call.
    definition=$(complete -p "${COMP_WORDS[0]}")
    [[ $definition =~ -F\ ([^ ]+) ]]
    "${BASH_REMATCH[1]}" "${COMP_WORDS[0]}" "${COMP_WORDS[COMP_CWORD]}" \
        "${COMP_WORDS[COMP_CWORD - 1]}"
    [[ ${#COMPREPLY[@]} -eq 0 ]] || printf '%s\n' "${COMPREPLY[@]}"
    echo "end of offers"
done

# Prints what zsh offers for command lines: capture.zsh DIRECTORY LINE...
#
# The completions of the directory run in an interactive zsh of its own, behind a pseudo-terminal.
# Each line's offers are followed by a line "end of offers".
zmodload zsh/zpty
directory=$1
shift

zpty shell zsh -f -i
zpty -w shell "PROMPT= fpath=(${(q)directory} \$fpath)"
zpty -w shell 'autoload -Uz compinit && compinit -D -u
# Shows what is added to the list of matches. Calls that only ask the list are left alone.
compadd() {
    if [[ ${@[1,(i)(-|--)]} != *-(O|A|D)\ * ]]; then
        local -a found
        builtin compadd -A found "$@"
        (( $#found )) && print -rl -- $found >>$CAPTURED
    fi
    builtin compadd "$@"
}
# Tells the terminal, too, that a line is done.
next-line() {
    print "end of offers" >>$CAPTURED
    BUFFER=
    print -n "\x02"
}
zle -N next-line
bindkey "^I" complete-word
bindkey "^G" next-line'
for line; do
    zpty -w -n shell "$line"$'\t\x07'
    zpty -r shell output $'*\x02*'
done
zpty -d shell
cat "$CAPTURED"

# Prints what zsh completes at the end of command lines: for each line of the input one, with the matches in quotes. Its
# argument is the folder of _dcfctl. A shell of its own on a pseudo-terminal is asked, as a person asks one.
emulate -R zsh
zmodload zsh/zpty
matches=$(mktemp)
trap 'rm -f "$matches"' EXIT

zpty shell zsh -f -i
# say TEXT [UNTIL]: types it, and waits until a line of that text stands in the file.
say() {
    local output
    zpty -w -n shell "$1"
    for ((tries = 0; tries < 1000; ++tries)); do
        zpty -r -t shell output
        if grep -qxF -- "$2" $matches; then return; fi
        sleep 0.02
    done
    print -u2 "zsh never came to the end of: $1"
    exit 1
}

say "
    unset HISTFILE; PROMPT=; fpath=(${(q)1} \$fpath)
    autoload -U compinit; compinit -D -u
    zstyle ':completion:*' completer _complete
    # Whatever is offered ends up in compadd. Calls that only filter an array offer nothing.
    compadd() {
        if [[ \${@[1,(i)(-|--)]} == *-(O|A|D)\ * ]]; then builtin compadd \"\$@\"; return; fi
        local -a hits; builtin compadd -A hits \"\$@\"
        print -rl -- \$hits >>$matches
        builtin compadd \"\$@\"
    }
    ended() { print -rl -- '' --end-- >>$matches; comppostfuncs=(ended) }; comppostfuncs=(ended)
    bindkey '^I' complete-word; bindkey '^U' kill-whole-line
    print -- --ready-- >$matches"$'\n' --ready--

while IFS= read -r line; do
    : >$matches
    say $line$'\t' --end--
    print -r -- ${(j: :)${(f)"$(grep -vxF -e --end-- -e '' $matches)"}}
    zpty -w -n shell $'\C-u'
done

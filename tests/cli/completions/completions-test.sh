#!/usr/bin/env bash
# Asks a shell what it completes behind dcfctl, and compares that with what dcfctl itself says of its verbs and options.
# Usage: completions-test.sh bash|zsh DCFCTL FOLDER-OF-THE-COMPLETIONS
set -euo pipefail

shell=$1 dcfctl=$2 completions=$3
here=$(cd "$(dirname "$0")" && pwd)
if [ "$shell" = zsh ] && ! command -v zsh >/dev/null; then
    echo "zsh is not there"
    exit 77
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
card=$scratch/card
mkdir "$card"
"$dcfctl" sample "$card" >/dev/null
folders=$(cd "$card/DCIM" && printf '%s\n' *)
folder=${folders%%$'\n'*}
files=$(cd "$card/DCIM/$folder" && printf '%s\n' *)
mkdir "$scratch/here"
touch "$scratch/here/a b.jpg"
cd "$scratch/here"
unset DCF_CARD

in_bash() {
    # shellcheck source=tools/dcfctl/completions/dcfctl.bash
    . "$completions/dcfctl.bash"
    local line
    while IFS= read -r line; do
        # As readline takes it apart: "=" is a word, and the word at the cursor may be empty.
        read -ra COMP_WORDS <<<"${line//=/ = }"
        if [[ $line == *' ' ]]; then COMP_WORDS+=(''); fi
        COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
        COMPREPLY=()
        _dcfctl || true
        [ "${#COMPREPLY[@]}" -eq 0 ] || printf '%q ' "${COMPREPLY[@]}"
        echo
    done
}
ask() {
    case $shell in
    bash) in_bash ;;
    zsh) zsh -f "$here/capture.zsh" "$completions" ;;
    esac
}

questions=() answers=()
# expect LINE WORD...: what is completed at the end of the line, in any order.
expect() {
    questions+=("$1")
    shift
    answers+=("$(printf '%s\n' "$@" | sort -u | paste -sd' ')")
}

verbs=$("$dcfctl" --help | awk '/^Verbs/ { on = 1; next } /^[^ ]/ { on = 0 } on && /^  [a-z]/ { print $1 }')
# options_of [VERB]: as its help lists them, each of its names.
options_of() {
    "$dcfctl" "$@" --help | awk '/^Options:/ { on = 1; next } /^[^ ]/ { on = 0 }
        on && /^  -/ { count = split($1, names, ","); for (i = 1; i <= count; ++i) { sub(/:.*/, "", names[i]); print names[i] } }'
}

# shellcheck disable=SC2086 # one word per verb
expect 'dcfctl ' $verbs
# shellcheck disable=SC2046 # one word per option
expect 'dcfctl -' $(options_of)
for verb in $verbs; do
    # shellcheck disable=SC2046
    expect "dcfctl $verb -" $(options_of "$verb") --card
done
expect 'dcfctl ls --type ' JPG SRW MPO MP4 AVI
expect 'dcfctl latest-name --type ' SRW MPO
expect 'dcfctl add --colour ' standard optional
expect 'dcfctl series ' show set reset
expect 'dcfctl --card x un' unprotect

# Of a path the last part is compared: one shell completes the whole word, the other the part behind the last "/".
# shellcheck disable=SC2086 # one word per name
{
    expect "dcfctl --card $card ls --dir " $folders
    expect "dcfctl --card $card show DCIM/" $folders
    expect "dcfctl --card=$card show DCIM/" $folders
    expect "dcfctl show --card $card DCIM/" $folders
    expect "dcfctl --card $card rm --dry-run DCIM/$folder/" $files
}
expect "dcfctl --card $scratch/no" ''
expect "dcfctl --card $scratch/" card here
expect 'dcfctl add ' 'a\ b.jpg'
expect 'dcfctl sheet --out ' 'a\ b.jpg'
expect 'dcfctl ls --limit ' ''

failures=0 asked=0
while IFS= read -r line; do
    # Names with a quoted blank stay one word.
    got=$(tr -s ' ' '\n' <<<"${line//\\ /$'\1'}" | sed 's|/$||; s|.*/||; s/\x01/\\ /g; /^$/d' | sort -u | paste -sd' ')
    if [ "$got" != "${answers[asked]}" ]; then
        printf '%s\n  expected: %s\n  %s completes: %s\n' "${questions[asked]}" "${answers[asked]}" "$shell" "$got"
        failures=$((failures + 1))
    fi
    asked=$((asked + 1))
done < <(printf '%s\n' "${questions[@]}" | ask)
[ "$asked" -eq "${#questions[@]}" ] || {
    echo "$asked of ${#questions[@]} questions were answered."
    exit 1
}
echo "$asked command lines, $failures of them wrong"
[ "$failures" -eq 0 ]

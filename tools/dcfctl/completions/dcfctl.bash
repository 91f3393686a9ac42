# shellcheck shell=bash
# What bash completes behind dcfctl: verbs, options, their values, and files of the card. bash-completion loads this by its
# name; it can be sourced as well. tests/cli/completions holds it against what dcfctl itself says of its options.

# _dcfctl_options VERB: the options of a verb, or without one those that stand before it.
_dcfctl_options() {
    local naming='--prefix --date-names --colour --color --3d --date-folders --series --dry-run'
    case $1 in
    '') printf '%s' '--version' ;;
    ls) printf '%s' '--type --dir --limit --json --no-camera --metadata --paths -0 --null' ;;
    count) printf '%s' '--type --json --no-camera' ;;
    shell | sample | series) printf '%s' '--json' ;;
    browse) printf '%s' '--no-camera' ;;
    show | explain) printf '%s' '--json --no-camera' ;;
    check) printf '%s' '--all --json --no-camera' ;;
    sheet) printf '%s' '--out --thumbnails --force --json --no-camera' ;;
    rm) printf '%s' '--json --pos --all --protected-too --dry-run --yes --no-camera' ;;
    protect | unprotect | toggle) printf '%s' '--json --pos --all --no-camera' ;;
    latest-name) printf '%s' '--json --type --no-camera' ;;
    capacity) printf '%s' '--json --date-folders --series --no-camera' ;;
    next-name) printf '%s' "--json --type $naming --no-camera" ;;
    add) printf '%s' "--json $naming --no-camera" ;;
    renumber) printf '%s' '--json --dry-run --force --no-camera' ;;
    esac
    printf '%s' ' -h --help --card'
}

# _dcfctl_found FOLDER KIND PREFIX: what is there in a folder, of the KIND that compgen knows as -f (all) or -d (folders).
# Folders end in "/", and no space follows them.
_dcfctl_found() {
    local name
    compopt -o filenames 2>/dev/null
    while IFS= read -r name; do
        if [ -d "$1/$name" ] || { [[ $name == /* ]] && [ -d "$name" ]; }; then
            name+=/
            compopt -o nospace 2>/dev/null
        fi
        COMPREPLY+=("$name")
    done < <(cd -- "$1" 2>/dev/null && compgen "$2" -- "$3")
}

_dcfctl() {
    local verbs='ls count show shell sample browse check explain sheet rm protect unprotect toggle latest-name capacity
        next-name add renumber series'
    local word=${COMP_WORDS[COMP_CWORD]} verb='' card=${DCF_CARD:-/mnt/mmc} option='' behind='' index
    COMPREPLY=()

    # A value may stand behind "=", which bash makes a word of its own.
    for ((index = 1; index <= COMP_CWORD; ++index)); do
        if [ "${COMP_WORDS[index]}" = = ]; then continue; fi
        option=$behind
        behind=''
        case ${COMP_WORDS[index]} in
        --card | --type | --dir | --limit | --out | --thumbnails | --pos | --prefix | --colour | --color)
            behind=${COMP_WORDS[index]}
            ;;
        -*) ;;
        *)
            if [ "$index" -eq "$COMP_CWORD" ]; then break; fi
            if [ "$option" = --card ]; then
                card=${COMP_WORDS[index]/#\~/$HOME}
            elif [ -z "$option$verb" ]; then
                verb=${COMP_WORDS[index]}
            fi
            ;;
        esac
    done
    if [ "$word" = = ]; then
        option=$behind
        word=''
    fi

    case $option in
    --card)
        _dcfctl_found . -d "$word"
        return
        ;;
    --out)
        _dcfctl_found . -f "$word"
        return
        ;;
    --dir)
        _dcfctl_found "$card/DCIM" -d "$word"
        COMPREPLY=("${COMPREPLY[@]%/}")
        return
        ;;
    --type)
        local types='JPG SRW MPO MP4 AVI'
        if [ "$verb" = latest-name ]; then types='SRW MPO'; fi
        mapfile -t COMPREPLY < <(compgen -W "$types" -- "${word^^}")
        return
        ;;
    --colour | --color)
        mapfile -t COMPREPLY < <(compgen -W 'standard optional' -- "$word")
        return
        ;;
    --limit | --thumbnails | --prefix) return ;;
    esac

    if [[ $word == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$(_dcfctl_options "$verb")" -- "$word")
        return
    fi
    case $verb in
    '') mapfile -t COMPREPLY < <(compgen -W "$verbs" -- "$word") ;;
    show | explain | rm | protect | unprotect | toggle) _dcfctl_found "$card" -f "$word" ;;
    sample) _dcfctl_found . -d "$word" ;;
    add) _dcfctl_found . -f "$word" ;;
    series) mapfile -t COMPREPLY < <(compgen -W 'show set reset' -- "$word") ;;
    esac
}
complete -F _dcfctl dcfctl

#!/usr/bin/env bash
# The examples of a document. A block that is marked "card" holds the entries of a card, line by line, and behind a "$" the
# commands that are run on it, each followed by what it prints; a block that is marked "console" holds commands alone. Each
# is done in a folder of its own and compared. With --write the document gets what the commands print; look at that before
# you believe it.
# Usage: examples-test.sh [--write] DOCUMENT DCFCTL
set -euo pipefail

write=
if [ "${1:-}" = --write ]; then
    write=1
    shift
fi
document=$(realpath "$1")
dcfctl=$(realpath "$2")
scratch=$(mktemp -d)
trap 'chmod -R u+w "$scratch" && rm -rf "$scratch"' EXIT
PATH=$(dirname "$dcfctl"):$PATH
unset DCF_LOG
export DCF_CARD=. DCF_PREFERENCES=$scratch/preferences LC_ALL=C.UTF-8 TZ=UTC0
umask 022

make_entry() {
    case $1 in
    */) mkdir -p "./$1" ;;
    *)
        mkdir -p "$(dirname "./$1")"
        touch -d 2024-05-01T12:00:00Z "./$1"
        ;;
    esac
}

# replay: reads a block and writes it with what its commands print.
replay() {
    local line making=1
    rm -f "$DCF_PREFERENCES"
    cd "$(mktemp -d "$scratch/card.XXXXXX")"
    while IFS= read -r line; do
        if [ "${line:0:2}" = '$ ' ]; then
            making=
            printf '%s\n' "$line"
            # Standard error is not part of it unless the command says so; an exit code of 1 or 3 may be the point.
            bash -c "${line:2}" 2>/dev/null </dev/null || true
        elif [ -n "$making" ]; then
            printf '%s\n' "$line"
            make_entry "$line"
        fi
    done
}

blocks=0
while IFS= read -r line; do
    printf '%s\n' "$line"
    [ "$line" = '```card' ] || [ "$line" = '```console' ] || continue
    blocks=$((blocks + 1))
    block=
    while IFS= read -r line && [ "$line" != '```' ]; do block+=$line$'\n'; done
    (replay <<<"${block%$'\n'}")
    printf '```\n'
done <"$document" >"$scratch/replayed"

[ "$blocks" -gt 0 ] || {
    echo "$document holds no example."
    exit 1
}
if [ -n "$write" ]; then
    cat "$scratch/replayed" >"$document"
else
    diff "$document" "$scratch/replayed" && echo "$blocks examples hold."
fi

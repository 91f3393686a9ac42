#!/usr/bin/env bash
# The man page against the program: each verb, option and exit code of the help stands in it, and the other way round.
# Usage: man-page-test.sh MAN-PAGE DCFCTL
set -euo pipefail

page=$1
dcfctl=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# section TITLE: the lines of a section of the page.
section() { awk -v title=".Sh $1" '$0 == title { on = 1; next } /^\.Sh / { on = 0 } on' "$page"; }

# flags: the options that lines of the page name, as one writes them.
flags() { grep -oE 'Fl [A-Za-z0-9-]+' | sed -E 's/^Fl -?/-/; s/^-(..)/--\1/' | sort -u; }

# options VERB...: the options of a help but for -h, one a line, with all the names of each between blanks.
options() { "$dcfctl" "$@" --help | sed -nE 's/^  (-[^ ]+).*/ \1 /p' | tr ',' ' ' | grep -v ' -h '; }

# The naming options are described once and meant twice.
awk '/^\.Ss next-name$/ { on = 1; next } /^\.Ss / { on = 0 } on && /^\.It Fl/' "$page" | flags >"$scratch/naming"

# Each entry of the synopsis: its verbs, and its options with those that are meant by "naming options".
section SYNOPSIS | awk -v folder="$scratch" '/^\.Nm$/ { ++entry } entry { print >(folder "/entry." entry) }'
for entry in "$scratch"/entry.*; do
    flags <"$entry" >"$scratch/flags"
    if grep -q 'naming options' "$entry"; then sort -u "$scratch/naming" "$scratch/flags" -o "$scratch/flags"; fi
    sed -n 's/^\.Cm //p' "$entry" | tr -d '|' | tr -s ' ' '\n' | while read -r verb; do
        grep -vx -e --card "$scratch/flags" | sed "s/^/$verb /" || true
        printf '%s\n' "$verb" >>"$scratch/page-verbs"
    done
done | sort >"$scratch/page-options"
"$dcfctl" --help | awk '/^Exit codes:/ { exit } /^Verbs/ { on = 1 } /^  / && on { print $1 }' >"$scratch/verbs"

failed=
complain() {
    printf '%s\n' "$1"
    failed=1
}

[ -s "$scratch/verbs" ] || complain 'the help names no verb'
[ -s "$scratch/naming" ] || complain 'the page describes no naming option'
diff <(sort "$scratch/verbs") <(sort "$scratch/page-verbs") || complain 'verbs: < of the help, > of the synopsis'
while read -r verb; do
    grep -qx "\.Ss $verb" "$page" || complain "$verb has no section"
    named=$(grep "^$verb " "$scratch/page-options" | cut -d' ' -f2 || true)
    options "$verb" >"$scratch/options"
    while read -r names; do
        shown=$(tr -s ' ' '\n' <<<"$names" | grep -xF -e "${named:-none}" || true)
        [ -n "$shown" ] || complain "$verb $names: not in the synopsis"
        described=$(tr -s ' ' '\n' <<<"$names" | sed 's/^-//' | while read -r name; do
            grep -E -- "^\.It Fl (.* )?${name}( |$)" "$page" || true
        done)
        [ -n "$described" ] || complain "$verb $names: not described"
    done <"$scratch/options"
    for name in $named; do
        grep -qF -- " $name " "$scratch/options" || complain "$verb $name: in the synopsis, and not in the help"
    done
done <"$scratch/verbs"
while read -r names; do
    grep -qF -- "Fl -${names#--}" <(section SYNOPSIS) || complain "$names: not in the synopsis"
done < <(options)
diff <("$dcfctl" --help | awk '/^Exit codes:/ { on = 1 } on && /^  [0-9]/ { print $1 }') \
    <(section 'EXIT STATUS' | sed -nE 's/^\.It ([0-9]+)$/\1/p') || complain 'exit codes: < of the help, > of the page'
[ -z "$failed" ]

# shellcheck shell=bash
# What the scripts share: the checkout's root, packages, results. Sourced, after "set -euo pipefail".

ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# shellcheck disable=SC2034 # used by the scripts that source this file
BUILD=$ROOT/build
cd "$ROOT" || exit 1

die() {
    printf '%s: %s\n' "${0#"$ROOT"/}" "$1" >&2
    exit "${2:-1}"
}

# packages GROUP...: the packages of these groups, one per line.
packages() {
    local wanted=" $* "
    awk -v wanted="$wanted" '
        { sub(/#.*/, ""); gsub(/[ \t]/, "") }
        /^\[.*\]$/ { group = " " substr($0, 2, length($0) - 2) " "; next }
        $0 != "" && index(wanted, group)' scripts/packages.txt
}

# missing_packages GROUP...: those of them that are not installed.
missing_packages() {
    local installed
    installed=$(dpkg-query -W -f '${Package} ${db:Status-Status}\n' 2>/dev/null | awk '$2 == "installed" { print $1 }')
    packages "$@" | grep -vxF -e "$installed" || true
}

# install_packages GROUP...: installs what is missing. Silent and without a look at the network when nothing is.
install_packages() {
    command -v dpkg-query >/dev/null || {
        printf 'This is not a Debian system: the packages of scripts/packages.txt are taken to be there.\n' >&2
        return 0
    }
    local missing as_root=()
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            printf 'Missing packages, and neither root nor sudo to install them. As root:\n  apt-get install %s\n' \
                "$(tr '\n' ' ' <<<"$missing")" >&2
            return 1
        fi
        as_root=(sudo)
        # Nobody is there to type a password into a gate.
        [ -t 0 ] || as_root=(sudo -n)
    fi
    printf 'Installing: %s\n' "$(tr '\n' ' ' <<<"$missing")" >&2
    # An update that fails (one unreachable archive of several) may still leave usable lists behind.
    "${as_root[@]}" apt-get update -qq >&2 || true
    # shellcheck disable=SC2086 # one word per package
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -qq -o DPkg::Lock::Timeout=300 --no-install-recommends $missing >&2 </dev/null || {
        printf 'These packages could not be installed (is the network there?): %s\n' "$(tr '\n' ' ' <<<"$missing")" >&2
        return 1
    }
}

# The results of a check: one line each on standard output. For scripts/test they go into the file DCF_RESULTS, and what
# has passed is not worth a line of its log.
result() {
    if [ -n "${DCF_RESULTS:-}" ]; then
        printf '%s %s\n' "$1" "$2" >>"$DCF_RESULTS"
        [ "$1" != passed ] || return 0
    fi
    printf '%s: %s\n' "$1" "$2"
}
PASSES=0
pass() {
    PASSES=$((PASSES + 1))
    result passed "$1"
}
SKIPS=0
skip() {
    SKIPS=$((SKIPS + 1))
    result skipped "$1"
}
FAILURES=0
fail() {
    FAILURES=$((FAILURES + 1))
    result failed "$1"
}
# How many there were, for checks with so many that nobody counts them.
figures() { printf '%d passed, %d failed, %d skipped\n' "$PASSES" "$FAILURES" "$SKIPS"; }
# The last command of every check.
conclude() { [ "$FAILURES" -eq 0 ]; }

# verdict NAME TEXT: passes when TEXT is empty, else fails and shows it.
verdict() {
    if [ -z "$2" ]; then
        pass "$1"
    else
        fail "$1"
        printf '%s\n' "$2" | sed 's/^/    /'
    fi
}

# source_files PATH FIND-EXPRESSION...: files of the checkout under PATH, without what a build leaves behind.
source_files() {
    local where=$1
    shift
    find "$where" \( -name .git -o -path './build*' \) -prune -o -type f \( "$@" \) -print | sed 's|^\./||' | sort
}

# cpp_files PATH...: all C++ files under the paths.
cpp_files() {
    local path
    for path in "$@"; do
        if [ -d "$path" ]; then source_files "$path" -name '*.cpp' -o -name '*.h'; fi
    done
}

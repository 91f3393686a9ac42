#!/usr/bin/env bash
# The skeleton of a platform layer is enough for a client: it lists a card and logs.
# Usage: skeleton-test.sh COMMAND... (the program on the skeleton, behind an emulator or not)
set -euo pipefail

card=$(mktemp -d)
trap 'rm -rf "$card"' EXIT
mkdir -p "$card/DCIM/100PHOTO"
touch "$card/DCIM/100PHOTO/KVR_0001.JPG"

diff <("$@" "$card" 2>"$card/log") - <<EXPECTED
1 files
$card/DCIM/100PHOTO/KVR_0001.JPG 
EXPECTED
grep -q '^MM_FLIST: CSFileList: Listup([0-9]*) > ' "$card/log" || {
    printf 'the log holds no line of the listing:\n'
    cat "$card/log"
    exit 1
}

#!/usr/bin/env bash
# Runs the minimal client (the program given) over a small card and compares all that it prints.
set -euo pipefail

card=$(mktemp -d)
trap 'rm -rf "$card"' EXIT
mkdir -p "$card/DCIM/100ABCDE" "$card/DCIM/101PHOTO" "$card/DCIM/Camera"
touch "$card/DCIM/100ABCDE/KVR_0001.JPG" "$card/DCIM/101PHOTO/KVR_0002.JPG" "$card/DCIM/101PHOTO/KVR_0002.SRW" \
    "$card/DCIM/101PHOTO/KVR_0010.MP4" "$card/DCIM/101PHOTO/NOTES.TXT" "$card/DCIM/Camera/20240131_123456.JPG"

diff <("$1" "$card") - <<EXPECTED
4 files
$card/DCIM/101PHOTO/KVR_0010.MP4 
$card/DCIM/101PHOTO/KVR_0002.JPG $card/DCIM/101PHOTO/KVR_0002.SRW
$card/DCIM/100ABCDE/KVR_0001.JPG 
$card/DCIM/Camera/20240131_123456.JPG 
EXPECTED

# An empty card is no error, and a root that is too long is refused.
mkdir "$card/empty"
diff <("$1" "$card/empty") <(echo '0 files')
long=/$(printf 'x%.0s' {1..97})
if "$1" "$long" 2>"$card/message"; then
    echo "A root of 98 characters was taken."
    exit 1
fi
diff "$card/message" <(echo 'The path of a card has at most 97 characters.')

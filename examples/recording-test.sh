#!/usr/bin/env bash
# Runs the recording client (the program given): two pictures, one that fails half-way, and wrong input.
set -euo pipefail

card=$(mktemp -d)
trap 'rm -rf "$card"' EXIT
export DCF_PREFERENCES=$card/preferences
recording=$1

diff <("$recording" "$card" <<<'first') <(echo "$card/DCIM/100PHOTO/KVR_0001.JPG")
diff <("$recording" "$card" ABCD <<<'second') <(echo "$card/DCIM/100PHOTO/ABCD0002.JPG")
diff "$card/DCIM/100PHOTO/KVR_0001.JPG" <(echo 'first')
diff "$card/DCIM/100PHOTO/ABCD0002.JPG" <(echo 'second')

# A picture that cannot be written whole leaves nothing behind and the next one takes its number. Reading from a folder
# fails the way a broken source does.
if "$recording" "$card" </ 2>"$card/message"; then
    echo 'A picture from an unreadable source was recorded.'
    exit 1
fi
grep -q "^$card/DCIM/100PHOTO/KVR_0003.JPG: " "$card/message"
diff <(ls "$card/DCIM/100PHOTO") <(printf '%s\n' ABCD0002.JPG KVR_0001.JPG)
diff <("$recording" "$card" <<<'third') <(echo "$card/DCIM/100PHOTO/KVR_0003.JPG")

for prefix in ABC ABCDE; do
    status=0
    "$recording" "$card" "$prefix" </dev/null 2>"$card/message" || status=$?
    [ "$status" -eq 2 ]
    grep -q 'exactly four characters' "$card/message"
done

# A card whose numbers are used up is refused.
mkdir -p "$card/full/DCIM/999PHOTO"
touch "$card/full/DCIM/999PHOTO/KVR_9999.JPG"
if "$recording" "$card/full" <<<'late' 2>"$card/message"; then
    echo 'A number beyond the last one was given out.'
    exit 1
fi
diff "$card/message" <(echo "The card's numbers are used up: renumber it.")
diff <(ls "$card/full/DCIM") <(echo 999PHOTO)

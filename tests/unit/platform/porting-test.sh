#!/usr/bin/env bash
# The smallest platform that the porting guide shows is enough for a client: it compiles as it stands, links without the
# host layer and lists a card.
# Usage: porting-test.sh SOURCE-FOLDER LIBRARY-FOLDER COMPILER [FLAG...]
set -euo pipefail

source=$1
libraries=$2
compile=("${@:3}" -std=c++11 -Wall -I"$source/include" -I"$source/platform/include")
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

awk '$0 == "```cpp" { on = 1; next } /^```$/ { on = 0 } on' "$source/docs/porting.md" >"$folder/platform.cpp"
"${compile[@]}" -shared -fPIC "$folder/platform.cpp" -o "$folder/libplatform.so"
"${compile[@]}" "$source/examples/minimal.cpp" -o "$folder/minimal" \
    -L"$libraries" -L"$folder" -ldcffilelist -lplatform -Wl,-rpath,"$libraries:$folder"

mkdir -p "$folder/card/DCIM/100PHOTO"
touch "$folder/card/DCIM/100PHOTO/KVR_0001.JPG"
listed=$("$folder/minimal" "$folder/card" 2>"$folder/log")
expected=$(printf '1 files\n%s ' "$folder/card/DCIM/100PHOTO/KVR_0001.JPG")
if [ "$listed" != "$expected" ]; then
    printf 'expected "%s", got "%s"\n' "$expected" "$listed"
    exit 1
fi
grep -q '^MM_FLIST: CSFileList: Listup([0-9]*) > ' "$folder/log" || {
    printf 'the log holds no line of the listing:\n'
    cat "$folder/log"
    exit 1
}

# shellcheck shell=bash
# What scripts/abi-check and scripts/abi-store share. Sourced behind scripts/lib.sh.

# The architectures with goldens under abi/, as Debian names them.
# shellcheck disable=SC2034 # used by the scripts that source this file
ABI_ARCHITECTURES=(amd64 arm64 armhf)

# preset_of ARCHITECTURE: what builds a library for it here; empty where nothing does.
preset_of() {
    if [ "$1" = "$(native_architecture)" ]; then
        echo library
    elif command -v "$(cross_compiler "$1")" >/dev/null && [ -d /usr/src/googletest ]; then
        echo "$1"
    fi
}

native_architecture() {
    case $(uname -m) in
    x86_64) echo amd64 ;;
    aarch64) echo arm64 ;;
    *) uname -m ;;
    esac
}

cross_compiler() {
    case $1 in
    arm64) echo aarch64-linux-gnu-g++ ;;
    armhf) echo arm-linux-gnueabihf-g++ ;;
    *) echo "$1-linux-gnu-g++" ;;
    esac
}

# build_library PRESET: builds the library alone and tells where it is.
build_library() {
    cmake --preset "$1" >/dev/null
    cmake --build --preset "$1" --target dcffilelist >/dev/null
    echo "$BUILD/$1/lib/libdcffilelist.so.1"
}

# dump_vtables FILE: the virtual tables as the classes' own sources make them, which no architecture changes.
dump_vtables() {
    local class
    for class in ISFileList CSFileList CSDCFList CSDCFDir PCSDCFFSIO; do
        clang++-14 -std=c++20 -D_FILE_OFFSET_BITS=64 -Iinclude -ISrc -Iplatform/include -Xclang -fdump-vtable-layouts \
            -S -emit-llvm -o /dev/null "Src/$class.cpp" |
            awk -v class="$class" '$0 ~ "^Vtable for \x27" class "\x27" { on = 1 } /^$/ { on = 0 } on'
        echo
    done >"$1"
}

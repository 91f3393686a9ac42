# shellcheck shell=bash
# The emulated machine of scripts/card-tests: a Debian kernel with its own FAT and exFAT drivers in qemu. It needs
# neither root nor kernel modules nor loop devices on the host. Sourced, behind scripts/lib.sh.

# Kernel and base file system are fetched once; they are no part of a checkout.
if [ -n "${HOME:-}${XDG_CACHE_HOME:-}" ]; then
    CARD_CACHE=${DCF_CARD_CACHE:-${XDG_CACHE_HOME:-$HOME/.cache}/dcffilelist-cards}
else
    CARD_CACHE=${DCF_CARD_CACHE:-$BUILD/cards/cache}
fi
BUSYBOX=/bin/busybox
PATH=$PATH:/usr/sbin:/sbin

# machine_lacks: why there can be no machine here, or nothing.
machine_lacks() {
    local command
    [ "$(uname -m)" = x86_64 ] || {
        printf 'the machine runs x86-64 programs, and this is %s' "$(uname -m)"
        return
    }
    for command in qemu-system-x86_64 mkfs.vfat mkfs.exfat fsck.vfat fsck.exfat; do
        command -v "$command" >/dev/null || {
            printf 'there is no %s (the packages [cards] of scripts/packages.txt)' "$command"
            return
        }
    done
    "$BUSYBOX" depmod --help >/dev/null 2>&1 || printf 'there is no busybox-static'
}

# pack DIRECTORY: it as an archive for a kernel to unpack.
pack() { (cd "$1" && find . | "$BUSYBOX" cpio -o -H newc -R 0:0 2>/dev/null); }

# copy_modules FROM TO: the drivers, whichever way the package has compressed them.
copy_modules() {
    local wanted file target
    for wanted in drivers/virtio drivers/block/virtio_blk drivers/char/virtio_console fs/fat fs/exfat fs/nls; do
        for file in "$1/kernel/$wanted".ko* "$1/kernel/$wanted"/*.ko*; do
            [ -f "$file" ] || continue # built in, or a folder
            target=$2/kernel/${file#"$1/kernel/"}
            mkdir -p "$(dirname "$target")"
            case $file in
            *.xz) xz -dc "$file" >"${target%.xz}" ;;
            *.zst) zstd -dqc "$file" >"${target%.zst}" ;;
            *) cp "$file" "$target" ;;
            esac
        done
    done
    cp "$1"/modules.builtin "$2/"
}

# make_base PACKAGE FILE: the file system that the machine starts with, from an unpacked kernel package.
make_base() {
    local root=$1.base version applet
    version=$(basename "$1"/lib/modules/*)
    mkdir -p "$root"/{bin,sbin,dev,etc,mnt,proc,sys,run,tmp,card,"lib/modules/$version"}
    cp "$BUSYBOX" "$root/bin/busybox"
    for applet in $("$BUSYBOX" --list | grep -vx busybox); do ln -s busybox "$root/bin/$applet"; done
    ln -s ../bin/busybox "$root/sbin/modprobe" # the kernel asks there for the tables of characters
    copy_modules "$1/lib/modules/$version" "$root/lib/modules/$version"
    "$BUSYBOX" depmod -b "$root" "$version"
    printf 'root:x:0:0:root:/:/bin/sh\n' >"$root/etc/passwd"
    printf 'root:x:0:\n' >"$root/etc/group"
    cp scripts/cards/init "$root/init"
    chmod 755 "$root/init"
    pack "$root" >"$2"
}

# fetch_kernel FOLDER: the newest kernel's package into it.
fetch_kernel() {
    local meta package
    meta=$(packages cards-kernel)
    # This package is empty and names that kernel.
    package=$(apt-cache depends "$meta" 2>/dev/null | sed -n 's/^ *Depends: \(linux-image-[0-9].*\)/\1/p' | head -n 1)
    (cd "$1" && apt-get -qq download "${package:-$meta}" >&2)
}

# The recipe of what is kept; another one makes it anew.
recipe() { cat scripts/cards/init scripts/cards/machine.sh; }

# fetch_machine: makes kernel and base file system, if they are not there. Returns 1 if it cannot.
fetch_machine() {
    if recipe | cmp -s - "$CARD_CACHE/recipe"; then return 0; fi
    local work done=1
    mkdir -p "$CARD_CACHE" && work=$(mktemp -d "$CARD_CACHE/making.XXXXXX") || return 1
    if [ ! -s "$CARD_CACHE/kernel.deb" ] && fetch_kernel "$work"; then mv "$work"/*.deb "$CARD_CACHE/kernel.deb"; fi
    # The recipe last: it says that the rest is there.
    if dpkg-deb -x "$CARD_CACHE/kernel.deb" "$work/package" && make_base "$work/package" "$work/base" &&
        mv "$work"/package/boot/vmlinuz-* "$CARD_CACHE/kernel" && mv "$work/base" "$CARD_CACHE/base" &&
        recipe >"$work/recipe" && mv "$work/recipe" "$CARD_CACHE/recipe"; then
        done=0
    fi
    rm -rf "$work"
    return "$done"
}

# make_card FILE FAT32|EXFAT MEGABYTES CLUSTER-KIB: an empty card; the file is sparse.
make_card() {
    rm -f "$1"
    truncate -s "$3M" "$1"
    case $2 in
    fat32) mkfs.vfat -F 32 -S 512 -s "$(($4 * 2))" -n CARD "$1" ;;
    exfat) mkfs.exfat -c "${4}K" -L CARD "$1" ;;
    esac >/dev/null
}

# check_card FILE fat32|exfat: what fsck finds on it; nothing when it is sound.
check_card() {
    local output
    case $2 in
    fat32) output=$(fsck.vfat -n "$1" 2>&1) || printf '%s\n' "$output" ;;
    exfat) output=$(fsck.exfat -n "$1" 2>&1) || printf '%s\n' "$output" ;;
    esac
}

# add_libraries PAYLOAD: the shared libraries of its programs, in its folder lib; the loader where programs expect it.
add_libraries() {
    local payload=$1 library
    mkdir -p "$payload/lib"
    find "$payload" -maxdepth 1 -type f -perm -u+x -print0 | xargs -0 ldd 2>/dev/null |
        sed -n 's/^.*=> \(\/[^ ]*\) (0x.*$/\1/p' | sort -u | while read -r library; do
        cp -L "$library" "$payload/lib/"
        strip --strip-unneeded "$payload/lib/$(basename "$library")"
    done
}

# make_disk PAYLOAD FILE: the first file system of the machine: the base, and the payload at /payload.
make_disk() {
    local stage=$2.stage loader=/lib64/ld-linux-x86-64.so.2
    mkdir -p "$stage/lib64"
    cp -a "$1" "$stage/payload"
    cp -L "$loader" "$stage$loader"
    # Archives of cpio may follow each other.
    { cat "$CARD_CACHE/base" && pack "$stage"; } >"$2"
    rm -rf "$stage"
}

# boot DISK REPORT SECONDS [ICOUNT] CARD...: runs the machine to its end with these cards as /dev/vda, /dev/vdb and so on.
# What /payload/run printed is in REPORT, with "machine: ended with" as its last line if the machine came to its end.
boot() {
    local disk=$1 report=$2 limit=$3 clock=() cards=() card
    shift 3
    if [ "$1" = icount ]; then
        # Time inside goes by instructions, one per nanosecond, whatever the host does.
        clock=(-icount "shift=0,sleep=off" -rtc "base=utc,clock=vm")
        shift
    fi
    for card in "$@"; do
        cards+=(-drive "file=$card,format=raw,if=virtio,cache=unsafe")
    done
    rm -f "$report"
    # In the foreground of its group, so that whoever ends the group ends it, too.
    timeout --foreground --kill-after=10 "$limit" qemu-system-x86_64 -no-user-config -nodefaults -display none -no-reboot \
        -accel tcg -machine q35 -cpu max -m 512 "${clock[@]}" \
        -kernel "$CARD_CACHE/kernel" -initrd "$disk" -append "console=ttyS0 panic=-1 quiet mitigations=off" \
        -serial "file:$report.console" "${cards[@]}" -device virtio-serial-pci \
        -chardev "file,id=report,path=$report" -device virtserialport,nr=1,chardev=report \
        </dev/null >"$report.qemu" 2>&1 &
    wait $! || true
}

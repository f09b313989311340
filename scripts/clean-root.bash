#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# For scripts/check-package and scripts/check-readme, which source it: a fresh Debian in a temporary folder, "$root".
#
#     SUITE      the suite; "bookworm" by default
#     MIRROR     the archive; debootstrap's own by default
#     BASE       a root that debootstrap made before: the scripts copy it, and are done sooner
#     APT_CONF   a file with settings of apt that the root needs too, such as those of a proxy
#
# Debian's archive is the only thing that is asked over the network.
name=$(basename "$0")
printer=192.0.2.7 # an address for documentation: nobody has it

say() { echo "$name: $*" >&2; }
fail() {
    say "$*"
    exit 1
}

# Goes on in namespaces of its own: what the script mounts or starts ends with it, and no other process is in reach.
own_namespaces() { # ARGUMENT...: those of the script
    local program
    [ "$(id -u)" -eq 0 ] || fail "needs root, for debootstrap and chroot"
    for program in debootstrap unshare ip python3; do
        command -v "$program" >/dev/null || fail "$program is missing (apt-get install debootstrap util-linux iproute2 python3)"
    done
    [ "$$" -eq 1 ] || exec unshare --mount --pid --fork --mount-proc --kill-child "$0" "$@"
    trap 'exit 130' INT TERM # the first process of a namespace ignores them otherwise
}

# Runs a command. Shows its last line every 20 seconds, and the end of its output when it fails.
step() { # WHAT COMMAND...
    local status=0 ticker
    say "$1"
    while sleep 20; do echo "  $(tail -n 1 "$log" | cut -c 1-120)" >&2; done &
    ticker=$!
    "${@:2}" >"$log" 2>&1 & # in the background, so that a signal ends the script at once
    wait "$!" || status=$?
    kill "$ticker"
    wait "$ticker" 2>/dev/null || true
    [ "$status" -eq 0 ] || fail "$1: status $status: $(tail -n 30 "$log")"
}

inside() { DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 chroot "$root" "$@"; }
install_packages() { inside apt-get install -y --no-install-recommends "$@"; }

# What is still mounted there stays: it may be somebody's.
remove_root() {
    local folder
    for folder in "$root/proc" "$root/cache"; do
        ! mountpoint -q "$folder" || umount -R "$folder" || umount -l "$folder" || true
    done
    if grep -qF " $scratch/" /proc/self/mounts; then
        say "leaves $scratch: something is mounted there"
    else
        rm -rf "$scratch"
    fi
}

make_root() {
    scratch=$(mktemp -d)
    unset TMPDIR CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER # name what the root lacks
    chmod 755 "$scratch"
    root=$scratch/root
    log=$scratch/log
    : >"$log"
    trap remove_root EXIT
    if [ -n "${BASE:-}" ]; then
        step "copying $BASE" cp -a "$BASE" "$root"
    else
        step "making a fresh ${SUITE:-bookworm}" debootstrap --variant=minbase "${SUITE:-bookworm}" "$root" ${MIRROR:+"$MIRROR"}
    fi
    printf '127.0.0.1 localhost %s\n' "$(hostname)" >"$root/etc/hosts" # as an installer of systems leaves it
    echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/check" # nothing here outlives a power cut
    mount -t proc proc "$root/proc"
    [ -z "${APT_CONF:-}" ] || cp "$APT_CONF" "$root/etc/apt/apt.conf.d/99check"
    printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" # installing a service does not start it
    chmod 755 "$root/usr/sbin/policy-rc.d"
    step "reading the list of packages" inside apt-get update
}

# Runs a command in the root, without a network but with two servers: the root's own print server, and a printer at
# "$printer" that keeps what it gets in /tmp/printed. Both end with the command.
with_printer() { # COMMAND...
    rm -f "$root/tmp/printed"
    unshare --net --pid --fork --kill-child bash -euo pipefail -c '
        root=$1 printer=$2 tries=0
        shift 2
        ip link set lo up
        ip address add "$printer/32" dev lo
        /usr/bin/python3 -c "
import socket, sys
server = socket.create_server((sys.argv[1], 9100))
while True:
    job = server.accept()[0]
    with open(sys.argv[2], \"ab\") as kept:
        while data := job.recv(65536):
            kept.write(data)
" "$printer" "$root/tmp/printed" &
        mkdir -p "$root/run/cups"
        chroot "$root" /usr/sbin/cupsd -f &
        until LC_ALL=C chroot "$root" lpstat -r 2>/dev/null | grep -q "is running"; do
            tries=$((tries + 1))
            [ "$tries" -lt 200 ] || { echo "the print server does not start"; exit 1; }
            sleep 0.1
        done
        LC_ALL=C.UTF-8 chroot "$root" "$@"' with_printer "$root" "$printer" "$@"
}

# The share of a page that has ink, in each colour: one line for each page of what the printer got.
printed_pages() {
    gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=inkcov -o - "$root/tmp/printed" | grep 'CMYK OK'
}

#!/bin/sh
# SPDX-License-Identifier: Apache-2.0
# Two machines on one wire, for one test: `unshare --net --mount sh neighbours.sh FOLDER COMMAND...` runs COMMAND on the
# one, 10.77.0.1, whose Avahi daemon hears the other, 10.77.0.2 or neighbour.local.
#
# The other announces each line "TYPE PORT HOST NAME" of FOLDER/services, HOST "-" for itself, torka-b.local for 10.9.8.7,
# or torka-c.local for 10.9.8.6. It is the one's name server (names.py; the names that were asked for lie in FOLDER/asked),
# and runs FOLDER/program in Python, where that is there.
#
# Exit status: the command's; 99 where two such machines cannot be made.
set -u
here=$(dirname "$0")
folder=$1
shift

started=
trap 'avahi-daemon --kill; for pid in $started; do kill "$pid"; done 2>/dev/null' EXIT
trap 'exit 143' TERM
begin() { # PROGRAM..., in the background and ended with the script
    "$@" &
    started="$started $!"
}
until_true() { # COMMAND...
    tries=300
    until "$@" 2>/dev/null >&2; do
        [ $tries -gt 0 ] || exit 99
        sleep 0.05
        tries=$((tries - 1))
    done
}

# A /run of its own, with a bus in its place, and a folder for what the daemon reads; nothing of the machine itself.
begin_machine() { # FOLDER for what the bus says
    mount -t tmpfs none /run 2>/dev/null && ip link set lo up || exit 99
    mkdir -p /run/avahi/services /run/dbus && mount --bind /run/avahi /etc/avahi 2>/dev/null || exit 99
    cat >/run/dbus.conf <<'END'
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>system</type><listen>unix:path=/run/dbus/system_bus_socket</listen><auth>EXTERNAL</auth>
<policy context="default"><allow user="*"/><allow own="*"/><allow send_type="method_call"/>
<allow send_type="signal"/><allow send_type="method_return"/><allow send_type="error"/>
<allow receive_type="method_call"/><allow receive_type="signal"/><allow receive_type="method_return"/>
<allow receive_type="error"/></policy></busconfig>
END
    begin dbus-daemon --config-file=/run/dbus.conf --nofork --nopidfile 2>"$1/dbus.log"
    until_true test -e /run/dbus/system_bus_socket
}
begin_avahi() { # INTERFACE HOST FOLDER for what it says
    printf '[server]\nallow-interfaces=%s\nuse-ipv6=no\nhost-name=%s\n' "$1" "$2" >/etc/avahi/avahi-daemon.conf
    begin avahi-daemon --no-drop-root --no-chroot --no-rlimits >"$3/avahi.log" 2>&1
    until_true test -e /run/avahi-daemon/socket
}

if [ "$1" = --neighbour ]; then
    mkdir -p "$folder/neighbour"
    begin_machine "$folder/neighbour"
    until_true ip link show there
    ip addr add 10.77.0.2/24 dev there && ip link set there up || exit 99
    printf '10.9.8.7 torka-b.local\n10.9.8.6 torka-c.local\n' >/etc/avahi/hosts
    number=0
    while read -r type port host name; do
        number=$((number + 1))
        [ "$host" = - ] && host= || host="<host-name>$host</host-name>"
        printf '<service-group><name>%s</name><service><type>%s</type>%s<port>%s</port></service></service-group>\n' \
            "$name" "$type" "$host" "$port" >"/etc/avahi/services/$number.service"
    done <"$folder/services"
    begin /usr/bin/python3 "$here/names.py" "$folder/asked"
    if [ -e "$folder/program" ]; then begin /usr/bin/python3 "$folder/program"; fi
    begin_avahi there neighbour "$folder/neighbour"
    touch "$folder/neighbour/ready"
    wait
    exit
fi

begin_machine "$folder"
begin unshare --net --mount sh "$0" "$folder" --neighbour
neighbour=$!
until_true test -e "$folder/neighbour"
ip link add here type veth peer name there netns "$neighbour" || exit 99
ip addr add 10.77.0.1/24 dev here && ip link set here up || exit 99
printf 'nameserver 10.77.0.2\noptions timeout:30 attempts:2\n' >/run/names.conf
names=$(readlink -m /etc/resolv.conf)
mkdir -p "$(dirname "$names")" && touch "$names" && mount --bind /run/names.conf "$names" || exit 99
begin_avahi here torka-test "$folder"
until_true test -e "$folder/neighbour/ready" -a -e "$folder/asked"
"$@"

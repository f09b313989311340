#!/bin/sh
# A local net of its own on loopback, for one test: run as `unshare --net --mount sh network.sh FOLDER TOOL PROBE`.
#
# FOLDER gets what the two programs print. The probe starts before the daemon, which is stopped again as soon as the
# probe has made FOLDER/listed. Exit status 99: such a net cannot be made here.
set -u
folder=$1 tool=$2 probe=$3

mount -t tmpfs none /run 2>/dev/null && ip link set lo up || exit 99
mkdir /run/services && mount --bind /run/services /etc/avahi/services 2>/dev/null # what the machine itself announces
cat >"$folder/dbus.conf" <<END
<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>system</type><listen>unix:path=$folder/bus</listen><auth>EXTERNAL</auth>
<policy context="default"><allow user="*"/><allow own="*"/><allow send_type="method_call"/>
<allow send_type="signal"/><allow send_type="method_return"/><allow send_type="error"/>
<allow receive_type="method_call"/><allow receive_type="signal"/><allow receive_type="method_return"/>
<allow receive_type="error"/></policy></busconfig>
END
printf '[server]\nallow-interfaces=lo\nuse-ipv6=no\nhost-name=torka-test\n' >"$folder/avahi.conf"

# What is publicly announced for good, without a client each.
service() { # FILE NAME TYPE PORT [HOST]
    printf '<service-group><name>%s</name><service><type>%s</type>%s<port>%s</port></service></service-group>\n' \
        "$2" "$3" "${5:+<host-name>$5</host-name>}" "$4" >"/run/services/$1.service"
}
service a "Office Printer" _ipp._tcp 631
service b "Office Printer" _printer._tcp 515
service c "Office hold" _pdl-datastream._tcp 9100
service d "&lt;b&gt;Markup&lt;/b&gt;" _ipps._tcp 443 torka-b.local
service e "Somebody" _chat._tcp 5222
i=0
while [ $i -lt 60 ]; do
    service "many$i" "Flood $i" _printer._tcp 515 torka-c.local
    i=$((i + 1))
done

export DBUS_SYSTEM_BUS_ADDRESS="unix:path=$folder/bus" QT_QPA_PLATFORM=offscreen
started=
stop() {
    for pid in $started; do kill "$pid" 2>/dev/null; done
}
trap stop EXIT
until_there() { # FILE SECONDS
    tries=$(($2 * 20))
    while [ ! -e "$1" ] && [ $tries -gt 0 ]; do
        sleep 0.05
        tries=$((tries - 1))
    done
    [ -e "$1" ]
}

dbus-daemon --config-file="$folder/dbus.conf" --nofork --nopidfile 2>"$folder/dbus.log" &
started="$started $!"
until_there "$folder/bus" 5 || exit 99
"$tool" address discover --seconds 1 >"$folder/without" 2>&1
"$probe" "$folder" >"$folder/probe" 2>"$folder/probe.log" &
probing=$!
started="$started $probing"
until_there "$folder/unavailable" 20
avahi-daemon -f "$folder/avahi.conf" --no-drop-root --no-chroot --no-rlimits >"$folder/avahi.log" 2>&1 &
daemon=$!
started="$started $daemon"
until_there /run/avahi-daemon/socket 10 || exit 99
avahi-publish -a -R torka-b.local 10.9.8.7 2>/dev/null &
started="$started $!"
avahi-publish -a -R torka-c.local 10.9.8.6 2>/dev/null &
started="$started $!"
"$tool" address discover --seconds 5 >"$folder/tool" 2>&1
until_there "$folder/listed" 40
kill "$daemon"
wait "$probing"

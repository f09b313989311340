#!/bin/sh
# Makes a local network on loopback for one test: run as `unshare --net --mount sh network.sh FOLDER TOOL PROBE`.
#
# FOLDER receives the output of the two programs. The probe starts before the daemon. The script stops the daemon when the
# probe has made FOLDER/listed. Exit status 99: this machine does not allow such a network.
set -u
folder=$1 tool=$2 probe=$3

. "$(dirname "$0")/../support/localnet.sh"

begin_machine "$folder"
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

export QT_QPA_PLATFORM=offscreen
"$tool" address discover --seconds 1 >"$folder/without" 2>&1
begin "$probe" "$folder" >"$folder/probe" 2>"$folder/probe.log"
probing=$!
until_there "$folder/unavailable" 20
begin_avahi lo torka-test "$folder"
daemon=$!
begin avahi-publish -a -R torka-b.local 10.9.8.7 2>/dev/null
begin avahi-publish -a -R torka-c.local 10.9.8.6 2>/dev/null
"$tool" address discover --seconds 5 >"$folder/tool" 2>&1
until_there "$folder/listed" 40
kill "$daemon"
wait "$probing"

#!/bin/sh
# Two machines on one wire, for one test: `unshare --net --mount sh neighbours.sh FOLDER COMMAND...` runs COMMAND on the
# one, 10.77.0.1, whose Avahi daemon hears the other, 10.77.0.2 or neighbour.local.
#
# The other announces each line "TYPE PORT NAME" of FOLDER/services, and is the one's name server (names.py; the names that
# were asked for lie in FOLDER/asked). It runs FOLDER/program in Python, where that is there.
#
# Exit status: the command's; 99 where two such machines cannot be made.
set -u
here=$(dirname "$0")
folder=$1
shift
. "$here/localnet.sh"

if [ "$1" = --neighbour ]; then
    mkdir -p "$folder/neighbour"
    begin_machine "$folder/neighbour"
    until_true 10 ip link show there || exit 99
    ip addr add 10.77.0.2/24 dev there && ip link set there up || exit 99
    number=0
    while read -r type port name; do
        number=$((number + 1))
        service "$number" "$name" "$type" "$port"
    done <"$folder/services"
    begin python3 "$here/names.py" "$folder/asked"
    if [ -e "$folder/program" ]; then begin python3 "$folder/program"; fi
    begin_avahi there neighbour "$folder/neighbour"
    touch "$folder/neighbour/ready"
    wait
    exit
fi

begin_machine "$folder"
begin unshare --net --mount sh "$0" "$folder" --neighbour
neighbour=$!
until_there "$folder/neighbour" 5 || exit 99
ip link add here type veth peer name there netns "$neighbour" || exit 99
ip addr add 10.77.0.1/24 dev here && ip link set here up || exit 99
printf 'nameserver 10.77.0.2\noptions timeout:30 attempts:2\n' >/run/names.conf
names=$(readlink -m /etc/resolv.conf)
mkdir -p "$(dirname "$names")" && touch "$names" && mount --bind /run/names.conf "$names" || exit 99
begin_avahi here torka-test "$folder"
until_there "$folder/neighbour/ready" 15 && until_there "$folder/asked" 5 || exit 99
"$@"

# Parts of scripts that make a local net for one test; to be sourced. They run in name spaces of their own for
# network and mounts, and end with status 99 where such a net cannot be made.

started=
stop_started() {
    for pid in $started; do kill "$pid" 2>/dev/null; done
}
trap stop_started EXIT
trap 'exit 143' TERM

# Starts a program in the background, to be ended with the script.
begin() {
    "$@" &
    started="$started $!"
}

until_true() { # SECONDS COMMAND...
    tries=$(($1 * 20))
    shift
    until "$@" 2>/dev/null >&2; do
        [ $tries -gt 0 ] || return 1
        sleep 0.05
        tries=$((tries - 1))
    done
}
until_there() { # FILE SECONDS
    until_true "$2" test -e "$1"
}

# A /run of its own, in which the bus and the daemon have their places; what the machine itself announces is hidden.
begin_machine() { # FOLDER for what the bus says
    mount -t tmpfs none /run 2>/dev/null && ip link set lo up || exit 99
    mkdir -p /run/services /run/dbus && mount --bind /run/services /etc/avahi/services 2>/dev/null
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
    until_there /run/dbus/system_bus_socket 5 || exit 99
}

# What is publicly announced for good, without a client each.
service() { # FILE NAME TYPE PORT [HOST]
    printf '<service-group><name>%s</name><service><type>%s</type>%s<port>%s</port></service></service-group>\n' \
        "$2" "$3" "${5:+<host-name>$5</host-name>}" "$4" >"/run/services/$1.service"
}

begin_avahi() { # INTERFACE HOST FOLDER for what it says
    printf '[server]\nallow-interfaces=%s\nuse-ipv6=no\nhost-name=%s\n' "$1" "$2" >/run/avahi.conf
    begin avahi-daemon -f /run/avahi.conf --no-drop-root --no-chroot --no-rlimits >"$3/avahi.log" 2>&1
    until_there /run/avahi-daemon/socket 10 || exit 99
}

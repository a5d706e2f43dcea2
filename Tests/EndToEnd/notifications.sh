#!/usr/bin/env bash
# notifications.sh PROGRAM: a real notification daemon receives what the program announces; the program takes orders on
# its input, BASE-FEE THRESHOLD sound|silent.
# SHOTS=FOLDER keeps a picture of what the daemon shows.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/daemon.sh"
program_under_test=$1

# services_replace COMMAND: a call to the notification service starts this, and no longer what is installed.
services_replace() {
    mkdir -p "$XDG_DATA_HOME/dbus-1/services"
    printf '[D-BUS Service]\nName=org.freedesktop.Notifications\nExec=%s\n' "$1" \
        >"$XDG_DATA_HOME/dbus-1/services/org.freedesktop.Notifications.service"
    services_reload
}

services_restore() {
    rm "$XDG_DATA_HOME/dbus-1/services/org.freedesktop.Notifications.service"
    services_reload
}

services_reload() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.ReloadConfig >/dev/null
}

# Sets `program` and, to the writing end of its input, descriptor 9.
program_start_with_orders() {
    rm -f "$RIG/orders"
    mkfifo "$RIG/orders"
    "$program_under_test" <"$RIG/orders" >>"$RIG/log/program" 2>&1 &
    program=$!
    exec 9>"$RIG/orders"
}

order() {
    echo "$*" >&9
}

# The program ends with its input.
program_end() {
    exec 9>&-
    program_wait_end
}

daemon_configure
cat >"$RIG/no-daemon" <<SCRIPT
#!/bin/sh
echo asked >>$RIG/asked
exit 1
SCRIPT
chmod +x "$RIG/no-daemon"
services_replace "$RIG/no-daemon"
program_start_with_orders
program_wait "the call that wakes the daemon" test -s "$RIG/asked"
rig_pass "the program runs on where no daemon can be started"

screenshot "$RIG/empty.png"
daemon_start
order 9 10 silent
order 7 10 sound
received_expect "$(announced 9.0 10)" "$(announced 7.0 10)"
rig_pass "a daemon that starts late receives the notifications"

notifications_are_visible() {
    screenshot "$RIG/now.png"
    [ "$(different_pixels "$RIG/empty.png" "$RIG/now.png")" -ge 10000 ]
}
program_wait "the notifications on the screen" notifications_are_visible
[ -z "${SHOTS:-}" ] || cp "$RIG/now.png" "$SHOTS/notifications.png"
rig_pass "they are on the screen"

kill "$daemon"
{ wait "$daemon" || true; } 2>/dev/null # That it was killed is no news.
rig_wait "the daemon's end" rig_not daemon_is_up
services_restore
order 0.05 1 sound
received_expect "$(announced 0.05 1)"
rig_pass "a notification starts the daemon that is installed"

# Nobody but the bus knows the process of the daemon that it started.
daemon=$(gdbus call --session --dest org.freedesktop.DBus --object-path /org/freedesktop/DBus \
    --method org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.Notifications | grep -o '[0-9]*,' | tr -d ,)
kill -STOP "$daemon"
order 8 10 silent
program_end
kill -KILL "$daemon"
rig_wait "the daemon's end" rig_not daemon_is_up
[ ! -e "$received" ] || rig_fail "a daemon that hangs has shown something"
rig_pass "a daemon that hangs holds nothing up, not even the program's end"

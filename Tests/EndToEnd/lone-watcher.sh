#!/usr/bin/env bash
# lone-watcher.sh PROGRAM [ARGUMENT...]: a service that collects items, as Plasma's does on other desktops, keeps the
# probe's badge out of the X tray only while somebody shows its items.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

program_shows_on() {
    [ "$(grep '^surface ' "$RIG/log/program" | tail -n 1)" = "surface $1" ]
}

watcher_is_up() {
    rig_has_name org.kde.StatusNotifierWatcher
}

# The kernel names a process after its file.
cp "$(realpath /usr/bin/python3)" "$RIG/kded5"
panel_start
"$RIG/kded5" "$(dirname "$0")/lone-watcher" >"$RIG/log/watcher" 2>&1 &
watcher=$!
rig_wait "the watcher" watcher_is_up
program_start "$@"
program_wait "the badge in the tray" program_shows_on window
rig_pass "a watcher that nobody looks at leaves the badge to the tray"

kill -USR1 "$watcher"
program_wait "the badge as an item" program_shows_on symbolic
rig_pass "the badge becomes an item when somebody comes to show it"

kill -USR1 "$watcher"
program_wait "the badge in the tray again" program_shows_on window
kill "$watcher"
wait "$watcher" || true
program_wait "the badge in the tray still" program_shows_on window
rig_pass "the badge goes back to the tray"

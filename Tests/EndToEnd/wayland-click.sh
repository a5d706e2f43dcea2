#!/usr/bin/env bash
# wayland-click.sh PROGRAM [ARGUMENT...]: where a program that takes part in a Wayland session through X takes a click to
# be. The X server stands for the session's, whose pointer has stayed where it last was over a window of X.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

# said_after_click LINE: what the program says once the panel tells of a click at 3 4.
said_after_click() {
    gdbus call --session --dest "$(find_item)" --object-path /StatusNotifierItem \
        --method org.kde.StatusNotifierItem.Activate 3 4 >/dev/null
    program_wait "the click" grep -q '^activated ' "$RIG/log/program"
    grep -qx "$1" "$RIG/log/program" || rig_fail "it says '$(grep '^activated ' "$RIG/log/program")', not '$1'"
    kill -TERM "$program"
    rig_wait "its end" rig_not item_is_on_bus
    rm "$RIG/log/program"
}

xdotool mousemove 640 400
panel_start
program_start "$@"
program_wait "the item's registration" item_is_registered
said_after_click "activated 640 400 1 1"
rig_pass "on X11 a click is where the pointer is"

WAYLAND_DISPLAY=wayland-0 program_start "$@"
program_wait "the item's registration" item_is_registered
said_after_click "activated 0 0 0 0"
rig_pass "in a Wayland session nobody knows where a panel was clicked that is not right about it"

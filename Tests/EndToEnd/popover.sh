#!/usr/bin/env bash
# popover.sh PROGRAM RELAY ANCHOR PORT: the whole program's popover and preferences in a real panel: opened by a click,
# worked by the keyboard, in the colours that the user chooses.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

# window_id NAME: the visible window of that title.
window_id() {
    xdotool search --onlyvisible --name "^$1\$" 2>/dev/null
}

window_is_active() {
    [ -n "$(window_id "$1")" ] && [ "$(xdotool getactivewindow 2>/dev/null)" = "$(window_id "$1")" ]
}

popover_open() {
    click 1 "$badge"
    program_wait "the popover" window_is_active velisk
}

popover_wait_closed() {
    program_wait "the popover's end $1" rig_not window_id velisk
}

panel_start
panel_screenshot "$RIG/empty.png"
relay_start
relay_order "baseFee 12.2"
program_start "$program_under_test"
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 100
program_wait "the first fetch" more_requests_logged 0
badge=$(difference_box "$RIG/empty.png" "$RIG/now.png")

popover_open
keep popover.png
before=$(requests_logged)
xdotool key ctrl+r
program_wait "a fetch" more_requests_logged "$before"
rig_pass "Ctrl+R in the popover fetches the figures"
xdotool key Escape
popover_wait_closed "by Escape"

popover_open
xdotool key ctrl+comma
program_wait "the preferences in front" window_is_active "velisk Preferences"
popover_wait_closed "with the preferences in front"
keep preferences.png
rig_pass "Ctrl+comma opens the preferences in front of the popover, which closes"

popover_open
xdotool key ctrl+q
program_wait_end
rig_wait "the badge to leave the panel" panel_equals "$RIG/empty.png"
rig_pass "Ctrl+Q ends the program"

# What Xwayland says below a compositor of the wlroots family, where the popover is a popup and holds the keyboard.
manager=$(xprop -root _NET_SUPPORTING_WM_CHECK | grep -o '0x[0-9a-f]*')
xprop -id "$manager" -f _NET_WM_NAME 8u -set _NET_WM_NAME "wlroots wm"
program_start "$program_under_test"
program_wait "the badge in the panel again" panel_differs "$RIG/empty.png" 100
badge=$(difference_box "$RIG/empty.png" "$RIG/now.png")
for turn in first second; do
    click 1 "$badge"
    program_wait "the popover as a popup" window_id velisk >/dev/null
    xwininfo -id "$(window_id velisk)" | grep -q 'Override Redirect State: yes' || rig_fail "the popover is no popup"
    xdotool key ctrl+comma
    program_wait "the preferences in front for the $turn time" window_is_active "velisk Preferences"
    popover_wait_closed "before the preferences for the $turn time"
done
xdotool key ctrl+w
program_wait "the preferences' end by the keyboard" rig_not window_id "velisk Preferences"
rig_pass "a popover that is a popup closes for open preferences too, and leaves them the keyboard"

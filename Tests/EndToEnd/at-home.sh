#!/usr/bin/env bash
# at-home.sh PROGRAM RELAY ANCHOR PORT: the whole program in a real panel, from a start with nothing stored to its end,
# as its user has it: by the badge, the popover and the keyboard alone. What is seen is read from the screen.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

# A badge of 22 pixels has 484; its corners and its hollows take some.
least_pixels=60

# Sets `badge` to the rectangle where the panel shows it.
badge_appears() {
    program_wait "the badge in the panel" panel_differs "$RIG/empty.png" "$least_pixels"
    panel_settle
    badge=$(difference_box "$RIG/empty.png" "$RIG/now.png")
    cp "$RIG/now.png" "$RIG/badge.png"
}

popover_opens() {
    click 1 "$badge"
    program_wait "the popover" popover_is_open
    program_wait "the popover's activation" popover_is_active
}

# Sets area_x, area_y, area_width and area_height: what panels leave of the monitor that has this one.
panels_leave() {
    local width x
    read -r area_x area_y area_width area_height _ < <(xprop -root _NET_WORKAREA | grep -o '[0-9].*' | tr -d ,)
    [ -n "${RIG_MONITORS:-}" ] || return 0
    IFS='x+ ' read -r width _ x _ <<<"$RIG_MONITORS"
    area_width=$width area_x=$x
}

# It touches the panel's edge of the work area, and lies below the badge or, at the screen's side, as near as it can.
popover_is_at_the_badge() {
    local X Y WIDTH HEIGHT left width middle area_x area_y area_width area_height
    eval "$(xdotool getwindowgeometry --shell "$(popover_id)")"
    IFS='x+' read -r width _ left _ <<<"$badge"
    middle=$((left + width / 2))
    panels_leave
    [ "$Y" -eq "$area_y" ] && [ $((Y + HEIGHT)) -le $((area_y + area_height)) ] &&
        [ "$X" -ge "$area_x" ] && [ $((X + WIDTH)) -le $((area_x + area_width)) ] &&
        [ "$X" -le "$middle" ] && [ $((X + WIDTH)) -ge "$middle" ]
}

popover_closes() {
    program_wait "the popover's end" rig_not popover_is_open
}

panel_start
panel_settle
cp "$RIG/now.png" "$RIG/empty.png"
relay_start
relay_order "baseFee 12.2"
program_start "$program_under_test"
badge_appears
keep "$RIG_PANEL-started.png"
rig_pass "with nothing stored the figure appears in $RIG_PANEL's panel, at $badge"

popover_opens
popover_is_at_the_badge || rig_fail "it opens at $(xdotool getwindowgeometry "$(popover_id)"), the badge is at $badge"
keep "$RIG_PANEL-popover.png"
click 1 "$badge"
popover_closes
rig_pass "a click opens the popover at the badge, another one closes it"

before=$(requests_logged)
relay_order "baseFee 88.8"
popover_opens
xdotool key ctrl+r
program_wait "the end of a fetch" more_requests_logged "$before"
program_wait "another figure in the panel" panel_differs "$RIG/badge.png" 10
xdotool key Escape
popover_closes
rig_pass "the popover's shortcut fetches, and the badge follows"

before=$(requests_logged)
relay_order "answer off"
popover_opens
xdotool key ctrl+r
program_wait "the failed fetch" more_requests_logged "$before"
before=$(requests_logged)
panel_settle
cp "$RIG/now.png" "$RIG/badge.png"
relay_order "answer normal"
relay_order "baseFee 7.4"
xdotool key ctrl+r
program_wait "the end of a fetch" more_requests_logged "$before"
program_wait "the figure after the relay's return" panel_differs "$RIG/badge.png" 10
xdotool key Escape
popover_closes
rig_pass "the relay fails and comes back, and so does the figure"

panel_stop KILL
panel_start
panel_settle
badge_appears
popover_opens
popover_is_at_the_badge || rig_fail "after the panel's return it opens elsewhere"
rig_pass "a panel that was killed shows the badge again, which opens the popover"

xdotool key ctrl+comma
preferences_are_open() {
    xdotool search --onlyvisible --name '^velisk Preferences$' >/dev/null 2>&1
}
program_wait "the preferences" preferences_are_open
xdotool key ctrl+w
program_wait "the preferences' end" rig_not preferences_are_open
popover_closes
popover_opens
xdotool key ctrl+q
program_wait_end
rig_wait "the panel to forget the item" panel_has_no_item
if [ "$RIG_PANEL" = mate ]; then
    # Started anew, it stands a little differently without the badge than it did at first.
    rig_wait "the badge to leave the panel" panel_differs "$RIG/badge.png" "$least_pixels"
else
    rig_wait "the badge to leave the panel" panel_equals "$RIG/empty.png"
fi
if grep -v '^org\.velisk\.Torvane\.net: ' "$RIG/log/program"; then rig_fail "it complained"; fi
rig_pass "the shortcuts open the preferences and end the program, which leaves nothing behind"

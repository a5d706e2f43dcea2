#!/usr/bin/env bash
# panel-badge.sh SURFACE PROGRAM [ARGUMENT...]: the probe's badge in the real panel that RIG_PANEL names. SURFACE is what
# the probe is to show it on there: "window", or one of the kinds of panel items. The probe's "Refresh Now" brings
# another figure.
#
# EXPECTED_LABEL    the label that the item is to have (none)
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
surface=$1
shift

# A mark of 16 pixels, without a figure, covers some.
least_pixels=60

# What the program said last of its surface.
program_shows_on() {
    [ "$(grep '^surface ' "$RIG/log/program" | tail -n 1)" = "surface $1" ]
}

has_item() {
    [ "$surface" != window ]
}

# The menu is the panel's own, or the window's: there, the keys go to where the pointer opened it.
choose_refresh() {
    if has_item; then
        menu_choose "$(find_item)" "Refresh Now"
    else
        open_menu
        xdotool key Down Down Return mousemove 640 400
    fi
}

open_menu() {
    screenshot "$RIG/closed.png"
    click 3 "$box"
    program_wait "the menu" screen_differs "$RIG/closed.png" 3000
}

panel_start
panel_settle
cp "$RIG/now.png" "$RIG/empty.png"
keep "$RIG_PANEL-empty.png" "$RIG/empty.png"
program_start "$@"
program_wait "the surface" program_shows_on "$surface"
if has_item; then
    program_wait "the item's registration" item_is_registered
fi
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" "$least_pixels"
panel_settle
cp "$RIG/now.png" "$RIG/badge.png"
keep "$RIG_PANEL-badge.png" "$RIG/badge.png"
box=$(difference_box "$RIG/empty.png" "$RIG/badge.png")
rig_pass "the badge is visible at $box"

if has_item; then
    item=$(find_item)
    [ "$(item_property "$item" Status)" = "(<'Active'>,)" ] || rig_fail "the item is not active"
    item_has_title "Ethereum: .*" || rig_fail "the item's title is $(item_property "$item" Title)"
    if item_property "$item" XAyatanaLabel >/dev/null 2>&1; then
        rig_fail "the item has a label, which hides its icon on some panels"
    fi
    rig_pass "the item's properties can be read"
fi

for signal in TERM KILL; do
    panel_stop "$signal"
    program_is_running || rig_fail "the program ended with the panel"
    panel_start
    program_wait "the badge in the new panel" panel_equals "$RIG/badge.png"
    program_shows_on "$surface" || rig_fail "the new panel has another surface"
    rig_pass "the badge comes back after the panel was ended by $signal"
done

choose_refresh
program_wait "another figure" grep -qx "command 2" "$RIG/log/program"
program_wait "another figure in the panel" panel_differs "$RIG/badge.png" 10
panel_settle
cp "$RIG/now.png" "$RIG/refreshed.png"
keep "$RIG_PANEL-refreshed.png" "$RIG/now.png"
box=$(difference_box "$RIG/empty.png" "$RIG/now.png")
rig_pass "another figure is drawn after a refresh"

click 1 "$box"
program_wait "the click" grep -q '^activated ' "$RIG/log/program"
read -r _ x y width height < <(grep '^activated ' "$RIG/log/program" | tail -n 1)
read -r left top < <(box_corner "$box")
if [ "$x" -gt $((left + 60)) ] || [ $((x + width)) -lt "$left" ] || [ "$y" -gt $((top + 40)) ] || [ $((y + height)) -lt "$top" ]; then
    rig_fail "a click at $box is said to be at $x $y $width $height"
fi
xdotool mousemove 640 400 # Panels light up what the pointer is upon.
rig_pass "a click on the badge at $box arrives as $x $y $width $height"

open_menu
keep "$RIG_PANEL-menu.png" "$RIG/screen.png"
xdotool key Up Return mousemove 640 400
program_wait_end
rig_wait "the badge to leave the panel" panel_differs "$RIG/refreshed.png" "$least_pixels"
rig_pass "the menu shows Quit last; it ends the program and empties the panel"

panel_stop TERM
program_start "$@"
program_wait "a program without a panel" program_shows_on none
panel_start
program_wait "the badge in the late panel" panel_equals "$RIG/badge.png"
rig_pass "a panel that starts after the program shows the badge"
kill -TERM "$program"

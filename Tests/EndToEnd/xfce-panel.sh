#!/usr/bin/env bash
# xfce-panel.sh PROGRAM [ARGUMENT...]: the program's badge in a real xfce panel. What else the program needs, and the
# panel's looks, are variables of rig.sh; further:
#
# EXPECTED_TITLE    an extended regular expression that the item's title comes to match
# CHANGES           yes: "Refresh Now" brings another figure
# PRINTS_CLICKS     yes: the program prints "activated X Y" when its badge is clicked
# SHOTS             a folder that keeps the pictures
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

# A badge of 22 pixels has 484; its rounded corners and a host's smoothing take some.
least_pixels=200

keep() {
    [ -z "${SHOTS:-}" ] || cp "$1" "$SHOTS/$2"
}

panel_start
panel_screenshot "$RIG/empty.png"
keep "$RIG/empty.png" empty.png
program_start "$@"
program_wait "the item's registration" item_is_registered
rig_pass "the item registers with the panel"

program_wait "the badge in the panel" panel_differs "$RIG/empty.png" "$least_pixels"
cp "$RIG/now.png" "$RIG/badge.png"
keep "$RIG/badge.png" badge.png
box=$(difference_box "$RIG/empty.png" "$RIG/badge.png")
rig_pass "the badge is visible at $box"

item=$(find_item)
if [ -n "${EXPECTED_TITLE:-}" ]; then
    program_wait "the title $EXPECTED_TITLE" item_has_title "$EXPECTED_TITLE"
fi
[ "$(item_property "$item" Status)" = "(<'Active'>,)" ] || rig_fail "the item is not active"
if item_property "$item" XAyatanaLabel >/dev/null 2>&1; then
    rig_fail "the item has a label, which hides its icon on some panels"
fi
rig_pass "the item's properties can be read"

for signal in TERM KILL; do
    panel_stop "$signal"
    program_is_running || rig_fail "the program ended with the panel"
    panel_start
    program_wait "the registration with the new panel" item_is_registered
    program_wait "the badge in the new panel" panel_differs "$RIG/empty.png" "$least_pixels"
    rig_pass "the badge comes back after the panel was ended by $signal"
done

if [ "${CHANGES:-}" = yes ]; then
    panel_screenshot "$RIG/before.png"
    menu_choose "$(find_item)" "Refresh Now"
    program_wait "another figure" panel_differs "$RIG/before.png" 10
    keep "$RIG/now.png" refreshed.png
    rig_pass "another figure is drawn after a refresh"
fi

if [ "${PRINTS_CLICKS:-}" = yes ]; then
    click 1 "$box"
    program_wait "the click" grep -q '^activated [0-9]* [0-9]*$' "$RIG/log/program"
    rig_pass "a click on the badge arrives: $(tail -n 1 "$RIG/log/program")"
fi

menu_choose "$(find_item)" "Quit velisk"
program_wait_end
rig_wait "the badge to leave the panel" panel_equals "$RIG/empty.png"
rig_pass "Quit ends the program and empties the tray"

panel_stop TERM
program_start "$@"
program_wait "the item on the bus" item_is_on_bus
panel_start
program_wait "the registration with a late panel" item_is_registered
program_wait "the badge in the late panel" panel_differs "$RIG/empty.png" "$least_pixels"
rig_pass "a panel that starts after the program shows the badge"

screenshot "$RIG/closed.png"
click 3 "$box"
program_wait "the menu" screen_differs "$RIG/closed.png" 3000
keep "$RIG/screen.png" menu.png
xdotool key Up Return
program_wait_end
rig_pass "the panel's own menu shows Quit last, and it ends the program"

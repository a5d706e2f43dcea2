#!/usr/bin/env bash
# xfce-badge.sh PROGRAM [ARGUMENT...]: the probe's badge follows what an xfce panel wants, and what its user wants of it.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

program_shows_on() {
    [ "$(grep '^surface ' "$RIG/log/program" | tail -n 1)" = "surface $1" ]
}

# The window that owns the tray, known by what only a tray says of itself.
tray_window() {
    local window
    for window in $(xwininfo -root -tree | grep -o '^ *0x[0-9a-f]*'); do
        if xprop -id "$window" _NET_SYSTEM_TRAY_COLORS 2>/dev/null | grep -q '='; then
            echo "$window"
            return 0
        fi
    done
    return 1
}

# panel_has COLOUR: whether some pixel of the panel has it.
panel_has() {
    panel_screenshot "$RIG/now.png"
    convert "$RIG/now.png" "txt:$RIG/now.txt"
    grep -q "$1" "$RIG/now.txt"
}

badge_is_wide() {
    panel_screenshot "$RIG/now.png"
    [ "$(difference_box "$RIG/empty.png" "$RIG/now.png" | cut -dx -f1)" -gt "$1" ]
}

choose_preferences() {
    screenshot "$RIG/closed.png"
    click 3 "$(difference_box "$RIG/empty.png" "$RIG/badge.png")"
    program_wait "the menu" screen_differs "$RIG/closed.png" 3000
    xdotool key Down Down Down Return mousemove 640 400
}

panel_start
panel_settle
cp "$RIG/now.png" "$RIG/empty.png"
program_start "$@"
program_wait "the badge in the panel" badge_is_wide 40
panel_settle
cp "$RIG/now.png" "$RIG/badge.png"
program_shows_on window || rig_fail "the badge with a figure is no window"

tray=$(tray_window) || rig_fail "there is no tray"
xprop -id "$tray" -f _NET_SYSTEM_TRAY_COLORS 32c -set _NET_SYSTEM_TRAY_COLORS \
    "65535, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0"
program_wait "the badge in the panel's new colour" panel_has '#FF0000'
keep xfce-red.png "$RIG/now.png"
rig_pass "the badge follows the panel's colour"

xprop -id "$tray" -f _NET_SYSTEM_TRAY_ORIENTATION 32c -set _NET_SYSTEM_TRAY_ORIENTATION 1
program_wait "a square badge" rig_not badge_is_wide 30
panel_settle
keep xfce-vertical.png "$RIG/now.png"
xprop -id "$tray" -f _NET_SYSTEM_TRAY_ORIENTATION 32c -set _NET_SYSTEM_TRAY_ORIENTATION 0
program_wait "a wide badge" badge_is_wide 40
rig_pass "the badge follows the panel's orientation"

screenshot "$RIG/closed.png"
xdotool mousemove 1240 16
program_wait "the tooltip" screen_differs "$RIG/closed.png" 1000
keep xfce-tooltip.png "$RIG/screen.png"
xdotool mousemove 640 400
rig_pass "the badge has a tooltip"

choose_preferences
program_wait "a badge without a figure" program_shows_on symbolic
program_wait "the item's registration" item_is_registered
item_property "$(find_item)" IconName | grep -q 'velisk-[0-9]*-[0-9a-f]*-symbolic' || rig_fail "the icon has no symbolic name"
program_wait "the mark alone" rig_not badge_is_wide 30
panel_has '#FFFFFF' || panel_has '#EEEEEC' || panel_has '#FEFEFE' || rig_fail "the mark is not in the panel's foreground"
keep xfce-symbolic.png "$RIG/now.png"
menu_choose "$(find_item)" "Preferences…"
program_wait "a badge with a figure" program_shows_on window
program_wait "the figure" badge_is_wide 30
rig_pass "switching the figure off and on exchanges the window and the item"

#!/usr/bin/env bash
# preferences.sh PROGRAM RELAY ANCHOR PORT: the preferences open in front of other programs' windows, do what they say
# by the keyboard alone, and keep it over a restart. The relay is the stand-in, its certificate is in ANCHOR.
: "${RIG_PANEL:=mate}" # Its items can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4
entry=$RIG/config/autostart/org.velisk.Torvane.desktop
stored=$RIG/config/velisk/preferences.json

open_preferences() {
    menu_choose "$(find_item)" "Preferences…"
}

# Sets `window`. There is never more than one.
preferences_are_open() {
    window=$(xdotool search --onlyvisible --name '^velisk Preferences$' 2>/dev/null) && [ "$(wc -l <<<"$window")" = 1 ]
}

preferences_are_closed() {
    ! xdotool search --name '^velisk Preferences$' >/dev/null 2>&1
}

# Whether it has the keyboard and lies above all other windows but the panel.
is_in_front() {
    [ "$(xdotool getactivewindow 2>/dev/null)" = "$1" ] &&
        [ "$(top_window)" = "$(printf '0x%x' "$1")" ]
}

top_window() {
    local id
    for id in $(xprop -root _NET_CLIENT_LIST_STACKING | grep -o '0x[0-9a-f]*' | tac); do
        xprop -id "$id" _NET_WM_WINDOW_TYPE | grep -q DOCK || break
    done
    echo "$id"
}

stored_says() {
    grep -qs "$1" "$stored"
}

# The colour of the sidebar's lower left corner.
sidebar_color_is() {
    import -window "$window" "$RIG/window.png" 2>/dev/null &&
        [ "$(convert "$RIG/window.png" -format '%[hex:p{4,515}]' info:)" = "$1" ]
}

panel_start
relay_start
program_start "$program_under_test"
program_wait "the badge" item_is_registered

# Another program's window, which its user has just clicked.
xmessage -geometry 900x640+60+60 "Another program" >"$RIG/log/other" 2>&1 &
rig_wait "the other window" xdotool search --onlyvisible --name xmessage >/dev/null
other=$(xdotool search --onlyvisible --name xmessage)
xdotool mousemove 500 400 click 1
rig_wait "the other window in front" is_in_front "$other"

open_preferences
program_wait "the preferences" preferences_are_open
program_wait "the preferences in front" is_in_front "$window"
rig_pass "the preferences open in front of the window that was in use"
keep preferences.png

[ "$(xdotool getwindowgeometry "$window" | grep -o 'Geometry: .*')" = "Geometry: 660x520" ] ||
    rig_fail "the window has another size"
for limit in minimum maximum; do
    xprop -id "$window" WM_NORMAL_HINTS | grep -q "$limit size: 660 by 520" || rig_fail "the $limit size is another"
done
xprop -id "$window" _NET_WM_WINDOW_TYPE | grep -q NORMAL || rig_fail "it is no ordinary window"
! xprop -id "$window" _NET_WM_STATE | grep -q SKIP || rig_fail "the taskbar would not list it"
rig_pass "it is an ordinary window of a fixed size"

xdotool mousemove 80 650 click 1
rig_wait "the other window in front" is_in_front "$other"
first=$window
open_preferences
program_wait "the preferences in front again" is_in_front "$first"
rig_pass "the open window is used again"

xdotool key Tab space
program_wait "the stored switch" stored_says '"launchAtLogin": *true'
program_wait "the autostart entry" test -s "$entry"
grep -qF "Exec=\"$(readlink -f "$program_under_test")\"" "$entry" || rig_fail "the entry starts something else"
xdotool key space
program_wait "the entry to go" test ! -e "$entry"
rig_pass "the keyboard switches the launch at login on and off"

# Back to the sidebar, down to Appearance, and to the last of the three themes.
xdotool key shift+Tab Down Down Down Down Tab End
program_wait "the stored theme" stored_says '"theme": *"Dark"'
program_wait "the dark window" sidebar_color_is 262624
keep preferences-dark.png
xdotool key Home
program_wait "the light window" sidebar_color_is EFEEEB
xdotool key End
program_wait "the dark window" sidebar_color_is 262624
rig_pass "the theme recolours the open window"

xdotool key Escape
program_wait "the window to close" preferences_are_closed
open_preferences
program_wait "the preferences" preferences_are_open
xdotool windowclose "$window" 2>/dev/null || true
program_wait "the window to close" preferences_are_closed
rig_pass "the program goes on without the window"

menu_choose "$(find_item)" "Quit velisk"
program_wait_end
program_start "$program_under_test"
program_wait "the badge" item_is_registered
open_preferences
program_wait "the preferences" preferences_are_open
program_wait "the dark window" sidebar_color_is 262624
rig_pass "the theme is kept over a restart"

menu_choose "$(find_item)" "Quit velisk"
program_wait_end
rig_pass "the program quits with the window open"

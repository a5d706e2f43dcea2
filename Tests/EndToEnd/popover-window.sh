#!/usr/bin/env bash
# popover-window.sh PROGRAM: the popover's window under a window manager, at the badge in the corner of a real panel.
source "$(dirname "$0")/rig.sh"

rig_enter "$@"

# Without the clock behind it the tray ends at the screen's corner.
sed -i '/name="plugin-ids"/,/<\/property>/ s/<value type="int" value="3"\/>//' \
    "$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"

# The window's rectangle as WxH+X+Y.
popover_box() {
    xdotool getwindowgeometry --shell "$(popover_id)" |
        awk -F = '{ value[$1] = $2 } END { printf "%sx%s+%s+%s\n", value["WIDTH"], value["HEIGHT"], value["X"], value["Y"] }'
}

popover_has_box() {
    [ "$(popover_box)" = "$1" ]
}

badge_click() {
    xdotool mousemove "$1" "$2" click 1
}

# popover_open X Y: with a click there, and until it has the keyboard.
popover_open() {
    badge_click "$1" "$2"
    program_wait "the popover" popover_is_open
    program_wait "the popover's activation" popover_is_active
}

popover_wait_closed() {
    program_wait "the popover's end $1" rig_not popover_is_open
}

work_area() {
    xprop -root _NET_WORKAREA | grep -o '[0-9].*' | awk -F ', *' '{ print $1, $2, $3, $4 }'
}

panel_start
panel_screenshot "$RIG/empty.png"
program_start "$@"
program_wait "the item's registration" item_is_registered
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 200
IFS='x+' read -r width height x y <<<"$(difference_box "$RIG/empty.png" "$RIG/now.png")"
badge_x=$((x + width / 2)) badge_y=$((y + height / 2))
read -r area_x area_y area_width area_height <<<"$(work_area)"
right=$((area_x + area_width - 344))

popover_open "$badge_x" "$badge_y"
popover_has_box "344x300+$right+$area_y" || rig_fail "it opened at $(popover_box)"
keep open.png
state=$(xprop -id "$(popover_id)" _NET_WM_STATE)
for hint in SKIP_TASKBAR SKIP_PAGER ABOVE; do
    [[ $state == *_NET_WM_STATE_$hint* ]] || rig_fail "it lacks $hint: $state"
done
rig_pass "a click upon the badge opens it below, inside the work area and out of the taskbar"

for height in 400 500 600 700; do
    xdotool key g
    program_wait "a height of $height" popover_has_box "344x$height+$right+$area_y"
done
xdotool key g
program_wait "all of the work area" popover_has_box "344x$area_height+$right+$area_y"
keep scrolling.png
rig_pass "it grows with its content as far as the work area goes, then scrolls"

badge_click "$badge_x" "$badge_y"
popover_wait_closed "by the second click"
rig_pass "a second click upon the badge closes it"

popover_open 1279 0
popover_has_box "344x300+$right+$area_y" || rig_fail "it opened at $(popover_box)"
xdotool key Escape
popover_wait_closed "by Escape"
rig_pass "a click in the screen's corner opens it there, Escape closes it"

for opening in 1 2 3; do
    popover_open "$badge_x" "$badge_y"
    badge_click "$badge_x" "$badge_y"
    popover_wait_closed "by click $opening"
done
rig_pass "it opens and closes again and again"

xev -geometry 200x200+100+500 -event button >"$RIG/log/elsewhere" 2>&1 &
other_window() {
    xdotool search --onlyvisible --name '^Event Tester$' >/dev/null 2>&1
}
rig_wait "another window" other_window
popover_open "$badge_x" "$badge_y"
xdotool mousemove 200 600 click 1
popover_wait_closed "by a click elsewhere"
clicks() {
    [ "$(grep -c '^ButtonPress' "$RIG/log/elsewhere")" -eq "$1" ]
}
rig_wait "the other window's click" clicks 1
rig_pass "a click elsewhere closes it and arrives where it was meant for"

kill -TERM "$program"
rig_wait "the program's end" rig_not program_is_running

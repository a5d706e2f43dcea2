#!/usr/bin/env bash
# backdrop.sh PROGRAM: the popover's glass without a compositor, with one, and with one that blurs; what lies behind the
# window shows at its corners.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
program_under_test=$1
blur=_KDE_NET_WM_BLUR_BEHIND_REGION
white=#FFFFFF

item_name() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.ListNames |
        grep -o 'org.kde.StatusNotifierItem-[0-9-]*'
}

# Without a panel, which would stand in the picture.
badge_click() {
    xdotool mousemove 640 250
    gdbus call --session --dest "$(item_name)" --object-path /StatusNotifierItem \
        --method org.kde.StatusNotifierItem.Activate 640 250 >/dev/null
}

# pixel_is X Y COLOR: relative to the popover.
pixel_is() {
    local place
    place=$(xdotool getwindowgeometry --shell "$(popover_id)" |
        awk -F = -v x="$1" -v y="$2" '/^X/ { x += $2 } /^Y/ { y += $2 } END { printf "1x1+%d+%d", x, y }')
    [ "$(import -window root -crop "$place" +repage -depth 8 txt:- | grep -o '#[0-9A-F]\{6\}')" = "$3" ]
}

# popover_has DEPTH COLOR: opened anew, it has this depth and this ground.
popover_has() {
    program_start "$program_under_test"
    program_wait "the item" item_is_on_bus
    badge_click
    program_wait "the popover" popover_is_open
    xwininfo -id "$(popover_id)" | grep -q "Depth: $1\$" || rig_fail "its depth is not $1"
    program_wait "its ground" pixel_is 172 150 "$2"
    local x y
    for x in 0 343; do
        for y in 0 299; do
            program_wait "what lies behind, at $x, $y" pixel_is "$x" "$y" "$white"
        done
    done
}

popover_wants_blur() {
    xprop -id "$(popover_id)" "$blur" | grep -q "= 9, 0, 326, 1, "
}

program_end() {
    kill -TERM "$program"
    rig_wait "the program's end" rig_not program_is_running
}

compositor_is_up() {
    xwininfo -root -tree | grep -q picom
}

xev -geometry 800x600+200+100 >"$RIG/log/behind" 2>&1 &
behind_is_up() {
    xdotool search --onlyvisible --name '^Event Tester$' >/dev/null 2>&1
}
rig_wait "a white window" behind_is_up

popover_has 24 '#FBFAF9'
program_end
rig_pass "without a compositor its corners are cut out"

picom --backend xrender --config /dev/null >"$RIG/log/compositor" 2>&1 &
rig_wait "the compositor" compositor_is_up
popover_has 32 '#FBFAF9'
! popover_wants_blur || rig_fail "it asks for blur where there is none"
program_end
rig_pass "with a compositor its corners are transparent and its glass opaque"

xprop -root -f "$blur" 32c -set "$blur" 0
popover_has 32 "$white"
popover_wants_blur || rig_fail "it does not ask for blur"
program_end
rig_pass "with a compositor that blurs its glass is translucent"

#!/usr/bin/env bash
# backdrop.sh PROGRAM: what the popover lets through: without a compositor, with one, and with one that blurs.
#
# SHOTS             a folder that keeps the pictures
source "$(dirname "$0")/rig.sh"

rig_enter "$@"

# KWin's name for it. On the root window it says that the compositor blurs, on a window where.
blur=_KDE_NET_WM_BLUR_BEHIND_REGION

# color_in FILE X Y
color_in() {
    convert "$1" -crop "1x1+$2+$3" +repage -depth 8 txt:- | grep -o '#[0-9A-F]\{6\}'
}

# popover_looks CORNER GROUND: the colours where it is round, at its lower left, and where it has no text.
popover_looks() {
    screenshot "$RIG/open.png"
    [ "$(color_in "$RIG/open.png" "$X" $((Y + 299)))" = "$1" ] &&
        [ "$(color_in "$RIG/open.png" $((X + 172)) $((Y + 200)))" = "$2" ]
}

# popover_open: sets X and Y to its place.
popover_open() {
    click 1 "$badge"
    program_wait "the popover" popover_is_open
    program_wait "the popover's activation" popover_is_active
    eval "$(xdotool getwindowgeometry --shell "$(popover_id)" | grep -E '^[XY]=')"
}

popover_close() {
    [ -z "${SHOTS:-}" ] || cp "$RIG/open.png" "$SHOTS/$1.png"
    click 1 "$badge"
    program_wait "the popover's end" rig_not popover_is_open
}

# The numbers of the region to blur, in one line; fails where there is none.
blurred_region() {
    xprop -id "$(popover_id)" -notype "$blur" | grep -o '= .*' | tr -d '=,'
}

# This one paints the desktop grey.
compositor_runs() {
    screenshot "$RIG/desktop.png"
    [ "$(color_in "$RIG/desktop.png" 40 700)" = "#808080" ]
}

panel_start
panel_screenshot "$RIG/empty.png"
program_start "$@"
program_wait "the item's registration" item_is_registered
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 200
badge=$(difference_box "$RIG/empty.png" "$RIG/now.png")
opaque=#FBFAF9 # the light scrim upon paper

# A white window behind it: what is transparent shows as black where there is no compositor, and the desktop is black.
xev -geometry 480x480+790+60 >"$RIG/log/behind" 2>&1 &
behind_is_white() {
    screenshot "$RIG/closed.png"
    [ "$(color_in "$RIG/closed.png" 940 330)" = "$white" ]
}
behind_is_active() {
    [ "$(xdotool getactivewindow getwindowname 2>/dev/null)" = "Event Tester" ]
}
white=#FFFFFF
rig_wait "the window behind" behind_is_white
rig_wait "its activation" behind_is_active # Else it would take that from the popover.

popover_open
program_wait "an opaque popover with its corners cut out" popover_looks "$white" "$opaque"
popover_close alone
rig_pass "without a compositor its corners are cut out and nothing shows through"

xcompmgr >"$RIG/log/compositor" 2>&1 &
rig_wait "the compositor" compositor_runs
popover_open
program_wait "an opaque popover with transparent corners" popover_looks "$white" "$opaque"
rig_not blurred_region >/dev/null || rig_fail "it asks for blur: $(blurred_region)"
popover_close composited
rig_pass "with a compositor that does not blur its corners are transparent, its ground is opaque"

xprop -root -format "$blur" 32c -set "$blur" 0
popover_open
program_wait "a translucent popover" popover_looks "$white" "$white" # white glass
read -r -a region <<<"$(blurred_region)"
popover_close blurred
[ $((${#region[@]} % 4)) -eq 0 ] || rig_fail "no rectangles: ${region[*]}"
area=0
for ((i = 0; i < ${#region[@]}; i += 4)); do
    area=$((area + region[i + 2] * region[i + 3]))
done
# Of a square around a circle of radius 12, a fifth lies outside.
corners=$((344 * 300 - area))
if [ "$corners" -lt 100 ] || [ "$corners" -gt 140 ]; then
    rig_fail "all but $corners pixels are blurred"
fi
rig_pass "where the compositor blurs it asks for that, corners apart, and lets it through"

kill -TERM "$program"
rig_wait "the program's end" rig_not program_is_running

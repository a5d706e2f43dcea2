#!/usr/bin/env bash
# appearance.sh PROGRAM: windows follow the desktop's preference, by the real portal and its settings, while they are
# open. The program says "dark" or "light" when it changes.
source "$(dirname "$0")/rig.sh"

# The portal's settings in a file of the rig's; its services get this from the bus. The portal asks no backend but gtk's.
export GSETTINGS_BACKEND=keyfile
rig_enter "$@"

prefer() {
    gsettings set org.gnome.desktop.interface color-scheme "$1"
}

says() {
    [ "$(tail -n 1 "$RIG/log/program")" = "$1" ]
}

# ground_is COLOR: the popover's, where it has no text.
ground_is() {
    [ "$(import -window root -crop 1x1+"$ground_x+$ground_y" +repage -depth 8 txt:- | grep -o '#[0-9A-F]\{6\}')" = "$1" ]
}

portal_is_up() {
    rig_has_name org.freedesktop.portal.Desktop
}

prefer prefer-dark
panel_start
panel_screenshot "$RIG/empty.png"
program_start "$@"
program_wait "the answer of the portal" says dark
rig_pass "the program starts with the desktop's dark preference"

program_wait "the item's registration" item_is_registered
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 200
click 1 "$(difference_box "$RIG/empty.png" "$RIG/now.png")"
program_wait "the popover" popover_is_open
eval "$(xdotool getwindowgeometry --shell "$(popover_id)" | grep -E '^[XY]=')"
ground_x=$((X + 172)) ground_y=$((Y + 100))
dark=#1A1A18
light=#FBFAF9
program_wait "a dark popover" ground_is "$dark"
keep dark.png
for turn in 1 2; do
    prefer prefer-light
    program_wait "the light preference" says light
    program_wait "a light popover" ground_is "$light"
    keep light.png
    prefer prefer-dark
    program_wait "the dark preference" says dark
    program_wait "a dark popover again" ground_is "$dark"
done
rig_pass "the open popover changes its colours with the preference, $turn times"

prefer default
program_wait "no preference" says light
rig_pass "without a preference the desktop's palette counts"

# By its own number alone: other desktops on this machine have portals too.
portal=$(gdbus call --session --dest org.freedesktop.DBus --object-path / \
    --method org.freedesktop.DBus.GetConnectionUnixProcessID org.freedesktop.portal.Desktop | grep -o '[0-9]\+,' | tr -d ,)
kill "$portal"
rig_wait "the portal's end" rig_not portal_is_up
prefer prefer-dark
gdbus call --session --dest org.freedesktop.portal.Desktop --object-path /org/freedesktop/portal/desktop \
    --method org.freedesktop.DBus.Peer.Ping >/dev/null
program_wait "the dark preference by the new portal" says dark
program_wait "a dark popover by the new portal" ground_is "$dark"
rig_pass "a portal that comes back is asked again"

kill -TERM "$program"
rig_wait "the program's end" rig_not program_is_running

#!/usr/bin/env bash
# panel-picture.sh PROGRAM RELAY ANCHOR PORT LOOK FILE: the whole program as its user sees it, photographed: the badge in
# a real panel and the popover below it, at two pixels for a point. LOOK is light (Ethereum, in the panel's colour) or
# dark (a Layer 2 network, in its own colours). The market stands still, so that two pictures differ in nothing.
: "${RIG_SCREEN:=840x1680x24}" "${RIG_PANEL_DARK:=$([ "$5" = dark ] && echo true || echo false)}"
export GDK_SCALE=2 QT_SCALE_FACTOR=2
source "$(dirname "$0")/../EndToEnd/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/../EndToEnd/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4 look=$5 file=$6

# The rig's panel has its tray at the right end; between two separators it stands in the middle of the picture.
center_tray() {
    local separator='type="string" value="separator"><property name="expand" type="bool" value="true"/>'
    separator+='<property name="style" type="uint" value="0"/></property>'
    sed -i -e 's,<value type="int" value="2"/>,&<value type="int" value="3"/>,' \
        -e "s,<property name=\"plugin-2\",<property name=\"plugin-3\" $separator&," \
        "$RIG/config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"
}

wallpaper() {
    local colors=('#c9d6df' '#9fb3c8')
    [ "$look" != dark ] || colors=('#3b4252' '#232833')
    hsetroot -add "${colors[0]}" -add "${colors[1]}" -gradient 0 >"$RIG/log/wallpaper"
}

compositor_is_up() {
    xwininfo -root -tree | grep -q picom
}

screen_is_at_rest() {
    screenshot "$RIG/before.png"
    sleep 0.5
    ! screen_differs "$RIG/before.png" 1
}

settings() {
    mkdir -p "$RIG/config/velisk"
    if [ "$look" = dark ]; then
        # As many networks less as the chosen one's card is high.
        echo '{"theme": "Dark", "badgeChain": "Arbitrum", "colorIcon": true,
            "disabledL2": ["Unichain", "Scroll", "Linea", "Starknet"]}'
    else
        echo '{"theme": "Light"}'
    fi >"$RIG/config/velisk/preferences.json"
}

wallpaper
cat >"$RIG/config/picom.conf" <<'PICOM'
shadow = true; shadow-radius = 36; shadow-offset-x = -36; shadow-offset-y = -24; shadow-opacity = 0.4;
shadow-exclude = ["window_type = 'dock'"];
wintypes: { utility = { full-shadow = true; }; };
PICOM
picom --backend xrender --config "$RIG/config/picom.conf" >"$RIG/log/compositor" 2>&1 &
rig_wait "the compositor" compositor_is_up
center_tray
panel_start
rig_wait "the desktop to come to rest" screen_is_at_rest
cp "$RIG/screen.png" "$RIG/empty.png"
relay_start
relay_order "moment 2026-03-03T14:00:00Z"
relay_order "nodes normal"
settings
program_start "$program_under_test"
program_wait "the badge in the panel" screen_differs "$RIG/empty.png" 300
rig_wait "the desktop to come to rest" screen_is_at_rest
click 1 "$(difference_box "$RIG/empty.png" "$RIG/screen.png")"
program_wait "the popover" popover_is_open
rig_wait "the desktop to come to rest" screen_is_at_rest
cp "$RIG/screen.png" "$file"
kill -TERM "$program"
program_wait_end

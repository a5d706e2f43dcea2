# shellcheck shell=bash
# A desktop for tests: an X server without a screen, a session bus, a window manager and a real panel, all of their own
# and with folders of their own. Source it, call `rig_enter "$@"` first, and the rest of the script runs inside.
#
# RIG_PANEL         xfce, lxqt, mate, trayer (a tray for windows alone) or ayatana (a service without a face) (xfce)
# RIG_LIMIT         seconds that a condition may take (60)
# RIG_SCREEN        width, height and depth of the screen (1280x800x24)
# RIG_MONITORS      monitors that the screen is divided into, each WxH+X+Y, the panel's first (one)
# RIG_PANEL_SIZE    height of the panel in pixels (32)
# RIG_PANEL_DARK    true or false (true); lxqt's panel has a look of its own
# RIG_BUTTON_IMAGES true or false: whether programs on GTK show images on buttons (false, as GTK has it)
# RIG_ICON_SIZE     size of the tray's icons, 0 for what the panel's height allows (22, as the panel has it)
# RIG_ITEM_ID       the Id of the item under test (org.velisk.Torvane)
# RIG_PREPARE       a file that is sourced inside before the script goes on: it starts or lays down what the program
#                   under test needs besides; its background jobs end with the script
# RIG_KEEP          a file for a picture of the screen at a failure
# SHOTS             a folder that keeps the scripts' pictures
# RIG_SESSION_LIMIT seconds that the whole script may take (900)

set -euo pipefail

: "${RIG_LIMIT:=60}" "${RIG_PANEL:=xfce}" "${RIG_BUTTON_IMAGES:=false}" "${RIG_PANEL_SIZE:=32}" "${RIG_PANEL_DARK:=true}" "${RIG_ICON_SIZE:=22}"
: "${RIG_ITEM_ID:=org.velisk.Torvane}" "${RIG_SCREEN:=1280x800x24}"
rig_source=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

# Starts everything around the script and runs it again inside; returns only there. Services of the bus inherit the bus's
# environment, so that all of it has to be exported before the bus starts: later, they would use the real home.
rig_enter() {
    if [ -n "${RIG:-}" ]; then
        rig_furnish
        return
    fi
    RIG=$(mktemp -d)
    trap rig_remove EXIT
    mkdir -p "$RIG"/{config,cache,data,home,run,log,tmp}
    chmod 700 "$RIG/run"
    rig_configure xfce4-panel.xml "$RIG/config/xfce4/xfconf/xfce-perchannel-xml/xfce4-panel.xml"
    rig_configure lxqt-panel.conf "$RIG/config/lxqt/panel.conf"
    rig_configure mate-panel.keyfile "$RIG/config/glib-2.0/settings/keyfile"
    rig_configure gtk-settings.ini "$RIG/config/gtk-3.0/settings.ini"
    export RIG HOME=$RIG/home XDG_CONFIG_HOME=$RIG/config XDG_CACHE_HOME=$RIG/cache XDG_DATA_HOME=$RIG/data \
        XDG_RUNTIME_DIR=$RIG/run TMPDIR=$RIG/tmp XDG_CURRENT_DESKTOP=XFCE GSETTINGS_BACKEND=keyfile LC_ALL=C.UTF-8 NO_AT_BRIDGE=1 QT_QPA_PLATFORM=xcb
    # The keyboard library of X hands strndup bytes without an end, rightly, but the strict check takes it for an error.
    export ASAN_OPTIONS=${ASAN_OPTIONS:-}:strict_string_checks=0
    unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
    Xvfb -displayfd 3 -screen 0 "$RIG_SCREEN" -nolisten tcp -noreset 3>"$RIG/display" 2>"$RIG/log/xvfb" &
    server=$!
    trap 'kill "$server"; wait "$server" || true; rig_remove' EXIT
    # The display's number is complete with its line's end.
    rig_wait "the X server" grep -q . "$RIG/display"
    local result=0
    DISPLAY=:$(cat "$RIG/display") timeout --kill-after=10 "${RIG_SESSION_LIMIT:-900}" dbus-run-session -- "$0" "$@" || result=$?
    exit "$result"
}

# Services that the bus started end a moment after it, and may write until then.
rig_remove() {
    rig_wait "the session's services to leave $RIG alone" rig_is_removed
}

rig_is_removed() {
    rm -rf "$RIG" 2>/dev/null
}

# rig_configure FILE PATH: one of the panels' files, with the wanted looks, where its panel reads it.
rig_configure() {
    mkdir -p "$(dirname "$2")"
    sed "s/@SIZE@/$RIG_PANEL_SIZE/; s/@DARK@/$RIG_PANEL_DARK/; s/@ICON_SIZE@/$RIG_ICON_SIZE/
        s/@BUTTON_IMAGES@/$RIG_BUTTON_IMAGES/" "$rig_source/panels/$1" >"$2"
}

rig_furnish() {
    trap rig_leave EXIT
    openbox >"$RIG/log/openbox" 2>&1 &
    rig_wait "the window manager" rig_has_window_manager
    rig_divide_screen
    if [ -n "${RIG_PREPARE:-}" ]; then
        # shellcheck source=/dev/null
        source "$RIG_PREPARE"
    fi
}

# The only output there is belongs to the first monitor. Millimetres are for about 96 dots an inch.
rig_divide_screen() {
    local output=screen number=1 monitor width height x y
    for monitor in ${RIG_MONITORS:-}; do
        IFS='x+' read -r width height x y <<<"$monitor"
        xrandr --setmonitor "monitor-$number" "$width/$((width * 254 / 960))x$height/$((height * 254 / 960))+$x+$y" "$output"
        output=none number=$((number + 1))
    done
}

# On a failure, what the programs said is all there is to learn from.
rig_leave() {
    local -r result=$?
    if [ "$result" -ne 0 ]; then
        tail -n 30 "$RIG"/log/* >&2
        if [ -n "${RIG_KEEP:-}" ]; then
            import -window root "$RIG_KEEP" && echo "The screen at the failure: $RIG_KEEP" >&2
        fi
    fi
    local job
    for job in $(jobs -p); do
        kill "$job" 2>/dev/null || true # It may have ended by itself.
    done
    exit "$result"
}

rig_fail() {
    echo "FAILED: $*" >&2
    exit 1
}

rig_pass() {
    echo "ok: $*"
}

# rig_wait WHAT COMMAND...: until the command succeeds; a failure when it does not within the limit.
rig_wait() {
    local -r what=$1 end=$((SECONDS + RIG_LIMIT))
    shift
    until "$@"; do
        [ "$SECONDS" -lt "$end" ] || rig_fail "waited $RIG_LIMIT s in vain for $what"
        sleep 0.1
    done
}

rig_not() {
    ! "$@"
}

rig_has_window_manager() {
    xprop -root _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'
}

rig_has_name() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.NameHasOwner "string:$1" |
        grep -q 'boolean true'
}

# rig_owner NAME: the connection that owns the name.
rig_owner() {
    gdbus call --session --dest org.freedesktop.DBus --object-path / --method org.freedesktop.DBus.GetNameOwner "$1"
}

rig_is_running() {
    kill -0 "$1" 2>/dev/null
}

panel_is_up() {
    if [ "$RIG_PANEL" = trayer ]; then
        xdotool search --onlyvisible --class trayer >/dev/null 2>&1
    else
        rig_has_name org.kde.StatusNotifierWatcher
    fi
}

# Sets `panel` to the process.
panel_start() {
    local command
    case $RIG_PANEL in
    xfce) command=(xfce4-panel --disable-wm-check) ;;
    lxqt) command=(lxqt-panel) ;;
    mate) command=(mate-panel) ;;
    trayer)
        command=(trayer --edge top --align right --widthtype request --heighttype pixel --height "$RIG_PANEL_SIZE")
        ;;
    ayatana) command=(/usr/libexec/ayatana-indicator-application/ayatana-indicator-application-service) ;;
    *) rig_fail "no such panel: $RIG_PANEL" ;;
    esac
    "${command[@]}" >>"$RIG/log/panel" 2>&1 &
    panel=$!
    rig_wait "the panel's tray" panel_is_up
}

# panel_stop SIGNAL
panel_stop() {
    kill -"$1" "$panel"
    { wait "$panel" || true; } 2>/dev/null # That it was killed is no news.
    rig_wait "the tray to go" rig_not panel_is_up
}

# program_start COMMAND...: sets `program` to the process.
program_start() {
    "$@" >>"$RIG/log/program" 2>&1 &
    program=$!
}

program_is_running() {
    rig_is_running "$program"
}

# program_wait WHAT COMMAND...: as rig_wait, but a failure at once when the program ends meanwhile.
program_wait() {
    rig_wait "$1" program_has_ended_or "${@:2}"
    program_is_running || rig_fail "the program ended before $1"
}

program_has_ended_or() {
    rig_not program_is_running || "$@"
}

# The program's end, which must be a good one.
program_wait_end() {
    rig_wait "the program's end" rig_not program_is_running
    local result=0
    wait "$program" || result=$?
    [ "$result" -eq 0 ] || rig_fail "the program ended with $result"
}

# The bus names of the items that the panel has taken in, one per line; of each, what stands before its path.
registered_items() {
    gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher \
        --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher RegisteredStatusNotifierItems \
        2>/dev/null | grep -o "'[^']*'" | tr -d "'" | sed 's,/.*,,'
}

# A panel that is gone has none either, which says nothing.
panel_has_no_item() {
    panel_is_up && [ "$(registered_items | wc -l)" = 0 ]
}

# The bus name of the panel's item with the Id under test. Fails when there is none.
find_item() {
    local name
    for name in $(registered_items); do
        if [ "$(item_property "$name" Id)" = "(<'$RIG_ITEM_ID'>,)" ]; then
            echo "$name"
            return 0
        fi
    done
    return 1
}

item_is_registered() {
    find_item >"$RIG/item"
}

# Whether some item is on the bus, taken in or not.
item_is_on_bus() {
    dbus-send --session --print-reply --dest=org.freedesktop.DBus / org.freedesktop.DBus.ListNames |
        grep -q '"org.kde.StatusNotifierItem-'
}

# item_has_title PATTERN: an extended regular expression for the whole title.
item_has_title() {
    item_property "$(find_item)" Title | grep -Eqx "\(<['\"]$1['\"]>,\)"
}

# item_property NAME PROPERTY: as GVariant text, such as (<'Active'>,).
item_property() {
    gdbus call --session --dest "$1" --object-path /StatusNotifierItem \
        --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierItem "$2"
}

# menu_entry NAME LABEL: the entry's number.
menu_entry() {
    gdbus call --session --dest "$1" --object-path /MenuBar --method com.canonical.dbusmenu.GetLayout 0 1 '["label"]' |
        grep -o "([0-9]*, {'label': <'$2'>" | grep -o '^([0-9]*' | tr -d '('
}

# menu_choose NAME LABEL: as a panel does when the entry is clicked.
menu_choose() {
    local entry
    entry=$(menu_entry "$1" "$2") || rig_fail "there is no menu entry '$2'"
    gdbus call --session --dest "$1" --object-path /MenuBar --method com.canonical.dbusmenu.Event \
        "$entry" clicked '<0>' 0 >/dev/null
}

# The popover's window; fails when it is not open.
popover_id() {
    xdotool search --onlyvisible --name '^velisk$' 2>/dev/null
}

popover_is_open() {
    popover_id >/dev/null
}

popover_is_active() {
    [ "$(xdotool getactivewindow 2>/dev/null)" = "$(popover_id)" ]
}

screenshot() {
    import -window root "$1"
}

# keep NAME [PICTURE]: the picture, or one of the screen, in the folder SHOTS; nothing where there is no such wish.
keep() {
    [ -n "${SHOTS:-}" ] || return 0
    if [ $# = 2 ]; then cp "$2" "$SHOTS/$1"; else screenshot "$SHOTS/$1"; fi
}

# panel_screenshot FILE: the panel's strip alone.
panel_screenshot() {
    import -window root -crop "1280x$RIG_PANEL_SIZE+0+0" +repage "$1"
}

# different_pixels FILE FILE: how many; compare itself fails when there are any.
different_pixels() {
    compare -metric AE "$1" "$2" null: 2>&1 || true
}

# difference_box FILE FILE: the rectangle around all differing pixels, WxH+X+Y.
difference_box() {
    convert "$1" "$2" -compose difference -composite -threshold 0 -trim -format '%wx%h%O' info:
}

# box_corner BOX: "X Y" of a rectangle WxH+X+Y.
box_corner() {
    local width height x y
    IFS='x+' read -r width height x y <<<"$1"
    echo "$x $y"
}

# click BUTTON BOX: in the middle of a rectangle WxH+X+Y. The pointer comes from aside, as a hand does: a panel's button
# that was made anew under a pointer at rest does not know that it is there.
click() {
    local width height x y
    IFS='x+' read -r width height x y <<<"$2"
    xdotool mousemove $((x + width / 2)) $((y + height / 2 + 200)) mousemove $((x + width / 2)) $((y + height / 2)) click "$1"
}

# screen_differs FILE COUNT: as panel_differs, for the whole screen.
screen_differs() {
    screenshot "$RIG/screen.png"
    [ "$(different_pixels "$1" "$RIG/screen.png")" -ge "$2" ]
}

# panel_differs FILE COUNT: whether at least so many pixels of the panel differ from the earlier screenshot.
panel_differs() {
    panel_screenshot "$RIG/now.png"
    [ "$(different_pixels "$1" "$RIG/now.png")" -ge "$2" ]
}

# Takes pictures of the panel until two are the same, the last one in now.png: it draws its parts one after the other.
panel_settle() {
    rig_wait "the panel to come to rest" panel_is_at_rest
}

panel_is_at_rest() {
    panel_screenshot "$RIG/before.png"
    sleep 0.5
    panel_equals "$RIG/before.png"
}

panel_equals() {
    panel_screenshot "$RIG/now.png"
    [ "$(different_pixels "$1" "$RIG/now.png")" -eq 0 ]
}

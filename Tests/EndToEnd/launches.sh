#!/usr/bin/env bash
# launches.sh PROGRAM RELAY ANCHOR PORT: one program per session, however often and by whatever means it is started; how
# it ends; and that it runs without a panel, a bus, a network or a home.
: "${RIG_PANEL:=mate}" # Its items can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

# launch_again STATUS: a further launch ends with it, and the first one goes on.
launch_again() {
    local status=0
    timeout --kill-after=5 "$RIG_LIMIT" "$program_under_test" >"$RIG/log/second" 2>&1 || status=$?
    [ "$status" -eq "$1" ] || rig_fail "a further launch ended with $status, not $1: $(cat "$RIG/log/second")"
    program_is_running || rig_fail "the first launch ended with the second"
}

# program_end SIGNAL: it ends by the signal as by its own action.
program_end() {
    kill -"$1" "$program"
    program_wait_end
}

program_said() {
    grep -qF "velisk: $1" "$RIG/log/program"
}

# Without a bus, launches find each other from here on: by a socket whose name the kernel keeps.
socket_listens() {
    grep -q " 00010000 .* @org.velisk.Torvane.Demo/$UID/$DISPLAY\$" /proc/net/unix
}

windows_in_taskbar() {
    local window
    for window in $(xprop -root _NET_CLIENT_LIST | grep -o '0x[0-9a-f]*'); do
        case $(xprop -id "$window" WM_CLASS _NET_WM_STATE) in
        *SKIP_TASKBAR*) ;;
        *velisk*) echo "$window" ;;
        esac
    done
}

for argument in --version --help; do
    DISPLAY='' "$program_under_test" "$argument" >"$RIG/answer" || rig_fail "$argument ended with $?"
    grep -q velisk "$RIG/answer" || rig_fail "$argument says nothing"
done
status=0
DISPLAY='' "$program_under_test" --platform offscreen >"$RIG/answer" 2>"$RIG/refusal" || status=$?
if [ "$status" -ne 2 ] || [ -s "$RIG/answer" ] || [ "$(wc -l <"$RIG/refusal")" -ne 1 ]; then
    rig_fail "other arguments end with $status and: $(cat "$RIG/refusal")"
fi
rig_pass "it answers --version and --help without a display, and refuses other arguments in one line"

panel_start
relay_start
# A process that is traced cannot look for its leaks.
ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 program_start strace -f -qq -s 400 -e trace=openat,connect,sendmsg \
    -o "$RIG/trace" "$program_under_test"
program_wait "the item's registration" item_is_registered
program_wait "the first figure" item_has_title 'Ethereum: [0-9.]+ gwei · .*'
[ -z "$(windows_in_taskbar)" ] || rig_fail "it has a window at the start"
rig_pass "with nothing stored it shows a figure, and no window"

# first_of PATTERN: the number of the trace's first line that has it.
first_of() {
    grep -n -m 1 "$1" "$RIG/trace" | cut -d : -f 1 || rig_fail "the trace has no $1"
}

last=0
for step in 'velisk/preferences\.json' 'velisk/cachedSnapshot' GetServerInformation StatusNotifierWatcher \
    "htons($port)"; do
    line=$(first_of "$step")
    [ "$line" -gt "$last" ] || rig_fail "$step came too early"
    last=$line
done
rig_pass "it reads settings, then the cache, wakes the notifications' service, looks for a panel, and uses the network last"

screenshot "$RIG/closed.png"
launch_again 0
program_wait "the popover" popover_is_open
program_wait "the popover's figures" screen_differs "$RIG/closed.png" 100000
keep second-launch.png
[ -z "$(windows_in_taskbar)" ] || rig_fail "the popover is in the taskbar"
xdotool key Escape
program_wait "the popover's end" rig_not popover_is_open
rig_pass "a second launch opens the first one's popover and ends"

first=$(rig_owner org.velisk.Torvane.Demo)
for launch in 1 2 3 4 5; do
    "$program_under_test" >"$RIG/log/launch$launch" 2>&1 &
    launches+=($!)
done
for launch in "${launches[@]}"; do
    wait "$launch" || rig_fail "one of five launches at once ended with $?"
done
[ "$(rig_owner org.velisk.Torvane.Demo)" = "$first" ] || rig_fail "another launch took over"
rig_pass "five launches at once change nothing"

menu_choose "$(find_item)" "Quit velisk"
program_wait_end
rig_pass "Quit ends it"

for signal in TERM INT; do
    program_start "$program_under_test"
    program_wait "the item's registration" item_is_registered
    program_end "$signal"
done
rig_pass "SIGTERM and SIGINT end it cleanly"

for launch in 1 2; do
    program_start "$program_under_test"
    started[launch]=$program
done
one_has_ended() {
    ! rig_is_running "${started[1]}" || ! rig_is_running "${started[2]}"
}
rig_wait "one of two launches to give way" one_has_ended
if rig_is_running "${started[1]}"; then program=${started[1]}; else program=${started[2]}; fi
program_wait "the popover" popover_is_open
rig_pass "of two launches at once one gives way, and the other opens its popover"
program_end TERM

mkdir -p "$XDG_DATA_HOME/dbus-1/services"
printf '[D-BUS Service]\nName=org.velisk.Torvane.Demo\nExec="%s"\n' "$program_under_test" \
    >"$XDG_DATA_HOME/dbus-1/services/org.velisk.Torvane.Demo.service"
gdbus call --session --dest org.freedesktop.DBus --object-path / --method org.freedesktop.DBus.ReloadConfig >/dev/null
gdbus call --session --dest org.velisk.Torvane.Demo --object-path /org/velisk/Torvane/Demo \
    --method org.freedesktop.Application.Activate '{}' >/dev/null
rig_wait "the popover" popover_is_open
rig_wait "the item's registration" item_is_registered
menu_choose "$(find_item)" "Quit velisk"
rig_wait "its end" rig_not rig_has_name org.velisk.Torvane.Demo
rm "$XDG_DATA_HOME/dbus-1/services/org.velisk.Torvane.Demo.service"
rig_pass "the bus starts it by its name, with the popover open"

panel_stop TERM
program_start "$program_under_test"
program_wait "a word about the panel" program_said "No panel here shows the badge so far"
launch_again 0
program_wait "the popover" popover_is_open
xdotool key Escape
panel_start
program_wait "the registration with the late panel" item_is_registered
rig_pass "without a panel it says so, opens by a second launch, and the panel that comes late shows the badge"
program_end TERM
relay_stop

bus=$DBUS_SESSION_BUS_ADDRESS
export DBUS_SESSION_BUS_ADDRESS=unix:path=/nonexistent
program_start "$program_under_test"
program_wait "its socket" socket_listens
program_said "There is no session bus" || rig_fail "it says nothing about the bus"
launch_again 0
program_wait "the popover" popover_is_open
keep no-bus.png
rig_pass "without a bus, a relay or a network it runs, says so, and opens by a second launch"
program_end TERM

# As a service is started that has no home: nothing can be kept, and everything else goes on.
program_start env -u XDG_CONFIG_HOME -u XDG_CACHE_HOME -u XDG_DATA_HOME -u XDG_RUNTIME_DIR HOME=/nonexistent \
    "$program_under_test"
program_wait "its socket" socket_listens
launch_again 0
program_wait "the popover" popover_is_open
rig_pass "without a home it runs and opens"
program_end TERM
export DBUS_SESSION_BUS_ADDRESS=$bus
if grep -E 'Sanitizer|runtime error|^QObject|^qt\.|Warning' "$RIG/log/program" "$RIG"/log/launch* "$RIG/log/second"; then
    rig_fail "it complained"
fi

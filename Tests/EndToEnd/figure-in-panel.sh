#!/usr/bin/env bash
# figure-in-panel.sh PROGRAM RELAY ANCHOR PORT: the program shows in a real panel what its relay says, keeps it while
# the relay misbehaves or is gone, and over a restart. The relay is the stand-in, its certificate is in ANCHOR.
: "${RIG_PANEL:=mate}" # Its items show the whole figure, and can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

panel_start
panel_settle
cp "$RIG/now.png" "$RIG/empty.png"
relay_start
relay_order "baseFee 12.2"
program_start "$program_under_test"
program_wait "the relay's figure" tool_tip_is "12.3 gwei"
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 200
keep first.png "$RIG/now.png"
cp "$RIG/now.png" "$RIG/first.png"
rig_pass "the panel shows the figure of the relay's document"

relay_order "baseFee 7.4"
refresh
program_wait "the new figure" tool_tip_is "7.5 gwei"
program_wait "the new figure in the panel" panel_differs "$RIG/first.png" 10
keep second.png "$RIG/now.png"
cp "$RIG/now.png" "$RIG/second.png"
rig_pass "the panel follows the relay's document"

figure_stays() {
    refresh
    tool_tip_is "7.5 gwei" || rig_fail "the figure changed after '$1'"
    rig_pass "the last good figure stays after '$1'"
}

relay_order "baseFee 99"
for answer in "status 503" garbage truncate "redirect http://localhost:$port/"; do
    relay_order "answer $answer"
    figure_stays "$answer"
done
for certificate in otherhost expired stranger; do
    relay_stop
    relay_start
    relay_order "baseFee 99"
    relay_show_certificate "$certificate"
    figure_stays "certificate $certificate"
done
panel_equals "$RIG/second.png" || rig_fail "the badge was drawn anew"

relay_stop
refresh
tool_tip_is "7.5 gwei" || rig_fail "the figure went with the relay"
kill -TERM "$program"
program_wait_end
rig_wait "the badge to leave the panel" panel_differs "$RIG/second.png" 200
rm "$RIG/log/program"
program_start "$program_under_test"
program_wait "the cached figure" tool_tip_is "7.5 gwei"
program_wait "the failed fetch" grep -qs ' fail$' "$RIG/log/program"
rig_pass "a start without the relay shows the cached figure"

relay_start
relay_order "baseFee 21.5"
refresh
program_wait "the figure of the relay that came back" tool_tip_is "21.8 gwei"
rig_pass "a relay that comes back is heard"

# Each block's tips differ a little: with this base fee they do not reach the figure's last digit.
relay_order "answer status 503"
relay_order "baseFee 8"
relay_order "nodes normal"
refresh
program_wait "the nodes' figure" tool_tip_is "8.1 gwei"
rig_pass "the panel follows the nodes while the relay fails"

menu_choose "$(find_item)" "Quit velisk"
program_wait_end
rig_pass "Quit ends the program"

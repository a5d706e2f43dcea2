#!/usr/bin/env bash
# alerts.sh PROGRAM RELAY ANCHOR PORT: the program's user hears from a real notification daemon each time that gas becomes
# cheap, once. The relay is the stand-in, its certificate is in ANCHOR.
: "${RIG_PANEL:=mate}" # Its items can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
source "$(dirname "$0")/daemon.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

mkdir -p "$XDG_CONFIG_HOME/velisk"
echo '{"alertEnabled": true, "alert": 10, "badgeSource": "Base fee"}' >"$XDG_CONFIG_HOME/velisk/preferences.json"
daemon_configure
daemon_start
panel_start
relay_start
relay_order "baseFee 12"
program_start "$program_under_test"
program_wait "the first base fee" tool_tip_is "12.0 gwei"
# The last one is below the threshold as well: whoever announced too much has done so by then.
for fee in 9 8 11 7 6; do
    relay_order "baseFee $fee"
    refresh
    program_wait "the base fee $fee" tool_tip_is "$fee.0 gwei"
done
received_expect "$(announced 9.0 10)" "$(announced 7.0 10)"
rig_pass "of the base fees 12, 9, 8, 11, 7 and 6, those of 9 and 7 are announced"

menu_choose "$(find_item)" "Quit velisk"
program_wait_end

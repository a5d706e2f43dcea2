#!/usr/bin/env bash
# no-panel.sh PROGRAM RELAY ANCHOR PORT: a desktop without any panel. The program waits for none before it fetches, says
# in the end that it cannot be seen, and is there for a panel that comes.
: "${RIG_PANEL:=mate}" # The one that comes; its items can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

relay_start
relay_order "baseFee 12.2"
program_start "$program_under_test"
program_wait "the first fetch" more_requests_logged 0
item_is_on_bus && rig_fail "there is an item, though nobody shows it"
rig_pass "the figures are fetched without a panel"

program_wait "the word about the panel" grep -qs '^velisk: No panel here shows the badge so far' "$RIG/log/program"
rig_pass "it says that no panel shows it"

panel_start
program_wait "the item's registration" item_is_registered
program_wait "the figure" tool_tip_is "12.3 gwei"
rig_pass "a panel that comes late has the figure at once"
menu_choose "$(find_item)" "Quit velisk"
program_wait_end

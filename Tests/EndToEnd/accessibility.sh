#!/usr/bin/env bash
# accessibility.sh PROGRAM: what a screen reader is told of the popover, and that it can press what stands there.
#
# TREE              a file that keeps the tree
# shellcheck disable=SC2016 # Dollars are dollars here.
source "$(dirname "$0")/rig.sh"

rig_enter "$@"

export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1

tree() {
    "$rig_source/read-window" velisk
}

tree_has() {
    tree | grep -F -- "$1" >/dev/null # All of it is read: an early end would fail the writer.
}

expect() {
    rig_wait "$1" tree_has "$1"
    rig_pass "$1"
}

"$1" >"$RIG/log/program" 2>&1 &
expect 'label "Mainnet · block 21,000,000"'
if [ -n "${TREE:-}" ]; then
    tree >"$TREE"
fi
expect 'label "12.4 gwei"'
expect 'label "Normal"'
expect '"Low: 12.5 gwei, $0.91, Normal"'
expect '"High: 31.0 gwei, $2.25, Busy"'
expect 'label "NFT MINT"'
expect 'label "$5.14"'
expect 'label "$3,456.70"'
expect 'chart "24H BASE FEE: lowest 2.1 gwei, highest 16.4 gwei, latest 12.0 gwei" [2.'
expect '"Arbitrum, Normal"'
expect 'chart "ARBITRUM GAS: lowest'
expect 'button "Optimism, 0.001 gwei, Low"'
expect 'button "Starknet, —, Unavailable"'
expect 'label "Updated just now"'
expect 'button "Preferences…" <Ctrl+,>'

if tree | grep -E '(button|chart|label) ""'; then
    rig_fail "a part without a name"
fi
rig_pass "every part has a name"

"$rig_source/read-window" velisk press "Optimism"
rig_wait "the copy" grep -qx 'copied: Optimism 0.001 gwei' "$RIG/log/program"
rig_pass "a network's figure is copied"

"$rig_source/read-window" velisk press "Refresh Now"
rig_wait "the refresh" grep -qx refresh "$RIG/log/program"
rig_pass "an action is pressed"

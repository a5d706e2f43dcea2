# shellcheck shell=bash disable=SC2154
# The stand-in relay for scripts that have entered the rig and set relay_under_test, anchor (its certificate) and port.

relay_start() {
    rm -f "$RIG/log/relay" # The "ready" in it may be that of the relay before.
    "$relay_under_test" >"$RIG/log/relay" 2>&1 &
    relay=$!
    rig_wait "the relay" grep -qsx ready "$RIG/log/relay"
    relay_order "nodes off" # Live figures would hide the relay's.
}

relay_stop() {
    kill "$relay"
    wait "$relay" || true # It ends by the signal.
}

relay_order() {
    curl --silent --show-error --fail --cacert "$anchor" --data "$1" "https://localhost:$port/control" ||
        rig_fail "the relay does not take the order '$1'"
}

# The relay listens anew once the order is answered.
relay_show_certificate() {
    relay_order "certificate $1"
    rig_wait "the certificate $1" rig_not curl --silent --output /dev/null --cacert "$anchor" "https://localhost:$port/control"
}

requests_logged() {
    grep -c '^org.velisk.Torvane.net: method=GET host=localhost bytes=[0-9]* ms=[0-9]* \(ok\|fail\)$' "$RIG/log/program"
}

more_requests_logged() {
    [ "$(requests_logged)" -gt "$1" ]
}

# Asks for a fetch and waits until it has ended.
refresh() {
    local before
    before=$(requests_logged) || true # grep -c fails when it counts none.
    menu_choose "$(find_item)" "Refresh Now"
    program_wait "the end of a fetch" more_requests_logged "$before"
}

# tool_tip_is FIGURE: with its unit, before the word for the level.
tool_tip_is() {
    item_property "$(find_item)" ToolTip | grep -qF "Ethereum: $1 · "
}

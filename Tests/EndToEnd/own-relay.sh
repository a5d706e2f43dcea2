#!/usr/bin/env bash
# own-relay.sh PROGRAM RELAY NODES ANCHOR PORT: a relay on the user's own machine reads real nodes and the program shows,
# in a real panel, what it publishes. NODES is a program that starts the nodes; their certificate is in ANCHOR. The
# program looks for its relay at localhost:PORT.
#
# SHOTS             a folder that keeps the pictures and the relay's own lines
: "${RIG_PANEL:=mate}" # Its items show the whole figure, and can be read by others.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 nodes=$3 anchor=$4 port=$5
table=$RIG/networks.toml
own=$XDG_DATA_HOME/velisk

# own_relay_start LINE: and waits until it has said a line that begins so.
own_relay_start() {
    rm -f "$RIG/log/relay"
    "$relay_under_test" --serve "localhost:$port" --table "$table" >"$RIG/log/relay" 2>&1 &
    relay=$!
    rig_wait "the relay's line: $1" grep -qs "^$1" "$RIG/log/relay"
}

fetch() {
    curl --silent --show-error --fail --cacert "$own/relay.pem" "https://localhost:$port/snapshot.json" "$@"
}

"$nodes" "$table" >"$RIG/log/nodes" 2>&1 &
nodes_process=$!
rig_wait "the nodes" grep -qsx ready "$RIG/log/nodes"

own_relay_start "Nothing written: no node of Ethereum: "
[ "$(stat --format=%a "$own/relay.key")" = 600 ] || rig_fail "others may read the key"
openssl verify -partial_chain -trusted "$own/relay.pem" "$own/relay.pem" >/dev/null || rig_fail "the certificate is not its own anchor"
rig_not fetch --output "$RIG/document" 2>/dev/null || rig_fail "there is a document that nobody made"
relay_stop
rig_pass "the first start makes a key and a certificate, and nodes that are not trusted give no document"

cat "$anchor" >>"$own/relay.pem" # The nodes' authority beside the relay's own certificate.
own_relay_start "Wrote $own/snapshot.json: "
grep -q '^Ethereum: block 170, base fee 12.0 gwei, ETH .3,200.00 (+8.0%)' "$RIG/log/relay" || rig_fail "the figures are others"
fetch --output "$RIG/document"
cmp --silent "$RIG/document" "$own/snapshot.json" || rig_fail "it serves another document than it wrote"
"$relay_under_test" --check "$RIG/document" || rig_fail "the document is not good"
sed 's/"avg"/"average"/' "$RIG/document" >"$RIG/broken"
if "$relay_under_test" --check "$RIG/broken" 2>"$RIG/log/check"; then rig_fail "a broken document passes"; fi
grep -q 'broken: gas.avg: missing$' "$RIG/log/check" || rig_fail "the key that is wrong is not named"
keep relay-lines.txt "$RIG/log/relay"
keep snapshot.json "$RIG/document"
rig_pass "the relay reads the nodes and serves what it wrote"

panel_start
panel_settle
cp "$RIG/now.png" "$RIG/empty.png"
program_start "$program_under_test"
program_wait "the relay's figure" tool_tip_is "13.0 gwei"
program_wait "the badge in the panel" panel_differs "$RIG/empty.png" 200
rig_pass "the program trusts its user's relay and shows its figure"

click 1 "$(difference_box "$RIG/empty.png" "$RIG/now.png")"
program_wait "the popover" xdotool search --onlyvisible --name '^velisk$'
screenshot "$RIG/popover.png"
keep popover.png "$RIG/popover.png"
cmp --silent "$RIG/document" "$XDG_CACHE_HOME/velisk/cachedSnapshot" || rig_fail "the program keeps other bytes"
rig_pass "the program keeps the document as the relay served it"

kill "$nodes_process"
wait "$nodes_process" || true
relay_stop
own_relay_start "Nothing written: "
fetch --output "$RIG/document.again"
cmp --silent "$RIG/document" "$RIG/document.again" || rig_fail "the earlier document is gone"
rig_pass "a start without nodes serves the earlier document"

if "$relay_under_test" --serve "localhost:$port" --table "$table" >"$RIG/log/second" 2>&1; then
    rig_fail "two relays share the port"
fi
grep -q "localhost:$port: the port is taken" "$RIG/log/second" || rig_fail "the second relay does not say why it ends"
if "$relay_under_test" --out "$RIG/document" --table "$table" >"$RIG/log/once" 2>&1; then
    rig_fail "a run without nodes is no success"
fi
[ "$(wc -l <"$RIG/log/once")" = 1 ] || rig_fail "one line is enough"
rig_pass "what cannot be done is said in a line"
relay_stop
kill -TERM "$program"
program_wait_end

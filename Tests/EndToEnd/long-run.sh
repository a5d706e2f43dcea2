#!/usr/bin/env bash
# long-run.sh PROGRAM RELAY ANCHOR PORT: the program at the per-block cadence with a fault every few seconds, of its
# relay, its nodes or its panel, and its popover opened again and again. Memory, descriptors and threads stay what they
# are, nothing is complained of, and in the end the figures are right.
#
# TORVANE_SOAK      the long run: an hour; else LONG_RUN_SECONDS (30)
# SHOTS             a folder that keeps the table of what was measured
: "${RIG_PANEL:=mate}" # Its items can be read by others.
: "${LONG_RUN_SECONDS:=30}"
[ -z "${TORVANE_SOAK:-}" ] || LONG_RUN_SECONDS=3600
# The hour is on top of what a condition may take.
export LONG_RUN_SECONDS RIG_SESSION_LIMIT=$((LONG_RUN_SECONDS + 900))
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
program_under_test=$1 relay_under_test=$2 anchor=$3 port=$4

faults=("answer status 503" "answer garbage" "answer truncate" "answer drip" "answer endless" "answer off" "answer silence"
    "answer redirect http://localhost:$port/" "nodes status 429" "nodes garbage" "nodes truncate" "nodes error" "nodes off"
    "nodes drip" "nodes silence" "baseFee 4" "baseFee 900" "baseFee")

kilobytes() {
    awk -v key="$1:" '$1 == key { print $2 }' "/proc/$program/smaps_rollup"
}

descriptors() {
    find "/proc/$program/fd" -mindepth 1 2>/dev/null | wc -l
}

threads() {
    find "/proc/$program/task" -mindepth 1 -maxdepth 1 2>/dev/null | wc -l
}

# In a sanitizer's build most of the memory is the sanitizer's.
is_plain() {
    ! grep -q 'lib[al]san' "/proc/$program/maps"
}

# Nothing is in flight, no window is open: what is held now is held for good.
come_to_rest() {
    relay_order "answer normal"
    relay_order "nodes normal"
    relay_order "baseFee 7.4"
    refresh
    program_wait "the figure at rest" tool_tip_is "7.5 gwei"
}

popover_opens_and_closes() {
    "$program_under_test" >>"$RIG/log/launches" 2>&1 || rig_fail "a second launch ended with $?"
    program_wait "the popover" popover_is_open
    xdotool key Escape
    program_wait "the popover's end" rig_not popover_is_open
}

panel_is_exchanged() {
    panel_stop KILL
    panel_start
    program_wait "the registration with the new panel" item_is_registered
}

one_fault() {
    case $(($1 % 6)) in
    2) popover_opens_and_closes ;;
    5) panel_is_exchanged ;;
    *) relay_order "${faults[RANDOM % ${#faults[@]}]}" ;;
    esac
}

sample() {
    echo "$SECONDS $(kilobytes Private_Dirty) $(kilobytes Pss) $(descriptors) $(threads)" | tee -a "$RIG/samples"
}

panel_start
relay_start
relay_order "nodes normal"
program_start "$program_under_test"
program_wait "the item's registration" item_is_registered
# Each kind of thing once, so that what is loaded on demand has been loaded.
for round in 1 2 3; do
    popover_opens_and_closes
    panel_is_exchanged
done
come_to_rest
echo "seconds, private dirty kB, PSS kB, descriptors, threads"
sample
end=$((SECONDS + LONG_RUN_SECONDS)) round=0
while [ "$SECONDS" -lt "$end" ]; do
    one_fault $((++round))
    program_is_running || rig_fail "the program ended in round $round"
    sleep 3
    if [ $((round % 40)) -eq 0 ]; then
        come_to_rest
        sample
    fi
done
come_to_rest
sample
[ -z "${SHOTS:-}" ] || cp "$RIG/samples" "$SHOTS/long-run.txt"

read -r _ dirty _ files threads_first < <(head -n 1 "$RIG/samples")
read -r _ dirty_last _ files_last threads_last < <(tail -n 1 "$RIG/samples")
[ "$files_last" -le $((files + 2)) ] || rig_fail "of $files descriptors it came to $files_last"
[ "$threads_last" -le $((threads_first + 1)) ] || rig_fail "of $threads_first threads it came to $threads_last"
if is_plain && [ "$dirty_last" -gt $((dirty + dirty / 5)) ]; then
    rig_fail "of $dirty kB of its own it came to $dirty_last"
fi
if grep -v '^org\.velisk\.Torvane\.net: ' "$RIG/log/program"; then rig_fail "it complained"; fi
rig_pass "after $round faults in $LONG_RUN_SECONDS s it is as it was, and shows what is true"
menu_choose "$(find_item)" "Quit velisk"
program_wait_end

# shellcheck shell=bash
# What scripts that run velisk beside a program of its own share. They keep the two processes in these, and set
# end_both as their trap.
program_id=
companion_id=
scratch=

# end_process ID: asks the process to end, and makes it end after five seconds.
# shellcheck disable=SC2317 # Reached through the trap.
end_process() {
    local tenths
    [ -n "$1" ] && kill -TERM "$1" 2>/dev/null || return 0
    for ((tenths = 0; tenths < 50; tenths++)); do
        kill -0 "$1" 2>/dev/null || return 0
        sleep 0.1
    done
    kill -KILL "$1" 2>/dev/null || :
}

# shellcheck disable=SC2317
end_both() {
    trap '' INT TERM HUP
    end_process "$program_id"
    end_process "$companion_id"
    if [ -n "$scratch" ]; then rm -rf "$scratch"; fi
}

# start_companion COMMAND...: starts it; what it says is read from descriptor 3. Needs $scratch, a folder.
start_companion() {
    mkfifo "$scratch/output"
    "$@" >"$scratch/output" &
    companion_id=$!
    exec 3<"$scratch/output"
}

# Passes on whatever else the companion says: a full pipe would stop it.
pass_on_companion() {
    cat <&3 &
    exec 3<&-
}

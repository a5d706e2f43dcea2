#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# Both programs, played by scripts: the relay says the lines of the file "lines" and stays.
run_programs() {
    write_program relay <<'PROGRAM'
#!/bin/bash
echo "$$" >relay.id
echo "$*" >relay.arguments
cat lines
exec tail -f /dev/null
PROGRAM
    write_program velisk <<'PROGRAM'
#!/bin/bash
echo "$$" >velisk.id
cp run.output output.before
PROGRAM
    printf 'Serving https://localhost:8643/snapshot.json\nWrote snapshot.json\n' >lines
    export TORVANE_RUN_RELAY=$PWD/relay TORVANE_RUN_PROGRAM=$PWD/velisk TORVANE_RUN_ADDRESS=localhost:8643
    trap end_leftovers EXIT
}

# A check that fails must not leave its programs running.
# shellcheck disable=SC2317 # Reached through the trap.
end_leftovers() {
    local file
    for file in *.id; do
        [ -e "$file" ] || continue
        has_ended "$(cat "$file")" || kill -KILL "$(cat "$file")"
    done
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

start_run() {
    status=0
    "$tree/scripts/run" >run.output 2>&1 </dev/null || status=$?
    output=$(cat run.output)
    printf '%s\n[status %s]\n' "$output" "$status"
}

theProgramStartsOnceTheRelayHasADocument() {
    run_programs
    start_run
    expect_status 0
    [ "$(cat relay.arguments)" = '--serve localhost:8643' ] || fail "the relay was given: $(cat relay.arguments)"
    grep -q '^Wrote' output.before || fail "the program did not wait for the document"
    expect_output_lacks 'make demo'
}

theRelayEndsWithTheProgram() {
    run_programs
    start_run
    has_ended "$(cat relay.id)" || fail "the relay still runs"
}

withoutNodesItSaysSoAndNamesTheDemo() {
    run_programs
    echo 'Nothing written: no node of Ethereum: a: Could not resolve host: a' >lines
    start_run
    expect_status 0
    expect_output_has 'Could not resolve host'
    expect_output_has 'No public node of Ethereum gave what is needed'
    expect_output_has '"make demo" shows velisk with made-up figures'
    [ -s velisk.id ] || fail "the program shows what it remembers all the same"
}

aRelayThatDoesNotStartIsSaidAndTheProgramStarts() {
    run_programs
    write_program relay <<<$'#!/bin/sh\necho $$ >relay.id\necho "velisk-relay: localhost:8643: the port is taken" >&2\nexit 1'
    start_run
    expect_status 0
    expect_output_has 'the port is taken'
    expect_output_has 'if one is at work at localhost:8643 already, velisk asks that one'
    [ -s velisk.id ] || fail "the program did not start"
}

aRelayElsewhereIsNotStartedHere() {
    run_programs
    TORVANE_RUN_ADDRESS=relay.example.org start_run
    expect_status 0
    [ ! -e relay.id ] || fail "a relay was started"
    [ -s velisk.id ] || fail "the program did not start"
}

theProgramsStatusIsPassedOn() {
    run_programs
    write_program velisk <<<$'#!/bin/sh\necho $$ >velisk.id\nexit 7'
    start_run
    expect_status 7
}

whatIsNotBuiltIsSaid() {
    run_programs
    rm velisk
    start_run
    expect_status 1
    expect_output_has 'make run'
    [ ! -e relay.id ] || fail "the relay was started alone"
}

run_checks

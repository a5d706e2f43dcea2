#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# Both programs of the demo, played by scripts: each writes its process id, then what it was given.
demo_programs() {
    write_program stand-in <<'PROGRAM'
#!/bin/bash
echo "$$" >stand-in.id
echo "listening soon"
echo ready
exec tail -f /dev/null
PROGRAM
    write_program velisk <<'PROGRAM'
#!/bin/bash
env >velisk.environment
echo "$$" >velisk.id
exec tail -f /dev/null
PROGRAM
    # No word to the real session's bus.
    write_program bin/dbus-send <<'PROGRAM'
#!/bin/bash
echo "   boolean true"
PROGRAM
    export TORVANE_DEMO_STAND_IN=$PWD/stand-in TORVANE_DEMO_PROGRAM=$PWD/velisk TORVANE_DEMO_HOME=$PWD/home
    export DISPLAY=:99 PATH=$PWD/bin:$PATH
    unset WAYLAND_DISPLAY QT_QPA_PLATFORM
    trap end_leftovers EXIT
}

# A check that fails must not leave its programs running.
# shellcheck disable=SC2317 # Reached through the trap.
end_leftovers() {
    local file
    for file in *.id; do
        has_ended "$(cat "$file")" || kill -KILL "$(cat "$file")"
    done
}

start_demo() {
    "$@" "$tree/scripts/demo" >demo.output 2>&1 &
    demo=$!
    wait_for velisk_started_or_demo_ended
    [ -s velisk.id ] || fail "the demo ended before it started velisk: $(cat demo.output)"
}

velisk_started_or_demo_ended() {
    [ -s velisk.id ] || has_ended "$demo"
}

has_ended() {
    ! kill -0 "$1" 2>/dev/null
}

end_of_demo() {
    status=0
    wait "$demo" || status=$?
    cat demo.output
}

# Nothing of the demo is left: neither process, nor the pipe between them.
expect_nothing_left() {
    local file
    for file in stand-in.id velisk.id; do
        has_ended "$(cat "$file")" || fail "$file still runs"
    done
    [ -z "$(find home -name 'run-*')" ] || fail "left behind: $(find home -name 'run-*')"
}

theProgramStartsOnlyWhenTheRelayIsReady() {
    demo_programs
    mkfifo gate
    write_program stand-in <<'PROGRAM'
#!/bin/bash
echo "$$" >stand-in.id
read -r <gate
test -e velisk.id && touch too-early
echo ready
exec tail -f /dev/null
PROGRAM
    "$tree/scripts/demo" >demo.output 2>&1 &
    demo=$!
    wait_for test -s stand-in.id
    echo go >gate
    wait_for test -s velisk.id
    [ ! -e too-early ] || fail "velisk was started before the relay was ready"
    kill "$demo"
    end_of_demo
    expect_nothing_left
}

theDemoNeverTouchesTheUsersOwnFiles() {
    demo_programs
    start_demo
    kill "$demo"
    end_of_demo
    local line
    for line in "XDG_CONFIG_HOME=$PWD/home/config" "XDG_CACHE_HOME=$PWD/home/cache" "XDG_DATA_HOME=$PWD/home/share"; do
        grep -qxF "$line" velisk.environment || fail "velisk is not given $line"
    done
}

theDemoSaysWhatToLookFor() {
    demo_programs
    start_demo
    wait_for grep -q 'ends the demo' demo.output
    kill "$demo"
    end_of_demo
    grep -q 'its figures are made up' demo.output || fail "it does not say that the figures are made up"
    grep -q 'listening soon' demo.output || fail "the relay's words are not passed on"
    ! grep -q '^ready$' demo.output || fail "the signal between the programs is not for people"
    ! grep -q 'No panel' demo.output || fail "there is a panel"
}

quittingTheProgramEndsTheRelay() {
    demo_programs
    write_program velisk <<'PROGRAM'
#!/bin/bash
echo "$$" >velisk.id
PROGRAM
    start_demo
    end_of_demo
    expect_status 0
    expect_nothing_left
}

theProgramsFailureIsTheDemos() {
    demo_programs
    write_program velisk <<'PROGRAM'
#!/bin/bash
echo "$$" >velisk.id
exit 7
PROGRAM
    start_demo
    end_of_demo
    expect_status 7
    expect_nothing_left
}

theRelaysEndEndsTheProgram() {
    demo_programs
    start_demo
    kill "$(cat stand-in.id)"
    end_of_demo
    expect_status 1
    grep -q 'simulated relay ended' demo.output || fail "it does not say why it ended"
    expect_nothing_left
}

termEndsBoth() {
    demo_programs
    start_demo
    kill -TERM "$demo"
    end_of_demo
    expect_status 143
    expect_nothing_left
}

ctrlCEndsBoth() {
    demo_programs
    # A shell starts its background jobs with SIGINT ignored, unlike a terminal; env puts the default back.
    start_demo env --default-signal=INT
    kill -INT "$demo"
    end_of_demo
    expect_status 130
    expect_nothing_left
}

aProgramThatIgnoresTermIsEndedAllTheSame() {
    demo_programs
    write_program velisk <<'PROGRAM'
#!/bin/bash
trap '' TERM
echo "$$" >velisk.id
exec tail -f /dev/null
PROGRAM
    start_demo
    kill -TERM "$demo"
    end_of_demo
    expect_status 143
    expect_nothing_left
}

aRelayThatDoesNotStartIsSaid() {
    demo_programs
    write_program stand-in <<'PROGRAM'
#!/bin/bash
echo "cannot listen: the address is in use"
exit 1
PROGRAM
    run "$tree/scripts/demo"
    expect_status 1
    expect_output_has 'cannot listen: the address is in use'
    expect_output_has 'The simulated relay did not start'
    [ ! -e velisk.id ] || fail "velisk was started"
    [ -z "$(find home -name 'run-*')" ] || fail "the pipe is left behind"
}

withoutADesktopItSaysSoAndStartsNothing() {
    demo_programs
    unset DISPLAY
    run "$tree/scripts/demo"
    expect_status 1
    expect_output_has 'There is no desktop here'
    [ ! -e stand-in.id ] || fail "the relay was started"
}

aWaylandSessionIsADesktop() {
    demo_programs
    unset DISPLAY
    export WAYLAND_DISPLAY=wayland-0
    start_demo
    kill "$demo"
    end_of_demo
    expect_status 143
}

withoutAPanelItSaysSoAndGoesOn() {
    demo_programs
    write_program bin/dbus-send <<'PROGRAM'
#!/bin/bash
echo "   boolean false"
PROGRAM
    start_demo
    kill "$demo"
    end_of_demo
    grep -q 'No panel that shows status items' demo.output || fail "it does not say that there is no panel"
    grep -q "start .*velisk while the demo runs" demo.output || fail "it does not say how to open the window"
}

withoutABusItSaysSoAndGoesOn() {
    demo_programs
    write_program bin/dbus-send <<'PROGRAM'
#!/bin/bash
echo "Failed to open connection" >&2
exit 1
PROGRAM
    start_demo
    kill "$demo"
    end_of_demo
    grep -q 'No panel that shows status items' demo.output || fail "it does not say that there is no panel"
}

aProgramNotBuiltYetIsNamed() {
    demo_programs
    rm velisk
    run "$tree/scripts/demo"
    expect_status 1
    expect_output_has "$PWD/velisk is not there: \"make demo\" builds it."
    [ ! -e stand-in.id ] || fail "the relay was started"
}

run_checks

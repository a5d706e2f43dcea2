#!/usr/bin/env bash
# panels-exchanged.sh PROGRAM [ARGUMENT...]: the probe's badge goes from panel to panel, each with its own surface.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

program_shows_on() {
    [ "$(grep '^surface ' "$RIG/log/program" | tail -n 1)" = "surface $1" ]
}

# exchange PANEL SURFACE
exchange() {
    local -r before=$RIG_PANEL
    panel_stop TERM
    RIG_PANEL=$1
    panel_start
    program_wait "the surface in $1" program_shows_on "$2"
    if [ "$2" != window ]; then
        program_wait "the registration with $1" item_is_registered
    fi
    rig_pass "from $before to $1"
}

panel_start
program_start "$@"
program_wait "the first surface" program_shows_on window
exchange lxqt square
exchange mate wide
exchange trayer window
exchange ayatana label
exchange xfce window
program_is_running || rig_fail "the program ended"

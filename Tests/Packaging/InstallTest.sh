#!/usr/bin/env bash
. "$(dirname "$0")/home.sh"

uninstallingLeavesAllAsItWas() {
    home
    contents >before
    install_velisk
    ! contents | cmp --silent before || fail "nothing was installed"
    uninstall_velisk
    contents | diff before - || fail "it is not as it was"
    expect_output_has "Left, since it is yours: $HOME/.config/velisk"
}

anEmptyHomeIsEmptyAgain() {
    home
    rm -rf "$HOME"
    mkdir "$HOME"
    install_velisk
    uninstall_velisk
    [ -z "$(ls -A "$HOME")" ] || fail "left: $(find "$HOME")"
}

whatTheUserPutBesideStays() {
    home
    install_velisk
    echo theirs >"$HOME/.local/share/icons/hicolor/48x48/apps/editor.png"
    echo theirs >"$HOME/.local/share/velisk/relay.pem"
    uninstall_velisk
    [ "$(cat "$HOME/.local/share/icons/hicolor/48x48/apps/editor.png")" = theirs ] || fail "an icon is gone"
    [ "$(cat "$HOME/.local/share/velisk/relay.pem")" = theirs ] || fail "a certificate is gone"
    [ ! -e "$HOME/.local/share/icons/hicolor/64x64" ] || fail "an empty folder is left"
    expect_output_has "Left, since it is yours: $HOME/.local/share/velisk"
}

theRelayIsStartedNowAndAtEachLogin() {
    home
    install_velisk
    expect_output_has 'Its relay runs, now and from each login on'
    grep -qx -- '--user enable --quiet velisk-relay.service' calls || fail "it is not enabled"
    [ "$(tail -n 1 calls)" = '--user restart velisk-relay.service' ] || fail "it is not started, or not anew"
    [ -e "$HOME/.local/share/systemd/user/velisk-relay.service" ] || fail "systemd finds no unit"
}

uninstallingStopsTheRelayBeforeItIsGone() {
    home
    install_velisk
    write_program bin/systemctl <<'PROGRAM'
#!/bin/sh
echo "$*" >>"$CALLS"
case $2 in
disable) [ -e "$HOME/.local/bin/velisk-relay" ] ;;
esac
PROGRAM
    : >calls
    uninstall_velisk
    grep -qx -- '--user disable --quiet --now velisk-relay.service' calls || fail "it is not stopped"
    [ "$(tail -n 1 calls)" = '--user daemon-reload' ] || fail "systemd is not told"
    expect_output_lacks 'could not be stopped'
}

withoutSystemdItIsSaidHowTheRelayStarts() {
    home
    without_systemd
    install_velisk
    expect_output_has 'No systemd runs for you here, so its relay is not started'
    expect_output_has "    \"$HOME/.local/bin/velisk-relay\" --serve localhost:"
    uninstall_velisk
}

whereSystemdRefusesTheRelayThatIsSaid() {
    home
    write_program bin/systemctl <<<$'#!/bin/sh\n[ "$2" != enable ] || { echo "Unit file does not exist." >&2; exit 1; }'
    install_velisk
    expect_output_has 'Unit file does not exist.'
    expect_output_has "Your systemd does not take the relay's unit"
    expect_output_has "    \"$HOME/.local/bin/velisk-relay\" --serve localhost:"
    expect_output_lacks 'No systemd runs'
}

aLinkOfSystemdIsRemovedWhereSystemdIsNot() {
    local wants
    home
    install_velisk
    wants=$HOME/.config/systemd/user/default.target.wants
    mkdir "$wants"
    ln -s "$HOME/.local/share/systemd/user/velisk-relay.service" "$wants/"
    without_systemd
    uninstall_velisk
    [ ! -e "$HOME/.config/systemd" ] || fail "left: $(find "$HOME/.config/systemd")"
}

aSecondInstallationReplacesTheFirst() {
    home
    contents >before
    install_velisk
    contents >first
    # As if an earlier version had installed one file more, and another program.
    echo old >"$HOME/.local/bin/velisk-old"
    echo "$HOME/.local/bin/velisk-old" >>"$HOME/.local/share/velisk/installed"
    echo damaged >"$HOME/.local/bin/velisk"
    install_velisk
    contents | diff first - || fail "the second installation is another"
    uninstall_velisk
    contents | diff before - || fail "it is not as it was"
}

anInterruptedInstallationCanBeRemoved() {
    home
    contents >before
    # The disk is full after nine files.
    # shellcheck disable=SC2016
    write_program bin/cp <<<$'#!/bin/bash\necho >>"$CALLS.copied"; [ "$(wc -l <"$CALLS.copied")" -lt 10 ] && exec /bin/cp "$@"'
    run "$tree/scripts/install"
    [ "$status" != 0 ] || fail "a failure is lost"
    rm bin/cp
    uninstall_velisk
    contents | diff before - || fail "it is not as it was"
}

aProgramThatRunsKeepsItsFile() {
    home
    install_velisk
    expect_output_lacks 'that is still the one before'
    exec 3<"$HOME/.local/bin/velisk"
    install_velisk
    expect_output_has 'If it runs, that is still the one before: quit it and start it again.'
    [ "$(stat -L -c %h /proc/self/fd/3)" = 0 ] || fail "the file was written over"
    exec 3<&-
}

folderVariablesAreRespected() {
    home
    export XDG_DATA_HOME="$PWD/my data" XDG_CONFIG_HOME="$PWD/my config"
    install_velisk
    [ -x "$HOME/.local/bin/velisk" ] || fail "no program"
    [ -e "$XDG_DATA_HOME/applications/org.velisk.Torvane.desktop" ] || fail "no desktop entry"
    [ -e "$XDG_DATA_HOME/systemd/user/velisk-relay.service" ] || fail "no unit"
    [ ! -e "$HOME/.local/share/velisk" ] || fail "it is below the default folder too"
    uninstall_velisk
    [ ! -e "$XDG_DATA_HOME" ] || fail "left: $(find "$XDG_DATA_HOME")"
    [ ! -e "$XDG_CONFIG_HOME" ] || fail "left: $(find "$XDG_CONFIG_HOME")"
}

relativeFolderVariablesAreIgnored() {
    home
    export XDG_DATA_HOME=data
    install_velisk
    [ -e "$HOME/.local/share/applications/org.velisk.Torvane.desktop" ] || fail "no desktop entry"
    [ ! -e data ] || fail "a relative folder was taken"
    uninstall_velisk
}

aHomeThatDesktopEntriesCannotNameIsRefused() {
    home
    # shellcheck disable=SC2016
    mkdir 'costs $5'
    # shellcheck disable=SC2016
    export HOME="$PWD/costs \$5"
    run "$tree/scripts/install"
    expect_status 1
    expect_output_has 'nothing is installed'
    [ -z "$(ls -A "$HOME")" ] || fail "something is installed"
}

rootOnBehalfOfAnotherIsRefused() {
    home
    contents >before
    write_program bin/id <<<$'#!/bin/sh\necho 0'
    SUDO_USER=ann run "$tree/scripts/install"
    expect_status 1
    expect_output_has 'run it as ann, without sudo'
    contents | diff before - || fail "something is installed"
}

whatWouldBeRefusedIsSaidBeforeAnythingIsBuilt() {
    home
    contents >before
    mkdir none
    TORVANE_BUILD=$PWD/none run "$tree/scripts/install" --check
    expect_status 0
    expect_output ''
    contents | diff before - || fail "something is installed"
    HOME="$PWD/costs %5" run "$tree/scripts/install" --check
    expect_status 1
    run make --no-print-directory --dry-run --directory="$tree" install
    [ "$(head -n 1 <<<"$output")" = 'scripts/install --check' ] || fail "make builds before it asks"
}

withoutAHomeThatIsSaid() {
    HOME='' run "$tree/scripts/install"
    expect_status 1
    expect_output_has 'HOME: has to name your home'
}

whatIsNotInstalledCannotBeRemoved() {
    home
    contents >before
    run "$tree/scripts/uninstall"
    expect_status 1
    expect_output_has 'velisk is not installed for you'
    contents | diff before - || fail "something was removed"
}

whatIsNotBuiltIsSaid() {
    home
    mkdir none
    TORVANE_BUILD=$PWD/none run "$tree/scripts/install"
    expect_status 1
    expect_output_has 'make install'
}

run_checks

# shellcheck shell=bash
# For tests that install for one person: a home of the test's own, and a systemctl that says what it is asked.
. "$(dirname "${BASH_SOURCE[0]}")/../Scripts/checks.sh"

# home: a person's home, with blanks in its name and things of that person's own in it. systemd runs for this person.
home() {
    unset XDG_DATA_HOME XDG_CONFIG_HOME XDG_CACHE_HOME DBUS_SESSION_BUS_ADDRESS
    export HOME="$PWD/home of ann"
    mkdir -p "$HOME/.local/share/applications" "$HOME/.config/velisk" "$HOME/.local/bin"
    echo theirs >"$HOME/.local/share/applications/editor.desktop"
    echo '{}' >"$HOME/.config/velisk/preferences.json"
    write_program bin/systemctl <<'PROGRAM'
#!/bin/sh
echo "$*" >>"$CALLS"
PROGRAM
    export CALLS=$PWD/calls PATH=$PWD/bin:$PATH
    touch calls
}

without_systemd() {
    write_program bin/systemctl <<<$'#!/bin/sh\necho "Failed to connect to bus" >&2; exit 1'
}

# All files and folders of the home, and what is in the files.
contents() {
    (cd "$HOME" && find . -printf '%p %y %l\n' -type f -exec sha256sum {} +) | LC_ALL=C sort
}

install_velisk() {
    run "$tree/scripts/install"
    expect_status 0
}

uninstall_velisk() {
    run "$tree/scripts/uninstall"
    expect_status 0
}

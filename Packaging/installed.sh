# shellcheck shell=bash disable=SC2034
# What scripts/install and scripts/uninstall share: the folders of the XDG base directory specification, and the list of
# what was installed. The list has a line for each file, and for each folder that was made, these with a slash at the end.

# folder_of VALUE DEFAULT: XDG base directories are absolute: a relative path is ignored.
folder_of() {
    case $1 in
    /*) echo "$1" ;;
    *) echo "$2" ;;
    esac
}

: "${HOME:?has to name your home}"
data=$(folder_of "${XDG_DATA_HOME-}" "$HOME/.local/share")
config=$(folder_of "${XDG_CONFIG_HOME-}" "$HOME/.config")
cache=$(folder_of "${XDG_CACHE_HOME-}" "$HOME/.cache")
list=$data/velisk/installed
relay_unit=velisk-relay.service

# The desktop's files and systemd's quote such characters each in a way of its own, and clients get it wrong.
refuse_odd_folders() {
    local folder
    for folder in "$HOME" "$data" "$config"; do
        case $folder in
        *[\"\'\`\$\\%]* | *$'\n'*)
            echo "$folder has a character in its name that desktop entries cannot hold: nothing is installed." >&2
            exit 1
            ;;
        esac
    done
}

# Adds a line to the list, once. The list's own folder may have to be made first, and is noted when it can be.
noted=()
note() {
    noted+=("$1")
    [ -d "$(dirname "$list")" ] || return 0
    touch "$list"
    local line
    for line in "${noted[@]}"; do
        grep -qxF "$line" "$list" || echo "$line" >>"$list"
    done
    noted=()
}

# make_folder PATH: and what it lies in; all that were made are noted, the outermost first.
make_folder() {
    [ ! -d "$1" ] || return 0
    make_folder "$(dirname "$1")"
    mkdir "$1"
    note "$1/"
}

# remove_folder PATH: only when nothing else has come to lie in it.
remove_folder() {
    [ ! -d "$1" ] || rmdir --ignore-fail-on-non-empty "$1"
}

# Whether systemd runs for this person, in this session.
has_systemd() {
    command -v systemctl >/dev/null && systemctl --user show-environment >/dev/null 2>&1
}

# A desktop that is running looks at its folders again. None of these programs has to be here.
tell_desktop() {
    local icons=$data/icons/hicolor
    # A cache of icons that is older than its folder is not believed.
    [ ! -d "$icons" ] || touch "$icons"
    if [ -n "${DBUS_SESSION_BUS_ADDRESS-}" ] && command -v dbus-send >/dev/null; then
        dbus-send --session --dest=org.freedesktop.DBus --type=method_call / org.freedesktop.DBus.ReloadConfig ||
            echo "The session's bus hears of this at the next login only." >&2
    fi
}

# shellcheck shell=bash disable=SC2034
# A real notification daemon for scripts that have entered the rig: what it shows is written down and compared.

received=$RIG/received

# What the daemon shows it also hands to a script, which writes it down with the notification's number in front.
daemon_configure() {
    mkdir -p "$XDG_CONFIG_HOME/dunst"
    cat >"$XDG_CONFIG_HOME/dunst/dunstrc" <<CONFIGURATION
[global]
    font = DejaVu Sans 11
    width = 400
    idle_threshold = 0
[urgency_normal]
    timeout = 0
[write-down]
    summary = "*"
    script = $RIG/write-down
CONFIGURATION
    cat >"$RIG/write-down" <<SCRIPT
#!/bin/sh
printf '%s|%s|%s|%s|%s|%s\n' "\$DUNST_ID" "\$1" "\$2" "\$3" "\$5" "\$DUNST_DESKTOP_ENTRY" >>$received
SCRIPT
    chmod +x "$RIG/write-down"
}

daemon_is_up() {
    rig_has_name org.freedesktop.Notifications
}

# Sets `daemon` to the process.
daemon_start() {
    dunst >"$RIG/log/daemon" 2>&1 9>&- &
    daemon=$!
    rig_wait "the daemon" daemon_is_up
}

received_are() {
    [ -e "$received" ] && [ "$(wc -l <"$received")" -ge "$1" ]
}

# received_expect LINE...: exactly these, in the order of their numbers.
received_expect() {
    program_wait "$# notifications" received_are $#
    diff <(printf '%s\n' "$@") <(sort -n "$received" | cut -d '|' -f 2-) || rig_fail "this is not what was announced"
    rm "$received"
}

announced() {
    echo "velisk|Gas is cheap|Base fee dropped to $1 gwei (below $2). Good window to transact.|NORMAL|org.velisk.Torvane"
}

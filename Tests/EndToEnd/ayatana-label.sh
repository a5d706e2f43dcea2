#!/usr/bin/env bash
# ayatana-label.sh PROGRAM [ARGUMENT...]: what Ayatana's service hands on of the probe's badge to the panels that show it.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"

applications() {
    gdbus call --session --dest org.ayatana.indicator.application --object-path /org/ayatana/indicator/application/service \
        --method org.ayatana.indicator.application.service.GetApplications
}

# label_is TEXT GUIDE
label_is() {
    applications | grep -qF "'$1', '$2'"
}

panel_start
program_start "$@"
program_wait "the label" label_is 12.3 00.0
rig_pass "the service hands on the figure: $(applications)"

icon=$(applications | grep -o 'velisk-[0-9]*-[0-9a-f]*-symbolic' | head -n 1) || rig_fail "the icon has no name"
[ -f "$XDG_RUNTIME_DIR/velisk/icons/$icon.svg" ] || rig_fail "there is no file for the icon $icon"
rsvg-convert --width 22 "$XDG_RUNTIME_DIR/velisk/icons/$icon.svg" >"$RIG/icon.png" || rig_fail "the icon is no picture"
rig_pass "the icon is a picture by its name"

menu_choose "$(find_item)" "Refresh Now"
program_wait "the other label" label_is 148 000
rig_pass "the service follows the figure"

panel_stop KILL
panel_start
program_wait "the label in the new service" label_is 148 000
rig_pass "the label comes back with the service"

#!/usr/bin/env bash
# update.sh OLD NEW CRASHING RELAY ANCHOR PORT KEY PUBLISH: the older program becomes the newer one, by its own windows
# and a click at a time, and stays what it is where that goes wrong. CRASHING is a newer one that ends when it starts. KEY
# signs what PUBLISH, the publisher's script, writes into the feed; the relay is the stand-in, its certificate in ANCHOR.
#
# SHOTS             a folder that keeps the pictures
: "${RIG_PANEL:=mate}" # Its items can be read by others.
: "${RIG_LIMIT:=120}"  # Programs of forty megabytes are signed, fetched and verified here.
source "$(dirname "$0")/rig.sh"
rig_enter "$@"
source "$(dirname "$0")/relay.sh"
old=$1 new=$2 crashing=$3 relay_under_test=$4 anchor=$5 port=$6 key=$7 publish_update=$8
site=$RIG/site
programs=$RIG/home/programs
installed=$programs/velisk
stored=$RIG/config/velisk/preferences.json
id=org.velisk.Torvane.Demo
export QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1

keep() {
    [ -z "${SHOTS:-}" ] || import -window root "$SHOTS/$1"
}

# says TITLE TEXT: whether some part of the window has this text.
says() {
    shows "$1" -F "$2"
}

# shows TITLE MODE PATTERN: the same for one of grep's modes. All is read: an early end would fail the writer.
shows() {
    "$rig_source/read-window" "$1" 2>/dev/null | grep "$2" -- "$3" >/dev/null
}

update_says() {
    says "velisk Update" "$1"
}

update_has_button() {
    shows "velisk Update" -E "button \"$1\"\$"
}

# press TITLE NAME: a click upon the button.
press() {
    local box
    box=$("$rig_source/read-window" "$1" where "$2") || rig_fail "there is no '$2' in '$1'"
    click 1 "$box"
}

# page HEADLINE PICTURE: waits for this page of the update's window.
page() {
    program_wait "the page '$1'" update_says "panel \"$1\""
    keep "$2"
}

update_is_gone() {
    ! xdotool search --onlyvisible --name '^velisk Update$' >/dev/null 2>&1
}

# publish PROGRAM: as the feed's only item.
publish() {
    rm -rf "$site"
    mkdir "$site"
    cp "$1" "$site/velisk-0.3.1"
    printf 'The badge keeps its place in the panel.\n\n<b>Markup</b> & more stands as it is.\n' >"$RIG/notes"
    "$publish_update" add --key "$key" --public-key "$("$publish_update" public-key "$key")" --notes "$RIG/notes" \
        --url "https://localhost:$port/torvane/velisk-0.3.1" "$site/appcast.xml" "$site/velisk-0.3.1" \
        >"$RIG/log/publish" 2>&1 ||
        rig_fail "it cannot be published: $(cat "$RIG/log/publish")"
    relay_order "publish $site"
}

# install PROGRAM: where its user keeps programs.
install() {
    rm -rf "$programs"
    mkdir -p "$programs"
    cp "$1" "$installed"
}

only_the_program_is_there() {
    [ "$(ls -A "$programs")" = velisk ]
}

# The window of another program, in which its user is at work.
other_is_active() {
    [ "$(xdotool getactivewindow 2>/dev/null)" = "$(xdotool search --onlyvisible --name '^xmessage$' 2>/dev/null)" ]
}

only_one_badge_is_there() {
    [ "$(registered_items | wc -l)" = 1 ]
}

is_still_old() {
    cmp -s "$old" "$installed"
}

# The process that has the application's name.
owner() {
    gdbus call --session --dest org.freedesktop.DBus --object-path / \
        --method org.freedesktop.DBus.GetConnectionUnixProcessID "$id" 2>/dev/null | grep -o 'uint32 [0-9]*' | cut -d ' ' -f 2
}

start() {
    program_start "$1"
    program_wait "the badge" item_is_registered
}

quit() {
    menu_choose "$(find_item)" "Quit velisk"
}

can_check() {
    shows "velisk Preferences" -E 'button "Check for Updates…"$'
}

open_about() {
    menu_choose "$(find_item)" "Preferences…"
    rig_wait "the preferences" says "velisk Preferences" 'page tab "About"'
    press "velisk Preferences" About
    rig_wait "the About panel" says "velisk Preferences" "Check for Updates…"
}

check_for_updates() {
    program_wait "a check to be possible" can_check
    press "velisk Preferences" "Check for Updates…"
}

is_switched_off() {
    says "velisk Preferences" 'check box "Automatically check for updates"' &&
        ! says "velisk Preferences" 'check box "Automatically check for updates" checked'
}

panel_start
relay_start

# Nothing is published yet: a check that the program makes by itself finds nothing and is not seen.
install "$old"
start "$installed"
open_about
says "velisk Preferences" "Version 0.3.0" || rig_fail "the panel names another version"
program_wait "a check to be possible" can_check
keep about.png
press "velisk Preferences" "Automatically check for updates"
program_wait "the stored switch" grep -qs '"automaticallyChecksForUpdates": *false' "$stored"
quit
program_wait_end
start "$installed"
open_about
program_wait "the switch to be off" is_switched_off
rig_pass "the switch is kept over a restart"

check_for_updates
page "velisk could not be updated" failed-feed.png
xdotool key Escape
program_wait "the window to close" update_is_gone
program_wait "a check to be possible" can_check
rig_pass "a check by hand that fails says so"
quit
program_wait_end

publish "$new"
mkdir "$RIG/home/fixed"
cp "$old" "$RIG/home/fixed/velisk"
chmod a-w "$RIG/home/fixed"
mv "$stored" "$RIG/kept.json"
xmessage -geometry 900x640+60+60 "Another program" >"$RIG/log/other" 2>&1 &
other=$!
rig_wait "the other window" xdotool search --onlyvisible --name '^xmessage$' >/dev/null
xdotool mousemove 500 600 click 1
rig_wait "the other window in front" other_is_active
start "$RIG/home/fixed/velisk"
page "velisk 0.3.1 is available" by-itself.png
other_is_active || rig_fail "it takes the keyboard from whoever is at work"
press "velisk Update" Close
program_wait "the window to close" update_is_gone
kill "$other"
rig_pass "a program that has never checked does so by itself, and shows what it found without taking the keyboard"

open_about
check_for_updates
page "velisk 0.3.1 is available" obstacle.png
update_says "the folder of this copy cannot be written" || rig_fail "it does not say why it cannot be replaced"
! update_has_button "Install Update" || rig_fail "it offers what it cannot do"
press "velisk Update" Close
program_wait "the window to close" update_is_gone
quit
program_wait_end
chmod u+w "$RIG/home/fixed"
mv "$RIG/kept.json" "$stored"
rig_pass "a copy in a folder that cannot be written says which version there is, and offers nothing"

start "$installed"
open_about
check_for_updates
page "velisk 0.3.1 is available" found.png
update_says "You have 0.3.0." || rig_fail "it does not name the running version"
relay_order "updates drip"
press "velisk Update" "Install Update"
page "Downloading velisk 0.3.1" downloading.png
xdotool key Escape
program_wait "the window to close" update_is_gone
relay_order "updates normal"
rig_wait "the left-overs to go" only_the_program_is_there
rig_pass "a download can be broken off, and leaves nothing behind"

printf 'x' | dd of="$site/velisk-0.3.1" bs=1 seek=4096 conv=notrunc status=none
check_for_updates
page "velisk 0.3.1 is available" found-again.png
xdotool key Return
page "velisk could not be updated" failed-signature.png
update_says signature || rig_fail "it does not say that the signature is wrong"
press "velisk Update" Close
program_wait "the window to close" update_is_gone
is_still_old || rig_fail "the program was replaced"
rig_wait "the left-overs to go" only_the_program_is_there
rig_pass "what its maker has not signed is refused"

publish "$crashing"
check_for_updates
page "velisk 0.3.1 is available" found-crashing.png
press "velisk Update" "Install Update"
page "velisk 0.3.1 is ready to install" ready-crashing.png
press "velisk Update" "Install and Relaunch"
page "velisk could not be updated" failed-start.png
update_says "did not start" || rig_fail "it does not say that the new version did not start"
press "velisk Update" Close
program_wait "the window to close" update_is_gone
[ "$(owner)" = "$program" ] || rig_fail "the name belongs to another process"
is_still_old || rig_fail "the old file is not back"
rig_wait "the left-overs to go" only_the_program_is_there
program_wait "the badge" item_is_registered
rig_pass "a new version that does not come up gives way to the old one, which has never ended"

publish "$new"
check_for_updates
page "velisk 0.3.1 is available" found-last.png
press "velisk Update" "Install Update"
page "velisk 0.3.1 is ready to install" ready.png
is_still_old || rig_fail "it was installed unasked"
press "velisk Update" "Install and Relaunch"
program_wait_end

successor_is_there() {
    successor=$(owner) && [ "$(readlink "/proc/$successor/exe")" = "$installed" ]
}
rig_wait "the new version" successor_is_there
cmp -s "$new" "$installed" || rig_fail "something else was installed"
[ "$(stat --format=%a "$installed")" = "$(stat --format=%a "$new")" ] || rig_fail "its mode is another"
[ "$(DISPLAY='' "$installed" --version)" = "velisk 0.3.1" ] || rig_fail "it calls itself $("$installed" --version)"
rig_wait "the badge" item_is_registered
rig_wait "the old badge to go" only_one_badge_is_there
rig_wait "the left-overs to go" only_the_program_is_there
program=$successor # Not a child of this script, but a process all the same.
keep updated.png
rig_pass "the new version runs in the old one's place"

open_about
rig_wait "the new version's name" says "velisk Preferences" "Version 0.3.1"
rig_wait "the switch to be off" is_switched_off
check_for_updates
page "velisk is up to date" up-to-date.png
xdotool key Escape
program_wait "the window to close" update_is_gone
keep about-updated.png
quit
rig_wait "its end" rig_not rig_is_running "$successor"
rig_pass "it keeps the settings, and knows that there is nothing newer"

if grep -E 'Sanitizer|runtime error|^QObject|^qt\.|Warning' "$RIG/log/program"; then
    rig_fail "it complained"
fi

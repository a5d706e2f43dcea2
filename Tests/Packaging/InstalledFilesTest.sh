#!/usr/bin/env bash
. "$(dirname "$0")/home.sh"

installed() {
    home
    install_velisk
    share=$HOME/.local/share
}

# command_of FILE KEY: leaves the program that the file's line names in $command.
command_of() {
    local line
    line=$(sed -n "s/^$2=//p" "$1")
    eval "set -- $line"
    command=$1
}

theDesktopEntryIsValid() {
    installed
    run desktop-file-validate "$share/applications/org.velisk.Torvane.desktop"
    expect_status 0
    expect_output ''
}

theMetadataAreValid() {
    installed
    run appstreamcli validate --no-net --strict "$share/metainfo/org.velisk.Torvane.metainfo.xml"
    expect_status 0
    expect_output_has 'Validation was successful'
}

whatTheMetadataPromiseIsInstalled() {
    local metadata name
    installed
    metadata=$share/metainfo/org.velisk.Torvane.metainfo.xml
    name=$(sed -n 's,.*<launchable type="desktop-id">\(.*\)</launchable>,\1,p' "$metadata")
    [ -e "$share/applications/$name" ] || fail "there is no $name"
    name=$(sed -n 's,.*<binary>\(.*\)</binary>,\1,p' "$metadata")
    [ -x "$HOME/.local/bin/$name" ] || fail "there is no program $name"
    name=$(sed -n 's,.*<dbus type="session">\(.*\)</dbus>,\1,p' "$metadata")
    grep -qx "Name=$name" "$share/dbus-1/services/$name.service" || fail "the bus has no $name"
    [ "$(grep -c '<image>https://' "$metadata")" -gt 0 ] || fail "there is no picture"
}

whatStartsProgramsStartsTheInstalledOnes() {
    local id=org.velisk.Torvane
    installed
    command_of "$share/applications/$id.desktop" Exec
    [ "$command" = "$HOME/.local/bin/velisk" ] || fail "the desktop starts $command"
    command_of "$share/dbus-1/services/$id.service" Exec
    [ "$command" = "$HOME/.local/bin/velisk" ] || fail "the bus starts $command"
    run "$command" --version
    expect_status 0
    command_of "$share/systemd/user/velisk-relay.service" ExecStart
    [ "$command" = "$HOME/.local/bin/velisk-relay" ] || fail "systemd starts $command"
    run "$command" --version
    expect_status 0
}

theUnitIsValid() {
    installed
    mkdir run
    # The pages of the manual are looked for as well.
    MANPATH=$share/man XDG_RUNTIME_DIR=$PWD/run run systemd-analyze verify --user "$share/systemd/user/velisk-relay.service"
    expect_status 0
    expect_output_lacks velisk
}

theIconIsThereInEverySizeThatThemesHave() {
    local size
    installed
    for size in 16 22 24 32 48 64 96 128 256 512; do
        run identify -format '%m %wx%h' "$share/icons/hicolor/${size}x$size/apps/org.velisk.Torvane.png"
        expect_output "PNG ${size}x$size"
    done
    run rsvg-convert --output scalable.png "$share/icons/hicolor/scalable/apps/org.velisk.Torvane.svg"
    expect_status 0
    run rsvg-convert --output symbolic.png "$share/icons/hicolor/symbolic/apps/org.velisk.Torvane-symbolic.svg"
    expect_status 0
}

theManualsAreWithoutFault() {
    local page
    installed
    for page in velisk velisk-relay; do
        zcat "$share/man/man1/$page.1.gz" >$page.1
        run man --warnings --local-file $page.1
        expect_status 0
        expect_output_has "$page"
        man --warnings --local-file $page.1 2>faults >page.txt
        [ ! -s faults ] || fail "$page: $(cat faults)"
        expect_output_lacks '@'
        run mandoc -T lint -W warning $page.1
        expect_status 0
    done
}

# The manual and --help name the same options.
theManualsNameEveryOption() {
    local page
    installed
    for page in velisk velisk-relay; do
        "$HOME/.local/bin/$page" --help | grep -oE -- '--[a-z-]+' | sort -u >options
        [ -s options ] || fail "$page has no options"
        # The options described, not those that belong to other programs' lines.
        zcat "$share/man/man1/$page.1.gz" | grep -E '^\.It Fl' | grep -oE -- '-[a-z]+-?[a-z]+' | sed 's/^/-/' | sort -u >described
        diff options described || fail "$page: the manual and --help differ"
    done
}

theReleaseHasOneDateEverywhere() {
    local metadata changelog
    metadata=$(sed -n 's/.*<release version="[^"]*" date="\([^"]*\)".*/\1/p' "$tree/Packaging/org.velisk.Torvane.metainfo.xml.in")
    changelog=$(sed -n 's/^ -- .*  //p' "$tree/Packaging/deb/changelog.in")
    [ "$(head -n 1 <<<"$metadata")" = "$(date --utc --date "$(head -n 1 <<<"$changelog")" +%F)" ] ||
        fail "the metadata say $metadata, the package's changes $changelog"
}

theArchiveIsOneProgramThatSaysWhatItNeeds() {
    run cmake --install "$TORVANE_BUILD" --prefix "$PWD/archive" --component tarball
    expect_status 0
    [ "$(ls -m archive)" = 'LICENSE, README, velisk' ] || fail "it holds $(ls -m archive)"
    grep -qE 'glibc 2\.[0-9]+, libstdc\+\+ with GLIBCXX_3\.4\.[0-9]+, Qt 6\.[0-9]+ ' archive/README || fail "$(cat archive/README)"
    grep -q 'libcurl.so.4' archive/README || fail "a library that is loaded later is not named"
    ! grep '@[A-Za-z_]*@' archive/README || fail "a place is not filled"
    run archive/velisk --version
    expect_status 0
}

run_checks

#!/usr/bin/env bash
. "$(dirname "$0")/../Scripts/checks.sh"

# debian: Debian's helpers, which say what they are asked; $1 tells whether the administrator left the relay enabled.
debian() {
    write_program bin/deb-systemd-helper <<PROGRAM
#!/bin/sh
echo "\$*" >>calls
case "\$*" in
*was-enabled*) $1 ;;
esac
PROGRAM
    write_program bin/deb-systemd-invoke <<<$'#!/bin/sh\necho "invoke $*" >>calls'
    export PATH=$PWD/bin:$PATH
    touch calls
}

theRelayIsEnabledWhenThePackageComes() {
    debian true
    run sh "$tree/Packaging/deb/postinst" configure
    expect_status 0
    grep -qx -- '--user enable velisk-relay.service' calls || fail "it was asked: $(cat calls)"
}

whatTheAdministratorDisabledStaysSo() {
    debian false
    run sh "$tree/Packaging/deb/postinst" configure 0.2.0-0velisk1
    expect_status 0
    ! grep -q ' enable ' calls || fail "it was asked: $(cat calls)"
    grep -qx -- '--user update-state velisk-relay.service' calls || fail "it was asked: $(cat calls)"
}

anUpgradeStopsNothing() {
    debian true
    run sh "$tree/Packaging/deb/prerm" upgrade 0.4.0-0velisk1
    expect_status 0
    run sh "$tree/Packaging/deb/postrm" upgrade 0.4.0-0velisk1
    expect_status 0
    [ ! -s calls ] || fail "it was asked: $(cat calls)"
}

aRemovalKeepsWhetherTheRelayIsEnabledAndAPurgeDoesNot() {
    debian true
    run sh "$tree/Packaging/deb/postrm" remove
    expect_status 0
    [ ! -s calls ] || fail "it was asked: $(cat calls)"
    run sh "$tree/Packaging/deb/postrm" purge
    expect_status 0
    [ "$(cat calls)" = '--user purge velisk-relay.service' ] || fail "it was asked: $(cat calls)"
}

aHelperThatFailsDoesNotStopThePackage() {
    debian true
    # As where /etc cannot be written.
    write_program bin/deb-systemd-helper <<<$'#!/bin/sh\necho "$*" >>calls\nexit 1'
    run sh "$tree/Packaging/deb/postinst" configure
    expect_status 0
    run sh "$tree/Packaging/deb/postrm" purge
    expect_status 0
    [ -s calls ] || fail "nothing was tried"
}

run_checks

#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# A machine of our own: these programs and the few tools of every system are all there is on PATH. What is installed
# stands in the file "installed"; every call of apt-get goes to the file "calls".
machine() {
    local tool
    mkdir -p bin
    for tool in bash env cat tr awk grep sed dirname; do
        ln -s "$(command -v "$tool")" bin/
    done
    touch installed calls
    write_program bin/id <<<$'#!/bin/sh\necho '"$1"
    write_program bin/dpkg-query <<'PROGRAM'
#!/bin/bash
status=0
for package in "$@"; do
    case $package in
    -*) ;;
    *' '*) ;;
    *)
        if grep -qx "$package" installed; then
            echo "installed $package"
        elif grep -qx "$package removed" installed; then
            echo "config-files $package"
        else
            echo "dpkg-query: no packages found matching $package" >&2
            status=1
        fi
        ;;
    esac
done
exit "$status"
PROGRAM
    fake_apt
}

fake_apt() {
    write_program bin/apt-get <<'PROGRAM'
#!/bin/bash
echo "${DEBIAN_FRONTEND:-} apt-get $*" >>calls
case " $* " in
*" update "*) [ ! -e update-fails ] ;;
*" install "*) [ ! -e install-fails ] ;;
esac
PROGRAM
}

with_sudo() {
    write_program bin/sudo <<'PROGRAM'
#!/bin/bash
echo "sudo $1" >>calls
exec "$@"
PROGRAM
}

with_systemd() {
    write_program bin/systemctl <<'PROGRAM'
#!/bin/bash
echo "systemctl $*" >>calls
PROGRAM
}

install_dependencies() {
    PATH=$PWD/bin run "$tree/scripts/install-dependencies" "$@"
    echo "-- calls:"
    cat calls
}

# The packages of a group, as the script names them where there is no apt.
packages_of_group() {
    (
        rm -f bin/apt-get
        PATH=$PWD/bin "$tree/scripts/install-dependencies" "$1" | sed 's/.*: //' | tr ' ' '\n'
    )
}

everything_installed_but() {
    packages_of_group develop | grep -vxF "$1" >installed
    fake_apt
}

nothingMissingIsSilentAndCallsNothing() {
    machine 1000
    everything_installed_but none
    local group
    for group in run demo test bench fuzz valgrind coverage format develop; do
        install_dependencies "$group"
        expect_status 0
        expect_output ''
    done
    [ ! -s calls ] || fail "apt-get was called"
}

rootInstallsWhatIsMissingAndOnlyThat() {
    machine 0
    everything_installed_but cmake
    install_dependencies run
    expect_status 0
    expect_output_has 'Installing what is missing: cmake'
    [ "$(grep -c update calls)" = 1 ] || fail "the lists are to be updated once"
    grep -q '^noninteractive apt-get .*install .*--no-install-recommends .* cmake$' calls || fail "cmake alone is to be installed"
}

aPackageRemovedButConfiguredIsMissing() {
    machine 0
    everything_installed_but cmake
    echo 'cmake removed' >>installed
    install_dependencies run
    expect_status 0
    grep -q ' cmake$' calls || fail "cmake is to be installed"
}

aUserInstallsThroughSudo() {
    machine 1000
    with_sudo
    everything_installed_but ninja-build
    install_dependencies test
    expect_status 0
    grep -q '^sudo apt-get$' calls || fail "update does not go through sudo"
    grep -q '^sudo env$' calls || fail "install does not go through sudo"
    grep -q ' ninja-build$' calls || fail "ninja-build is to be installed"
}

rootNeedsNoSudo() {
    machine 0
    with_sudo
    everything_installed_but ninja-build
    install_dependencies run
    expect_status 0
    ! grep -q sudo calls || fail "root calls sudo"
}

aUserWithoutSudoIsToldWhatToType() {
    machine 1000
    everything_installed_but xvfb
    install_dependencies test
    expect_status 1
    expect_output_has 'takes root or sudo'
    expect_output_has '    apt-get install --no-install-recommends xvfb'
    expect_output_has 'INSTALL_DEPENDENCIES=:'
    [ ! -s calls ] || fail "apt-get was called"
}

aRefusedInstallSaysWhatToType() {
    machine 1000
    with_sudo
    everything_installed_but xvfb
    touch install-fails
    install_dependencies test
    expect_status 1
    expect_output_has 'could not be installed'
    expect_output_has '    apt-get install --no-install-recommends xvfb'
}

aFailedUpdateIsSaidAndTheInstallTried() {
    machine 0
    everything_installed_but xvfb
    touch update-fails
    install_dependencies test
    expect_status 0
    expect_output_has 'could not all be brought up to date'
    grep -q ' xvfb$' calls || fail "xvfb is to be installed"
}

aSystemWithoutAptIsToldInOneLineAndGoesOn() {
    machine 1000
    rm bin/apt-get
    install_dependencies run
    expect_status 0
    [ "$(wc -l <<<"$output")" = 1 ] || fail "one line is enough"
    expect_output_has 'g++ cmake ninja-build'
}

aSystemWithAptButWithoutDpkgIsNotOurs() {
    machine 0
    rm bin/dpkg-query
    install_dependencies run
    expect_status 0
    expect_output_has 'No apt here'
    [ ! -s calls ] || fail "apt-get was called"
}

severalGroupsAreInstalledAtOnce() {
    machine 0
    everything_installed_but none
    grep -vx -e clang -e xvfb installed >fewer
    mv fewer installed
    install_dependencies test fuzz
    expect_status 0
    grep -q ' xvfb clang$' calls || fail "both are to be installed in one call"
}

theServiceOfAnNginxThatWeInstallIsTurnedOff() {
    machine 1000
    with_sudo
    with_systemd
    everything_installed_but nginx-light
    install_dependencies bench
    expect_status 0
    [ "$(tail -n 1 calls)" = 'systemctl disable --now nginx.service' ] || fail "nginx is left to serve port 80"
}

theServiceOfAnNginxThatWasHereIsLeftAlone() {
    machine 0
    with_systemd
    everything_installed_but nginx-light
    echo nginx-common >>installed
    install_dependencies bench
    expect_status 0
    ! grep -q systemctl calls || fail "somebody's web server was turned off"
}

noServiceIsTouchedWithoutNginx() {
    machine 0
    with_systemd
    everything_installed_but xvfb
    install_dependencies test
    expect_status 0
    ! grep -q systemctl calls || fail "a service was touched"
}

npmIsInstalledForTestsAndBenchmarksWhereThereIsNone() {
    machine 0
    everything_installed_but npm
    install_dependencies run demo fuzz format
    expect_output ''
    local group
    for group in test bench; do
        : >calls
        install_dependencies "$group"
        expect_status 0
        grep -q -- ' npm$' calls || fail "npm is to be installed for $group"
    done
}

anNpmThatIsOnThePathIsEnough() {
    machine 0
    everything_installed_but npm
    write_program bin/npm <<<'#!/bin/sh'
    install_dependencies test
    expect_status 0
    [ ! -s calls ] || fail "apt-get was called"
}

noPackageIsNamedTwice() {
    machine 0
    [ -z "$(packages_of_group develop | sort | uniq -d)" ] || fail "$(packages_of_group develop | sort | uniq -d)"
}

anUnknownGroupIsAnError() {
    machine 0
    install_dependencies run everything
    expect_status 2
    expect_output_has 'there is no group "everything"'
    [ ! -s calls ] || fail "apt-get was called"
}

withoutAGroupTheUseIsShown() {
    machine 0
    install_dependencies
    expect_status 2
    expect_output_has 'Use: scripts/install-dependencies GROUP...'
}

run_checks

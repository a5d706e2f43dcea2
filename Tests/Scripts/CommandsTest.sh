#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# This make is not a part of the make that may have started the tests.
unset MAKEFLAGS MAKELEVEL MFLAGS INSTALL_DEPENDENCIES

goals() {
    sed -n 's/^\.PHONY: //p' "$tree/Makefile" | tr ' ' '\n'
}

makeAloneShowsTheList() {
    run make -C "$tree"
    expect_status 0
    expect_output_has 'make GOAL, where GOAL is one of'
}

helpListsEveryGoalWithWhatItDoes() {
    local goal
    run make -C "$tree" help
    for goal in run demo install uninstall package test soak bench fuzz tsan valgrind coverage screenshots format check clean help; do
        grep -qx "$goal" <<<"$(goals)" || fail "$goal is no goal"
    done
    for goal in $(goals); do
        grep -qE "^  $goal +[a-z].{10,}" <<<"$output" || fail "the list lacks $goal"
    done
}

everyGoalThatBuildsInstallsWhatItNeedsFirst() {
    local goal
    for goal in run demo install package test soak bench fuzz tsan valgrind coverage screenshots format; do
        run make --no-print-directory -n -C "$tree" "$goal"
        expect_status 0
        [[ $output == scripts/install-dependencies\ * ]] ||
            fail "$goal does not begin by installing what it needs"
    done
}

theGroupsThatTheGoalsInstallExist() {
    local group
    mkdir empty
    ln -s "$(command -v bash)" "$(command -v tr)" "$(command -v awk)" empty/
    sed -n 's/.*(INSTALL_DEPENDENCIES) \([a-z]*\)$/\1/p' "$tree/Makefile" >groups
    [ -s groups ] || fail "no goal installs anything"
    while read -r group; do
        # Without apt it names the group's packages, and fails where there is no such group.
        PATH=$PWD/empty run "$tree/scripts/install-dependencies" "$group"
        expect_status 0
        expect_output_has "by Debian's names: "
    done <groups
}

installingCanBeLeftOut() {
    run make -n -C "$tree" INSTALL_DEPENDENCIES=: test
    expect_status 0
    expect_output_lacks install-dependencies
    expect_output_has scripts/check
}

theIntegrationServerRunsMakeTestAndNothingElse() {
    local commands
    commands=$(grep -v -e '^#' -e '^$' "$tree/.ci/run")
    # shellcheck disable=SC2016
    [ "$commands" = 'cd "$(dirname "$0")/.." && exec make test' ] || fail ".ci/run runs: $commands"
}

theIntegrationServerPassesTheExitStatusOn() {
    mkdir -p copy/.ci
    cp "$tree/.ci/run" copy/.ci/
    # shellcheck disable=SC2016
    printf 'test:\n\t@echo ran "$(notdir $(CURDIR))"; exit 3\n' >copy/Makefile
    run bash copy/.ci/run
    [ "$status" != 0 ] || fail "a failure is lost"
    expect_output_has 'ran copy'
    printf 'test:\n\t@echo fine\n' >copy/Makefile
    run bash copy/.ci/run
    expect_status 0
    expect_output fine
}

everyScriptShowsItsUse() {
    local script
    for script in "$tree"/scripts/*; do
        [ -f "$script" ] || continue # What they share.
        run "$script" --help
        expect_status 0
        expect_output_has "Use: scripts/${script##*/}"
    done
}

shellcheckHasNothingToSay() {
    local scripts
    cd "$tree"
    mapfile -t scripts < <(grep -rlE '^#!.*sh$|^# shellcheck shell=' .ci scripts Packaging Sources Tests)
    [ ${#scripts[@]} -gt 10 ] || fail "there are more scripts than these: ${scripts[*]}"
    run shellcheck --external-sources --source-path=SCRIPTDIR "${scripts[@]}"
    expect_output ''
    expect_status 0
}

checkDoesTheStepsAskedForAlone() {
    # A tree of its own, whose steps only say that they ran.
    mkdir -p copy/scripts bin
    cp "$tree/scripts/check" copy/scripts/
    local step
    for step in check-format check-layers; do
        write_program "copy/scripts/$step" <<<"#!/bin/sh
echo $step"
    done
    write_program bin/cmake <<<$'#!/bin/sh\necho cmake "$*"'
    write_program bin/ctest <<<$'#!/bin/sh\necho ctest "$*"'
    export PATH=$PWD/bin:$PATH
    run copy/scripts/check layers tests
    expect_output $'check-layers\nctest --preset debug'
    run copy/scripts/check
    expect_output $'check-format\ncheck-layers\ncmake --preset debug\ncmake --build --preset debug\nctest --preset debug'
    write_program copy/scripts/check-layers <<<$'#!/bin/sh\nexit 1'
    run copy/scripts/check
    expect_status 1
    expect_output 'check-format'
    run copy/scripts/check layout
    expect_status 2
}

aFileOfAnotherLayoutIsFound() {
    mkdir -p copy/Sources
    cp "$tree/.clang-format" copy/
    printf 'int   x;\n' >copy/Sources/Bad.cpp
    run "$tree/scripts/check-format" copy
    [ "$status" != 0 ] || fail "the layout passed"
    expect_output_has 'Bad.cpp:1:4: error'
    run "$tree/scripts/check-format" --fix copy
    expect_status 0
    [ "$(cat copy/Sources/Bad.cpp)" = 'int x;' ] || fail "it was not mended"
    run "$tree/scripts/check-format" copy
    expect_status 0
    expect_output ''
}

anotherVersionOfTheFormatterNeitherComplainsNorRewrites() {
    mkdir -p copy/Sources bin
    printf 'int   x;\n' >copy/Sources/Bad.cpp
    write_program bin/clang-format-14 <<<$'#!/bin/sh\necho clang-format version 19.1.7'
    export PATH=$PWD/bin:$PATH
    run "$tree/scripts/check-format" copy
    expect_status 0
    expect_output_has 'here is clang-format version 19.1.7'
    run "$tree/scripts/check-format" --fix copy
    expect_status 1
    [ "$(cat copy/Sources/Bad.cpp)" = 'int   x;' ] || fail "it was rewritten"
}

run_checks

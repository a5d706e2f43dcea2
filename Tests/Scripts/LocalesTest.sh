#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# LOCPATH is the build tree's, as every test gets it. A locale that cannot be found would be the C locale, silently.

germanWritesAComma() {
    local name
    for name in de_DE de_DE.UTF-8 de_DE.utf8; do
        LC_ALL=$name run printf '%.1f' 1,5
        expect_output '1,5'
    done
}

hindiIsHindi() {
    local name
    for name in hi_IN hi_IN.UTF-8; do
        LC_ALL=$name run locale lang_ab
        expect_output hi
    done
}

theyAreUTF8() {
    LC_ALL=de_DE.UTF-8 run locale charmap
    expect_output 'UTF-8'
    LC_ALL=hi_IN run locale charmap
    expect_output 'UTF-8'
}

run_checks

# shellcheck shell=bash
# What the tests of the scripts share. A test is a file of functions and ends with run_checks: every function of the
# file whose name is a sentence in camelCase is a check, run in a directory and a shell of its own; it fails at the
# first command that does.
set -eu

tree=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
export tree

# run COMMAND...: leaves its two streams in $output and its exit status in $status.
run() {
    status=0
    output=$("$@" 2>&1 </dev/null) || status=$?
    printf '$ %s\n%s\n[status %s]\n' "$*" "$output" "$status"
}

fail() {
    printf 'FAIL: %s\n' "$1"
    exit 1
}

expect_status() {
    [ "$status" = "$1" ] || fail "the exit status is $status, not $1"
}

expect_output() {
    [ "$output" = "$1" ] || fail "the output is not: $1"
}

expect_output_has() {
    [[ $output == *"$1"* ]] || fail "the output lacks: $1"
}

expect_output_lacks() {
    [[ $output != *"$1"* ]] || fail "the output should not have: $1"
}

# wait_for COMMAND...: until it succeeds; fails after a minute.
wait_for() {
    local tries
    for ((tries = 0; tries < 1200; tries++)); do
        if "$@"; then return 0; fi
        sleep 0.05
    done
    fail "waited in vain for: $*"
}

# write_program PATH < TEXT: a program of this text.
write_program() {
    mkdir -p "$(dirname "$1")"
    cat >"$1"
    chmod +x "$1"
}

# The checks of the running file in the order they are written.
_check_names() {
    shopt -s extdebug
    local name
    for name in $(compgen -A function | grep '^[a-z]*[A-Z]'); do
        declare -F "$name"
    done | sort -n -k 2 | cut -d ' ' -f 1
}

run_checks() {
    local name scratch status failed=0 count=0
    scratch=$(mktemp -d)
    for name in $(_check_names); do
        count=$((count + 1))
        mkdir "$scratch/$name"
        set +e
        (
            set -e
            cd "$scratch/$name"
            "$name"
        ) >"$scratch/$name.log" 2>&1
        status=$?
        set -e
        if [ "$status" = 0 ]; then
            echo "pass  $name"
        else
            failed=$((failed + 1))
            echo "FAIL  $name"
            sed 's/^/      /' "$scratch/$name.log"
        fi
    done
    rm -rf "$scratch"
    echo "$count checks, $failed failed"
    [ "$count" != 0 ] && [ "$failed" = 0 ]
}

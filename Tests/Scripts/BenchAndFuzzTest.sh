#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# fuzzer NAME: a target that notes its arguments, reports what it did and ends with the status in NAME.status.
fuzzer() {
    write_program "targets/${1}Fuzzer" <<PROGRAM
#!/bin/bash
echo "\$@" >$1.arguments
echo "INFO: started"
echo "#200 NEW    cov: 41 ft: 99 corp: 6/9b"
echo "#300 DONE   cov: 42 ft: 99 corp: 6/9b"
echo "stat::number_of_executed_units: 300"
echo "stat::new_units_added:          6"
exit "\$(cat $1.status 2>/dev/null || echo 0)"
PROGRAM
}

fuzz() {
    TORVANE_FUZZ_DIRECTORY=$PWD/work run "$tree/scripts/fuzz" "$@"
}

everyBenchmarkRunsAndPrintsItsTable() {
    write_program benchmarks/DecodeBenchmark <<<$'#!/bin/sh\necho decode table'
    write_program benchmarks/poll/PollBenchmark <<<$'#!/bin/sh\necho poll table'
    write_program benchmarks/poll/helper <<<$'#!/bin/sh\necho not a benchmark'
    run "$tree/scripts/bench" benchmarks
    expect_status 0
    expect_output_has $'== DecodeBenchmark\ndecode table'
    expect_output_has $'== PollBenchmark\npoll table'
    expect_output_lacks 'not a benchmark'
}

aBarNotMetIsNamedAndTheOthersStillRun() {
    write_program benchmarks/DecodeBenchmark <<<$'#!/bin/sh\nexit 3'
    write_program benchmarks/PollBenchmark <<<$'#!/bin/sh\necho poll table'
    run "$tree/scripts/bench" benchmarks
    expect_status 1
    expect_output_has 'poll table'
    expect_output_has 'Not met: DecodeBenchmark (status 3)'
}

noBenchmarksAreAnError() {
    run "$tree/scripts/bench" benchmarks
    expect_status 2
    expect_output_has 'there are no benchmark programs below benchmarks'
}

everyFuzzTargetRunsForTheTimeAskedAndIsSummedUp() {
    fuzzer Snapshot
    fuzzer Preferences
    fuzz 7 targets
    expect_status 0
    local figures='300 executions in 7 s, 6 inputs with new paths, 42 edges, nothing found'
    expect_output "Preferences: $figures"$'\n'"Snapshot: $figures"
    grep -q -- '-max_total_time=7 ' Snapshot.arguments || fail "the time is not passed on"
    grep -q -- "-artifact_prefix=$PWD/work/findings/Snapshot-" Snapshot.arguments || fail "findings go elsewhere"
    grep -q " $PWD/work/corpus/Snapshot" Snapshot.arguments || fail "new inputs are to be kept out of the tree"
    [ -d work/corpus/Snapshot ] || fail "the folder for new inputs is missing"
}

gatheredInputsReplaceTheEarlierOnesAndThoseWithNamesStay() {
    # A tree of its own, since the inputs of this one are the project's.
    local corpus=$PWD/copy/Tests/Fuzz/Corpus/Snapshot hash
    mkdir -p copy/scripts "$corpus" work/corpus/Snapshot
    cp "$tree/scripts/fuzz" copy/scripts/
    hash=$(printf 'a%.0s' {1..40})
    echo hand >"$corpus/full.json"
    echo old >"$corpus/$hash"
    write_program targets/SnapshotFuzzer <<PROGRAM
#!/bin/bash
echo "\$@" >$PWD/arguments
[ ! -e "$corpus/$hash" ] || exit 1
echo new >"$corpus/${hash//a/b}"
PROGRAM
    TORVANE_FUZZ_DIRECTORY=$PWD/work run copy/scripts/fuzz --minimise targets
    expect_status 0
    expect_output 'Snapshot: 2 inputs of 9 bytes'
    grep -q -- "-merge=1 .* $corpus $PWD/work/corpus/Snapshot" arguments || fail "something else is merged"
    [ -e "work/corpus/Snapshot/$hash" ] || fail "the earlier input is not among those to choose from"
}

theFirstFindingStopsTheRun() {
    fuzzer Preferences
    fuzzer Snapshot
    echo 77 >Preferences.status
    fuzz 7 targets
    expect_status 1
    expect_output_has 'Preferences: FAILED'
    expect_output_has 'INFO: started'
    [ ! -e Snapshot.arguments ] || fail "the run went on"
}

aTargetThatCountsNothingIsNoSuccess() {
    write_program targets/SnapshotFuzzer <<<$'#!/bin/sh\nexit 0'
    fuzz 7 targets
    expect_status 1
    expect_output_has 'Snapshot: ended without its figures'
}

noFuzzTargetsAreAnError() {
    fuzz 7 targets
    expect_status 2
    expect_output_has 'there are no fuzz targets below targets'
}

aTimeThatIsNoNumberIsAnError() {
    fuzzer Snapshot
    fuzz soon targets
    expect_status 2
    expect_output_has 'Use: scripts/fuzz'
}

run_checks

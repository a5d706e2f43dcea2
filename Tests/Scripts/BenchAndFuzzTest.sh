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

# benchmark NAME [STATUS] < FIGURES: a program that prints its name, hands these figures over and ends so. In the
# figures a bar stands for a tab.
benchmark() {
    tr '|' '\t' >"$1.figures"
    write_program "benchmarks/$1Benchmark" <<PROGRAM
#!/bin/bash
echo "$1 in detail"
cat $1.figures >>"\$TORVANE_FIGURES"
exit ${2-0}
PROGRAM
}

# bench [BUSY]: runs them on a machine of two processors, BUSY of whose 200 ticks were of use to others while it looked.
bench() {
    mkdir -p proc bin
    echo 'cpu 1000 0 1000 8000 0 0 0 0 0 0' >proc/stat
    echo '0.25 0.50 0.75 1/100 4711' >proc/loadavg
    printf 'processor : %s\nmodel name\t: Some Processor\n' 0 1 >proc/cpuinfo
    # It looks twice, a second apart.
    write_program bin/sleep <<PROGRAM
#!/bin/sh
echo "cpu $((1000 + ${1-0})) 0 1000 $((8200 - ${1-0})) 0 0 0 0 0 0" >proc/stat
PROGRAM
    PATH=$PWD/bin:$PATH TORVANE_BENCH_PROC=proc run "$tree/scripts/bench" benchmarks
}

allFiguresStandInOneTable() {
    benchmark Decode <<<'Documents decoded
decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    benchmark Poll <<<'CPU per request
request, kept alive|0.0253 ms|0.128 ms|0.197|<= 0.6|met
request, closed each time|0.623 ms|1.35 ms|0.461|<= 0.5|met'
    bench
    expect_status 0
    expect_output_has $'== DecodeBenchmark\nDecode in detail'
    expect_output_has 'Machine: 2 cores, Some Processor; Linux '
    expect_output_has 'load at the start 0.25'
    expect_output_has '
what                                                       ours    yardstick    ratio        bar

Documents decoded
decode, usual                                          610 MB/s     404 MB/s    1.509       >= 1  met

CPU per request
request, kept alive                                   0.0253 ms     0.128 ms    0.197     <= 0.6  met
request, closed each time                              0.623 ms      1.35 ms    0.461     <= 0.5  met

3 met, 0 missed, 0 failed, 0 not counted'
    expect_output_lacks WARNING
}

theTableIsKeptBesideThePrograms() {
    benchmark Decode <<<'decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    bench
    [[ $output == *"$(cat figures.txt)" ]] || fail "the file is not the table"
    grep -q '^decode, usual ' figures.txt || fail "the file has no figures"
    [ "$(awk '{ if (length > most) most = length } END { print most }' figures.txt)" -le 110 ] || fail "it is too wide"
}

aBarNotMetFailsTheRunButNotTheOthers() {
    benchmark Decode 1 <<<'decode, usual|404 MB/s|610 MB/s|0.662|>= 1|MISSED'
    benchmark Poll <<<'request, kept alive|0.0253 ms|0.128 ms|0.197|<= 0.6|met'
    bench
    expect_status 1
    expect_output_has 'decode, usual                                          404 MB/s     610 MB/s    0.662       >= 1  MISSED'
    expect_output_has '1 met, 1 missed, 0 failed'
}

aMissedBarCountsWhateverTheProgramSays() {
    benchmark Decode 0 <<<'decode, usual|404 MB/s|610 MB/s|0.662|>= 1|MISSED'
    bench
    expect_status 1
}

aProgramThatCrashesKeepsItsFiguresAndHasALine() {
    benchmark Decode '' <<<'decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    sed -i 's/^exit.*/kill -SEGV $$/' benchmarks/DecodeBenchmark
    bench
    expect_status 1
    expect_output_has 'decode, usual '
    expect_output_has 'DecodeBenchmark ended with status 139'
    expect_output_has '1 met, 0 missed, 1 failed'
}

aProgramThatBringsNoFigureHasALine() {
    benchmark Decode <<<'Documents decoded'
    bench
    expect_status 1
    expect_output_has 'DecodeBenchmark brought no figures (status 0)'
}

aFailureThatNoFigureExplainsHasALine() {
    benchmark Decode 1 <<<'decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    bench
    expect_status 1
    expect_output_has 'DecodeBenchmark ended with status 1 '
}

aProgramThatDoesNotEndIsEnded() {
    write_program benchmarks/DecodeBenchmark <<<$'#!/bin/sh\nexec tail -f /dev/null'
    TORVANE_BENCH_MINUTES=0.01 bench
    expect_status 1
    expect_output_has 'DecodeBenchmark did not end within 0.01 minutes'
}

aFigureThatDoesNotCountSaysWhy() {
    benchmark Startup <<<'proportional set size|40 kB|30 kB|1.333|<= 1.1|not counted: other programs with Qt run'
    bench
    expect_status 0
    expect_output_has '<= 1.1  not counted
    (other programs with Qt run)'
    expect_output_has '0 met, 0 missed, 0 failed, 1 not counted'
}

aBusyMachineIsSaid() {
    benchmark Decode <<<'decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    bench 150
    expect_output_has 'WARNING: others kept the processors busy before DecodeBenchmark (75%). Ratios may be off.'
}

onlyBenchmarksRun() {
    benchmark Decode <<<'decode, usual|610 MB/s|404 MB/s|1.509|>= 1|met'
    write_program benchmarks/poll/helper <<<$'#!/bin/sh\necho not a benchmark'
    bench
    expect_status 0
    expect_output_lacks 'not a benchmark'
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

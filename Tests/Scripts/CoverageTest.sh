#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# A tree of its own, in which gcovr notes its arguments and says of three files what ran.
tree_with_figures() {
    mkdir -p scripts
    cp "$tree/scripts/coverage" scripts/
    write_program bin/gcovr <<'PROGRAM'
#!/usr/bin/env python3
import json
import sys

open("arguments", "w").write(" ".join(sys.argv[1:]))
if "--txt" in sys.argv:
    print("Sources/A/one.cpp 7,9")
    sys.exit(0)
keys = ("line_covered", "line_total", "branch_covered", "branch_total")
files = {"Sources/A/one.cpp": (8, 10, 1, 4), "Sources/A/two.cpp": (2, 10, 2, 4), "Sources/B/b.h": (10, 10, 0, 0)}
figures = [{"filename": name, **dict(zip(keys, row))} for name, row in files.items()]
json.dump({"files": figures}, open(sys.argv[sys.argv.index("--json-summary") + 1], "w"))
PROGRAM
    PATH=$PWD/bin:$PATH
}

foldersAreSummedUp() {
    tree_with_figures
    run scripts/coverage
    expect_status 0
    expect_output_has '| Sources/A | 50.0 % of 20 | 37.5 % of 8 |'
    expect_output_has '| Sources/B | 100.0 % of 10 | none |'
    expect_output_has '| all | 66.7 % of 30 | 37.5 % of 8 |'
    grep -q -- '--filter Sources/' arguments || fail "what is not the program's is counted too"
}

linesThatNeverRanAreListed() {
    tree_with_figures
    run scripts/coverage --lines
    expect_status 0
    expect_output 'Sources/A/one.cpp 7,9'
}

anythingElseIsAnError() {
    tree_with_figures
    run scripts/coverage Sources
    expect_status 2
    expect_output_has 'Use: scripts/coverage'
}

run_checks

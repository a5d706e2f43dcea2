#!/usr/bin/env bash
# shellcheck disable=SC2016 # The backquotes are those of the pages.
. "$(dirname "$0")/checks.sh"

pages() {
    printf '%s\n' "$tree"/*.md "$tree"/Documentation/*.md
}

# text_of FILE: the page without its blocks of code, in which brackets are no links.
text_of() {
    awk '/^ *```/ { code = !code; next } !code && !/^    [^ ]/' "$1"
}

# links_of FILE: the targets of its links and pictures, one per line.
links_of() {
    text_of "$1" | sed 's/`[^`]*`//g' | grep -oE '\]\([^)]+\)|src="[^"]+"' | sed -E 's/^\]\(//; s/^src="//; s/[)"]$//'
}

# anchors_of FILE: what its headings are called in links.
anchors_of() {
    text_of "$1" | sed -n 's/^#\{1,6\} //p' | tr '[:upper:]' '[:lower:]' | sed 's/[^a-z0-9 _-]//g; s/ /-/g'
}

everyLinkLeadsSomewhere() {
    local page link file count=0
    while read -r page; do
        for link in $(links_of "$page"); do
            count=$((count + 1))
            [[ $link != https://* ]] || continue
            file=${link%%#*}
            file=$([ -z "$file" ] && echo "$page" || echo "$(dirname "$page")/$file")
            [ -e "$file" ] || fail "${page#"$tree"/} links to $link, which is not there"
            [[ $link != *#* ]] || anchors_of "$file" | grep -qx "${link#*#}" ||
                fail "${page#"$tree"/} links to $link, where no heading has that name"
        done
    done < <(pages)
    [ "$count" -gt 30 ] || fail "there are more links than $count"
}

everyPageIsLinkedFromTheIndex() {
    local page
    for page in "$tree"/Documentation/*.md; do
        [ "${page##*/}" = README.md ] || links_of "$tree/Documentation/README.md" | grep -qx "${page##*/}" ||
            fail "the index lacks ${page##*/}"
    done
}

everyMakeThatIsNamedIsAGoal() {
    local goals goal count=0
    goals=$(sed -n 's/^\.PHONY: //p' "$tree/Makefile" | tr ' ' '\n')
    for goal in $(pages | xargs -d '\n' grep -hoE '(^|`)make [a-z]+' | sed 's/.*make //' | sort -u); do
        count=$((count + 1))
        grep -qx "$goal" <<<"$goals" || fail "\"make $goal\" is named, but no goal"
    done
    [ "$count" -gt 5 ] || fail "there are more goals than $count"
}

everyFileThatIsNamedExists() {
    local name count=0
    while read -r name; do
        count=$((count + 1))
        [ -e "$tree/$name" ] || fail "$name is named, but not there"
    done < <(pages | xargs -d '\n' grep -hoE '`(Sources|Tests|Packaging|Benchmarks|Documentation|scripts|cmake)/[A-Za-z0-9_./-]+`' |
        tr -d '`' | grep -v 'Name' | sort -u)
    [ "$count" -gt 15 ] || fail "there are more files than $count"
}

aPageIsReadInOneGo() {
    local page lines
    for page in "$tree"/Documentation/*.md; do
        lines=$(wc -l <"$page")
        [ "$lines" -le 100 ] || fail "${page##*/} has $lines lines"
    done
}

# allowed: FOLDER|WHAT IT MAY INCLUDE, as scripts/check-layers has it.
allowed() {
    sed -n 's/^ *allowed\["\([A-Za-z]*\)"\] = "\(.*\)"$/\1|\2/p' "$tree/scripts/check-layers"
}

theTableOfFoldersIsTheOneThatIsChecked() {
    allowed >checked
    [ -s checked ] || fail "check-layers has no table"
    sed -n 's/^| `\([A-Za-z]*\)` | .* | \(.*\) |$/\1|\2/p' "$tree/Documentation/Architecture.md" | sed 's/|-$/|/' >told
    diff checked told || fail "the tables of Architecture.md and of check-layers differ"
}

theFoldersOfTheTableAreThoseOfTheTree() {
    allowed | cut -d '|' -f 1 | sort >told
    find "$tree/Sources" "$tree/Sources/TorvaneKit" -mindepth 1 -maxdepth 1 -type d ! -name TorvaneKit -printf '%f\n' |
        sort >there
    diff there told || fail "the folders are others"
}

# What stands on what in the diagram must be allowed, and what is allowed must follow from it.
theDiagramIsThatOfTheTable() {
    sed -n 's/^ *\([A-Za-z]*\) --> \([A-Za-z]*\)$/\1 \2/p' "$tree/Documentation/Architecture.md" >arrows
    [ -s arrows ] || fail "there is no diagram"
    allowed | awk -F '|' '{ n = split($2, to, " "); for (i = 1; i <= n; i++) print $1, to[i] }' >pairs
    grep -vxFf pairs arrows && fail "these arrows are not allowed"
    awk 'FNR == NR { reach[$1, $2]; name[$1]; name[$2]; next }
        FNR == 1 { for (k in name) for (a in name) for (b in name)
            if (((a, k) in reach) && ((k, b) in reach)) reach[a, b] }
        !(($1, $2) in reach) { print }' arrows pairs >missing
    [ ! -s missing ] || fail "the diagram lacks: $(cat missing)"
}

theChangelogHasTheVersionThatIsBuiltAndItsDate() {
    local version date
    version=$(sed -n 's/^set(TORVANE_VERSION "\([^"]*\)".*/\1/p' "$tree/CMakeLists.txt")
    date=$(sed -n 's/.*<release version="@TORVANE_VERSION@" date="\([^"]*\)".*/\1/p' "$tree"/Packaging/*.metainfo.xml.in)
    [ "$(grep -m 1 '^## ' "$tree/CHANGELOG.md")" = "## $version - $date" ] ||
        fail "the changelog does not begin with $version of $date"
}

run_checks

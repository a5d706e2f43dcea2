#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# picture NAME WIDTH [CAPTION]: one of this width, in pictures/.
picture() {
    mkdir -p pictures
    convert -size "$2x4" xc:gray ${3:+-set Description "$3"} "pictures/$1.png"
}

page() {
    convert -size 40x4 xc:gray whole.png
    run "$tree/Tests/Gallery/page.sh" pictures whole.png
}

# order TEXT...: these stand in the page, one after the other.
order() {
    local text rest=$output
    for text; do
        [[ $rest == *"$text"* ]] || fail "$text is not where it should be"
        rest=${rest#*"$text"}
    done
}

statesAreGroupedWithLightBesideDark() {
    picture badge-usual-dark-2x 20
    picture badge-usual-light-2x 20
    picture badge-usual-dark-1x 10
    picture badge-usual-light-1x 10
    picture window-open-light-1x 10
    page
    expect_status 0
    order '<h2>Badge</h2>' '<h3>Usual</h3>' 'Light, 1x' 'Dark, 1x' 'Light, 2x' 'Dark, 2x' '<h2>Window</h2>' '<h3>Open</h3>'
}

aPictureHasTheSizeOfItsPointsAndSaysWhatItShows() {
    picture badge-usual-light-1x 10 'At <usual> "hours"'
    picture badge-usual-light-2x 20 'At <usual> "hours"'
    page
    expect_output_has '<img width="10" alt="Badge. At &lt;usual> &quot;hours&quot;. Light, at 1x."'
    expect_output_has '<img width="10" alt="Badge. At &lt;usual> &quot;hours&quot;. Light, at 2x."'
}

thePageNeedsNoOtherFile() {
    picture badge-usual-light-1x 10
    page
    expect_output_has "src=\"data:image/png;base64,$(base64 -w 0 pictures/badge-usual-light-1x.png)\""
    expect_output_lacks '<script'
    expect_output_lacks 'http'
    [ "$(grep -c 'src=' <<<"$output")" = "$(grep -c 'src="data:' <<<"$output")" ] || fail "a picture is elsewhere"
}

aStateOfOneWordOrNoneIsOneAllTheSame() {
    picture marks-light-1x 10
    picture marks-zoom-light-1x 30
    page
    order '<h3>All</h3>' 'width="10"' '<h3>Zoom</h3>' 'width="30"'
}

otherScalesAreLeftOut() {
    picture badge-usual-light-1x 10
    picture badge-usual-light-1.5x 15
    page
    expect_output_lacks 1.5x
}

aPictureOfAnotherNameIsAMistake() {
    picture badge-usual-light-1x 10
    picture badge-usual 10
    page
    expect_status 1
    expect_output_has 'pictures/badge-usual.png is not called SUBJECT-STATE-LOOK-SCALEx.png'
}

withoutGalleriesThereAreNoScreenshots() {
    mkdir -p copy/scripts
    cp "$tree/scripts/screenshots" copy/scripts/
    run copy/scripts/screenshots
    expect_status 2
    expect_output_has 'there are no galleries'
}

run_checks

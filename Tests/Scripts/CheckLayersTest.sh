#!/usr/bin/env bash
. "$(dirname "$0")/checks.sh"

# source_file PATH LINE...: a file below Sources/ with these lines.
source_file() {
    mkdir -p "$(dirname "Sources/$1")"
    printf '%s\n' "${@:2}" >"Sources/$1"
}

check_layers() {
    run "$tree/scripts/check-layers" .
}

# expect_refused PATH INCLUDE WHY: a tree whose one fault is this include is refused with its place and the reason.
expect_refused() {
    source_file "$1" '#pragma once' '' "#include $2"
    check_layers
    expect_status 1
    expect_output_has "Sources/$1:3: "
    expect_output_has "$3"
    [ "$(wc -l <<<"$output")" = 1 ] || fail "one fault, one line"
}

expect_accepted() {
    source_file "$1" '#pragma once' "#include $2"
    check_layers
    expect_output ''
    expect_status 0
}

thisTreeKeepsItsLayers() {
    run "$tree/scripts/check-layers"
    expect_output ''
    expect_status 0
}

supportIncludesNothingAboveIt() {
    expect_refused TorvaneKit/Support/A.h '"Model/Snapshot.h"' 'not for Support, which may include nothing but its own folder'
}

platformDoesNotKnowTheModel() {
    expect_refused TorvaneKit/Platform/A.h '"Model/Snapshot.h"' 'not for Platform, which may include only Support'
}

modelDoesNotKnowThePlatform() {
    expect_refused TorvaneKit/Model/A.cpp '"Platform/ColorScheme.h"' 'not for Model'
}

modelDoesNotDependOnTheBuildsAddresses() {
    expect_refused TorvaneKit/Model/A.cpp '"Model/Config.h"' 'a Config is chosen by the program that links it'
}

platformDoesNotDependOnTheBuildsAddresses() {
    expect_refused TorvaneKit/Platform/A.cpp '"Model/Config.h"' 'a Config is chosen by the program that links it'
}

configKnowsNothingButItsHeader() {
    expect_refused TorvaneKit/Config/Config.cpp '"Model/GasLevel.h"' 'not for Config'
}

chainDoesNotKnowCoordination() {
    expect_refused TorvaneKit/Chain/A.cpp '"Coordination/SnapshotStore.h"' 'which may include only Model Support'
}

chainDoesNotKnowThePlatform() {
    expect_refused TorvaneKit/Chain/A.cpp '"Platform/ColorScheme.h"' 'not for Chain'
}

coordinationDoesNotKnowTheViews() {
    expect_refused TorvaneKit/Coordination/A.h '"Views/PopoverView.h"' 'not for Coordination'
}

designDoesNotKnowTheChain() {
    expect_refused TorvaneKit/Design/A.h '"Chain/NetworkClient.h"' 'not for Design'
}

viewsDoNotKnowTheChain() {
    expect_refused TorvaneKit/Views/A.h '"Chain/NetworkClient.h"' 'not for Views'
}

viewsDoNotKnowThePlatform() {
    expect_refused TorvaneKit/Views/A.h '"Platform/ColorScheme.h"' 'not for Views'
}

updatesKnowSupportAlone() {
    expect_refused TorvaneUpdates/A.cpp '"Model/Config.h"' 'not for TorvaneUpdates'
    expect_refused TorvaneUpdates/A.cpp '"Chain/NetworkClient.h"' 'which may include only Support'
}

relayDoesNotKnowTheDesktop() {
    expect_refused TorvaneRelay/main.cpp '"Platform/ColorScheme.h"' 'which may include only Chain Model Support'
}

theKitDoesNotKnowThePrograms() {
    expect_refused TorvaneKit/Views/A.cpp '"TorvaneUpdates/Feed.h"' 'not for Views'
}

anIncludeWithoutItsFolderIsRefused() {
    source_file TorvaneKit/Model/Snapshot.h '#pragma once'
    expect_refused TorvaneKit/Model/Snapshot.cpp '"Snapshot.h"' 'lacks its folder'
}

anIncludeOfAnUnknownFolderIsRefused() {
    expect_refused TorvaneKit/Model/A.cpp '"Helpers/Text.h"' 'names an unknown folder, Helpers'
}

anIncludeByARelativePathIsRefused() {
    expect_refused TorvaneKit/Model/A.cpp '"../Support/JSON.h"' 'names an unknown folder, ..'
}

ourOwnHeaderInAngleBracketsIsRefused() {
    expect_refused TorvaneKit/Support/A.cpp '<Model/Snapshot.h>' 'write it in quotes'
}

qtNetworkIsRefusedInEveryForm() {
    local header
    for header in '<QNetworkAccessManager>' '<QtNetwork>' '<QtNetwork/QSslSocket>' '<QTcpSocket>' '<QHostAddress>' \
        '<QLocalServer>' '<qnetworkreply.h>' '"QSslServer"'; do
        expect_refused TorvaneKit/Chain/A.cpp "$header" 'Qt Network'
    done
}

aSourceFolderWithoutAPlaceIsRefused() {
    source_file TorvaneKit/Helpers/Text.h '#pragma once'
    check_layers
    expect_status 1
    expect_output_has 'Sources/TorvaneKit/Helpers/Text.h:1: this folder has no place'
}

aFileOutsideTheKitsFoldersIsRefused() {
    source_file TorvaneKit/Text.h '#pragma once'
    check_layers
    expect_status 1
    expect_output_has 'Sources/TorvaneKit/Text.h:1: this folder has no place'
}

anIncludeWithOddBlanksIsSeen() {
    source_file TorvaneKit/Support/A.cpp '  #  include   "Views/PopoverView.h" // why not'
    check_layers
    expect_status 1
    expect_output_has 'Sources/TorvaneKit/Support/A.cpp:1: '
}

everyFaultIsReported() {
    source_file TorvaneKit/Support/A.cpp '#include "Views/A.h"' '#include "B.h"'
    source_file TorvaneKit/Model/C.h '#include <QUdpSocket>'
    check_layers
    expect_status 1
    [ "$(wc -l <<<"$output")" = 3 ] || fail "three faults, three lines"
}

lowerFoldersMayBeIncluded() {
    source_file TorvaneKit/Support/JSON.h '#include <QByteArray>' '#include <optional>'
    source_file TorvaneKit/Model/Snapshot.h '#include "Support/JSON.h"' '#include "Model/GasLevel.h"'
    source_file TorvaneKit/Config/Config.cpp '#include "Model/Config.h"' '#include "Support/BaseDirectory.h"'
    source_file TorvaneKit/Chain/NetworkClient.cpp '#include "Model/Config.h"' '#include <curl/curl.h>'
    source_file TorvaneKit/Coordination/Store.cpp '#include "Platform/ColorScheme.h"' '#include "Chain/NetworkClient.h"'
    source_file TorvaneKit/Views/Badge.cpp '#include "Coordination/Store.h"' '#include "Design/Symbols.h"'
    expect_accepted TorvaneRelay/main.cpp '"Chain/NetworkClient.h"'
}

aProgramNamesItsOwnFilesFromItsFolder() {
    source_file TorvaneMenuBar/TorvaneApp.h '#include "Coordination/SnapshotStore.h"'
    source_file TorvaneMenuBar/Badge/StatusItemBadge.h '#pragma once'
    expect_accepted TorvaneMenuBar/main.cpp '"TorvaneApp.h"'
    expect_accepted TorvaneMenuBar/TorvaneApp.cpp '"Badge/StatusItemBadge.h"'
    expect_accepted TorvaneMenuBar/SparkleUpdater.cpp '"TorvaneUpdates/Feed.h"'
}

mocsOutputMayBeIncluded() {
    expect_accepted TorvaneKit/Support/Worker.cpp '"Worker.moc"'
}

aTreeWithoutSourcesIsAnError() {
    check_layers
    expect_status 2
    expect_output_has 'no sources below'
}

run_checks

#include "Design/ChainMarksMono.h"

#include "Design/ChainArtwork.h"

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

QStringList paths(std::initializer_list<QStringView> views) {
    QStringList list;
    for (const QStringView view : views)
        list.append(view.toString());
    return list;
}

} // namespace

const QHash<QString, QStringList>& ChainMarksMono::byName() {
    using namespace ChainArtwork;
    static const QHash<QString, QStringList> marks{
        {u"Ethereum"_s, paths({ethereumAbove, ethereumBelow})},
        {u"Arbitrum"_s, paths({arbitrum})},
        {u"Optimism"_s, paths({optimism})},
        {u"Base"_s, paths({base})},
        {u"Robinhood Chain"_s, paths({robinhoodFeather})},
        {u"zkSync Era"_s, paths({zkSyncLeft, zkSyncRight})},
        {u"Unichain"_s, paths({unichain})},
        {u"Scroll"_s, paths({scrollCurl, scrollSheet, scrollFoot})},
        {u"Linea"_s, paths({lineaLetter, lineaDot})},
        // Without the crest, which would run into the wave.
        {u"Starknet"_s, paths({starknetWave, starknetStar, starknetDot})},
    };
    return marks;
}

} // namespace torvane

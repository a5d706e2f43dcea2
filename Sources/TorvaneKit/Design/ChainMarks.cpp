#include "Design/ChainMarks.h"

#include "Design/ChainArtwork.h"

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr quint32 white = 0xFFFFFF;
constexpr quint32 feather = 0x110E08;
constexpr quint32 parchment = 0xFFEEDA;
constexpr quint32 parchmentBack = 0xEBC28E;
constexpr quint32 coral = 0xEC796B;

/// No emblem needs the even-odd rule: their holes run against their outlines.
ChainMark::Shape shape(QStringView path, quint32 fill) {
    return {path.toString(), fill, false};
}

} // namespace

const QHash<QString, ChainMark>& ChainMarks::byName() {
    using namespace ChainArtwork;
    static const QHash<QString, ChainMark> marks{
        {u"Robinhood Chain"_s, {0xCCFF00, {shape(robinhoodFeather, feather)}}},
        {u"zkSync Era"_s, {0x000000, {shape(zkSyncLeft, white), shape(zkSyncRight, white)}}},
        {u"Unichain"_s, {0xF50DB4, {shape(unichain, white)}}},
        {u"Scroll"_s,
         {0x101010,
          {shape(scrollCurl, parchmentBack), shape(scrollSheet, parchment), shape(scrollFoot, parchmentBack)}}},
        {u"Linea"_s, {0x000000, {shape(lineaLetter, white), shape(lineaDot, white)}}},
        {u"Starknet"_s,
         {0x0C0C4F,
          {shape(starknetCrest, coral), shape(starknetWave, white), shape(starknetStar, white),
           shape(starknetDot, coral)}}},
    };
    return marks;
}

} // namespace torvane

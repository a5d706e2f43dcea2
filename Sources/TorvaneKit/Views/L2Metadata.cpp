#include "Views/L2Metadata.h"

using namespace Qt::StringLiterals;

namespace torvane {

const QHash<QString, QString>& L2Metadata::kindByName() {
    static const QHash<QString, QString> kinds{
        {u"Arbitrum"_s, u"Optimistic rollup"_s}, {u"Optimism"_s, u"Optimistic rollup"_s},
        {u"Base"_s, u"Optimistic rollup"_s},     {u"Robinhood Chain"_s, u"Arbitrum Orbit chain"_s},
        {u"Unichain"_s, u"Optimistic rollup"_s}, {u"zkSync Era"_s, u"ZK rollup"_s},
        {u"Scroll"_s, u"ZK rollup"_s},           {u"Linea"_s, u"ZK rollup"_s},
        {u"Starknet"_s, u"ZK rollup"_s},
    };
    return kinds;
}

QString l2Kind(const QString& name) {
    return L2Metadata::kindByName().value(name, u"Layer 2"_s);
}

} // namespace torvane

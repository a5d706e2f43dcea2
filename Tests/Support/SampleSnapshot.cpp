#include "Support/SampleSnapshot.h"

#include <algorithm>
#include <random>

using namespace Qt::StringLiterals;

namespace torvane::SampleSnapshot {

namespace {

L2Entry network(const QString& name, const QString& status, std::optional<double> gwei, std::optional<double> usd) {
    L2Entry entry{};
    entry.name = name;
    entry.tag = name.left(3).toUpper();
    entry.status = status;
    entry.costGwei = gwei;
    entry.costUsd = usd;
    if (gwei)
        entry.history = walk(48, *gwei, *gwei / 2, unsigned(name.size() * 31) + unsigned(*gwei * 1e6));
    return entry;
}

} // namespace

Snapshot busyHour() {
    Snapshot snapshot{};
    snapshot.generatedAt = u"2024-10-20T08:50:23Z"_s;
    snapshot.price = {3456.7, 1.2, {}, {}};
    snapshot.gas = {12.4, 12.5, 13.4, 31.0, walk(96, 14, 6), 0.90, 6.43};
    snapshot.l2 = {
        network(u"Arbitrum"_s, u"Normal"_s, 0.01, 0.03), network(u"Optimism"_s, u"Low"_s, 0.001, 0.004),
        network(u"Base"_s, u"Normal"_s, 0.012, 0.02),    network(u"zkSync Era"_s, u"Elevated"_s, 0.045, 0.11),
        network(u"Linea"_s, u"Normal"_s, 0.041, 0.09),   network(u"Starknet"_s, u"Unavailable"_s, {}, {})};
    return snapshot;
}

QList<L2Entry> networks(qsizetype count) {
    QList<L2Entry> entries;
    for (qsizetype i = 0; i < count; ++i)
        entries.append(network(u"Network "_s + QString::number(i + 1), u"Normal"_s, 0.01 * double(i + 1), 0.02));
    return entries;
}

QList<double> walk(qsizetype count, double middle, double step, unsigned seed) {
    std::minstd_rand random(seed);
    QList<double> values;
    double value = middle;
    for (qsizetype i = 0; i < count; ++i) {
        const double chance = double(random()) / double(std::minstd_rand::max());
        value += (chance - 0.5) * step + (middle - value) * 0.06;
        values.append(std::max(middle / 20, value));
    }
    return values;
}

} // namespace torvane::SampleSnapshot

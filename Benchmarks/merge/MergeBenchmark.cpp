// What a merge costs on a market of 10,000 networks with 288 points each, beside a copy of all that it holds: plain
// strings and vectors, copied one by one, with the same figures laid over. Blocks of calls alternate between the two,
// the first call of each uncounted, so that neither pays for what the other did to the caches; medians count.
// MergeBenchmark [ROUNDS]   exits with 1 where the bar is missed, with 2 where a figure is wrong
#include "Chain/SnapshotMerge.h"
#include "Comparison.h"
#include "ThreadCPU.h"

#include <QByteArray>

#include <cstdio>
#include <cstdlib>
#include <string>

using namespace torvane;

namespace {

constexpr int networks = 10000;
constexpr int points = 288;
constexpr int callsPerBlock = 5;
constexpr double firstPrice = 0.1;  // gwei
constexpr double followedPrice = 7; // gwei

QString name(int index) {
    return QStringLiteral("Network ") + QLatin1StringView(QByteArray::number(100000 + index));
}

Snapshot market() {
    Snapshot snapshot{QStringLiteral("2026-01-01T00:00:00Z"), {}, {}, {}, {}};
    snapshot.price.eth = 3000;
    snapshot.gas.history = QList<double>(points, 1.5);
    for (int i = 0; i < networks; ++i) {
        L2Entry entry{};
        entry.name = name(i);
        entry.tag = QStringLiteral("NET");
        entry.status = QStringLiteral("Normal");
        entry.costGwei = firstPrice;
        entry.history = QList<double>(points, firstPrice + i);
        entry.rpc = {QStringLiteral("https://rpc.example/") + entry.name, QStringLiteral("https://fallback.example/")};
        snapshot.l2.append(entry);
    }
    return snapshot;
}

/// A network whose copy is a copy.
struct PlainNetwork {
    std::string name;
    std::string tag;
    std::string status;
    std::optional<double> costGwei;
    std::vector<double> history;
    std::vector<std::string> rpc;
};

std::vector<PlainNetwork> plain(const Snapshot& snapshot) {
    std::vector<PlainNetwork> result;
    for (const L2Entry& entry : snapshot.l2) {
        PlainNetwork network{
            entry.name.toStdString(), entry.tag.toStdString(), entry.status.toStdString(), entry.costGwei, {}, {}};
        network.history.assign(entry.history->cbegin(), entry.history->cend());
        for (const QString& endpoint : *entry.rpc)
            network.rpc.push_back(endpoint.toStdString());
        result.push_back(std::move(network));
    }
    return result;
}

double copyAndMerge(const std::vector<PlainNetwork>& source, const std::string& followed) {
    std::vector<PlainNetwork> copy = source;
    for (PlainNetwork& network : copy) {
        if (network.name == followed)
            network.costGwei = followedPrice;
    }
    return *copy[networks / 2].costGwei + copy.front().history.back();
}

double mergeOurs(const Snapshot& source, const QList<LiveL2Quote>& quotes) {
    const LiveGasQuote ethereum{1, 2, 3, 4, 5};
    const Snapshot merged = mergeSnapshot(source, ethereum, quotes);
    return *merged.l2[networks / 2].costGwei + merged.l2.first().history->last();
}

/// Adds the CPU milliseconds of each call of a block but the first. What the calls return is checked, so that nothing
/// is optimised away.
template <class Work>
void addBlock(const Work& work, std::vector<double>& times) {
    for (int call = 0; call <= callsPerBlock; ++call) {
        const double start = threadMicroseconds();
        const double result = work();
        const double end = threadMicroseconds();
        if (result != followedPrice + firstPrice) {
            std::fprintf(stderr, "A merge brought %g\n", result);
            std::exit(2);
        }
        if (call > 0)
            times.push_back((end - start) / 1e3);
    }
}

} // namespace

int main(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 11;
    const Snapshot source = market();
    const std::vector<PlainNetwork> copied = plain(source);
    const QList<LiveL2Quote> oneQuote{{name(networks / 2), followedPrice}};
    const std::string followed = oneQuote.first().name.toStdString();
    std::vector<double> ours;
    std::vector<double> yardstick;
    for (int round = 0; round < rounds; ++round) {
        addBlock([&] { return mergeOurs(source, oneQuote); }, ours);
        addBlock([&] { return copyAndMerge(copied, followed); }, yardstick);
    }
    Figures::begin("CPU of a merge, beside a deep copy; medians of " + std::to_string(rounds) + " blocks of " +
                   std::to_string(callsPerBlock) + " calls");
    const Comparison merge{"merge, 10,000 networks x 288 points, two quotes", "ms", median(ours), median(yardstick),
                           0.05};
    return merge.report() ? 0 : 1;
}

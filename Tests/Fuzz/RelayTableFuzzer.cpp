#include "Contract.h"
#include "RelayTable.h"

#include <QUrl>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace torvane;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

void checkEndpoints(const QStringList& endpoints) {
    insist(!endpoints.isEmpty());
    for (const QString& endpoint : endpoints)
        insist(QUrl(endpoint).scheme() == QLatin1String("https") && !QUrl(endpoint).host().isEmpty());
}

void checkTable(const RelayTable& table) {
    insist(table.minutesBetweenRuns >= 1 && table.minutesBetweenRuns <= 1440);
    insist(table.requestsAtOnce >= 1 && table.requestsAtOncePerHost >= 1 && table.requestsPerSecondPerHost >= 0.1);
    insist(isChecksummedAddress(table.ethereum.priceFeed));
    insist(table.ethereum.pricePool.isEmpty() || isChecksummedAddress(table.ethereum.pricePool));
    checkEndpoints(table.ethereum.endpoints);
    QStringList names;
    for (const RelayTable::Network& network : table.networks) {
        insist(!network.name.isEmpty() && !network.tag.isEmpty() && network.chainId.startsWith(QLatin1String("0x")));
        checkEndpoints(network.endpoints);
        names.append(network.name);
    }
    insist(names.removeDuplicates() == 0);
    for (const RelayTable::Staking& row : table.staking)
        insist(isChecksummedAddress(row.contract) && (row.rate.isEmpty() || isSignature(row.rate)));
}

} // namespace

/// Any bytes as the operator's table: it is refused with words, or everything in it can be used.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray toml(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    try {
        checkTable(RelayTable::read(toml));
    } catch (const TableError& error) {
        insist(*error.what() != '\0');
    }
    return 0;
}

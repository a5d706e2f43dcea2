#include "Support/SimulatedMarket.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <utility>

namespace torvane::SimulatedMarket {

namespace {

constexpr double day = 86400;
constexpr int ethereumPoints = 144; // A mean per fifty blocks over a day.
constexpr int l2Points = 288;       // One per run of the relay, each five minutes.

/// What a series looks like: its usual value, how far it swings in a day, and how restless it is.
struct Shape {
    quint64 seed;
    double usual;
    double swing;
    double unrest;
};

struct Network {
    const char* name;
    const char* tag;
    Shape gasPrice; // gwei
    double l1Usd;   // What posting a transfer's data to Ethereum adds.
    double transactions;
    double addresses;
    double tvlUsd;
    double blockTimeSec;
    bool paysInEther; // Those that do also speak Ethereum's JSON-RPC.
};

constexpr std::array networks{
    Network{"Arbitrum", "ARB", {11, 0.012, 0.10, 0.25}, 0.0011, 2.9e6, 312'000, 3.1e9, 0.25, true},
    Network{"Optimism", "OP", {12, 0.0011, 0.15, 0.40}, 0.0009, 1.4e6, 96'000, 6.4e8, 2, true},
    Network{"Base", "BASE", {13, 0.0062, 0.20, 0.45}, 0.0010, 9.8e6, 1'240'000, 4.6e9, 2, true},
    Network{"Robinhood Chain", "HOOD", {14, 0.018, 0.12, 0.20}, 0.0012, 7.1e5, 88'000, 2.2e8, 0.1, true},
    Network{"Unichain", "UNI", {15, 0.00084, 0.10, 0.50}, 0.0008, 6.2e5, 41'000, 5.3e8, 1, true},
    Network{"zkSync Era", "ZK", {16, 0.0453, 0.05, 0.10}, 0.0040, 2.1e5, 27'000, 1.2e8, 0.2, true},
    Network{"Scroll", "SCR", {17, 0.0151, 0.08, 0.15}, 0.0035, 1.6e5, 19'000, 9.4e7, 3, true},
    Network{"Linea", "LIN", {18, 0.047, 0.10, 0.30}, 0.0028, 3.3e5, 52'000, 1.9e8, 2, true},
    Network{"Starknet", "STRK", {19, 4.3, 0.06, 0.12}, 0, 2.5e5, 23'000, 2.4e8, 2.2, false},
};

constexpr Shape baseFeeShape{1, 11, 0.55, 0.35};
constexpr Shape etherPrice{2, 3420, 0.012, 0.008};

/// The curve of priorityFeeShare, straight between these.
constexpr std::array<std::pair<double, double>, 5> priorityFeeCurve{
    {{0, 0}, {15, 0.012}, {50, 0.06}, {90, 0.18}, {100, 0.6}}};

double secondsOf(const QDateTime& time) {
    return static_cast<double>(time.toMSecsSinceEpoch()) / 1000;
}

/// Scrambles a counter into a number in -1..1 (the finaliser of SplitMix64).
double scrambled(quint64 value) {
    value += 0x9e3779b97f4a7c15;
    value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
    value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
    value ^= value >> 31;
    return static_cast<double>(value >> 11) * 0x1p-52 - 1;
}

/// Smooth noise in -1..1 that takes a new direction every `period` seconds.
double noise(quint64 seed, double seconds, double period) {
    const double cell = std::floor(seconds / period);
    const double within = seconds / period - cell;
    const double eased = within * within * (3 - 2 * within);
    const auto at = [seed](double index) { return scrambled(seed * 1'000'003 + static_cast<quint64>(index)); };
    return at(cell) + (at(cell + 1) - at(cell)) * eased;
}

double value(const Shape& shape, double seconds) {
    const double ofTheDay = std::sin(2 * std::numbers::pi * (seconds / day + static_cast<double>(shape.seed) * 0.07));
    const double restless = 0.6 * noise(shape.seed, seconds, 5400) + 0.3 * noise(shape.seed + 100, seconds, 900) +
                            0.1 * noise(shape.seed + 200, seconds, 60);
    return shape.usual * std::exp(shape.swing * ofTheDay + shape.unrest * restless);
}

QList<double> history(const Shape& shape, double seconds, int points) {
    const double step = day / points;
    const double last = std::floor(seconds / step) * step;
    QList<double> values;
    values.reserve(points);
    for (int i = points - 1; i >= 0; --i)
        values.append(value(shape, last - i * step));
    return values;
}

SourceProvenance simulated() {
    return {QStringLiteral("simulated"), QStringLiteral("stand-in relay"),
            QStringLiteral("Made up for tests and the demo; not a real figure")};
}

double costUsd(double ethPrice, double gwei, double gas) {
    return ethPrice * (gwei * gas * 1e-9);
}

PriceData price(double seconds) {
    const double now = value(etherPrice, seconds);
    const double yesterday = value(etherPrice, seconds - day);
    const double otherSource = now * (1 + 0.0004 * noise(3, seconds, 600));
    return {now, 100 * (now - yesterday) / yesterday, otherSource, 100 * std::abs(now - otherSource) / now};
}

GasData gas(double seconds, double ethPrice) {
    const double base = value(baseFeeShape, seconds);
    return {base,
            base + base * priorityFeeShare(15),
            base + base * priorityFeeShare(50),
            base + base * priorityFeeShare(90),
            history(baseFeeShape, seconds, ethereumPoints),
            costUsd(ethPrice, base, 21000),
            costUsd(ethPrice, base, 150000)};
}

/// The relay's rule: elevated from one and a half times the median of the network's own day.
QString status(double gwei, QList<double> history) {
    const auto middle = history.begin() + history.size() / 2;
    std::nth_element(history.begin(), middle, history.end());
    return gwei > 1.5 * *middle ? QStringLiteral("Elevated") : QStringLiteral("Normal");
}

L2Entry entry(const Network& network, double seconds, double ethPrice) {
    const double gwei = value(network.gasPrice, seconds);
    const QList<double> past = history(network.gasPrice, seconds, l2Points);
    const double usd = costUsd(ethPrice, gwei, 21000) + network.l1Usd;
    return {QString::fromLatin1(network.name),
            QString::fromLatin1(network.tag),
            network.paysInEther ? std::optional(usd) : std::nullopt,
            gwei,
            status(gwei, past),
            std::round(network.transactions * (1 + 0.05 * noise(network.gasPrice.seed, seconds, 7200))),
            std::round(network.addresses * (1 + 0.05 * noise(network.gasPrice.seed + 1, seconds, 7200))),
            network.tvlUsd * (1 + 0.01 * noise(network.gasPrice.seed + 2, seconds, 7200)),
            past,
            1440,
            {},
            network.blockTimeSec};
}

LiquidStakingProtocol protocol(const char* name, const char* token, double supply, double rate) {
    return {QString::fromLatin1(name), QString::fromLatin1(token), supply, rate, supply * rate, {}, simulated()};
}

StakingData staking() {
    const QList<LiquidStakingProtocol> protocols{
        protocol("Lido", "stETH", 8.71e6, 1),          protocol("Rocket Pool", "rETH", 3.6e5, 1.1512),
        protocol("Coinbase", "cbETH", 1.15e5, 1.1187), protocol("Frax", "sfrxETH", 6.4e4, 1.1433),
        protocol("Mantle", "mETH", 2.2e5, 1.0791),
    };
    double total = 0;
    for (const LiquidStakingProtocol& each : protocols)
        total += *each.ethEquivalent;
    return {{protocols, total, {}, simulated()}};
}

} // namespace

Snapshot at(const QDateTime& time) {
    const double seconds = secondsOf(time);
    const PriceData ether = price(seconds);
    QList<L2Entry> l2;
    for (const Network& network : networks)
        l2.append(entry(network, seconds, ether.eth));
    return {time.toUTC().toString(Qt::ISODateWithMs), ether, gas(seconds, ether.eth), l2, staking()};
}

double baseFee(const QDateTime& time) {
    return value(baseFeeShape, secondsOf(time));
}

double priorityFeeShare(double percentile) {
    const double bounded = std::clamp(percentile, 0.0, 100.0);
    std::size_t upper = 1;
    while (priorityFeeCurve.at(upper).first < bounded)
        ++upper;
    const auto [x0, y0] = priorityFeeCurve.at(upper - 1);
    const auto [x1, y1] = priorityFeeCurve.at(upper);
    return y0 + (y1 - y0) * (bounded - x0) / (x1 - x0);
}

std::optional<double> gasPrice(const QString& network, const QDateTime& time) {
    const auto found = std::find_if(networks.begin(), networks.end(), [&network](const Network& each) {
        return each.paysInEther && network == QLatin1StringView(each.name);
    });
    return found == networks.end() ? std::nullopt : std::optional(value(found->gasPrice, secondsOf(time)));
}

} // namespace torvane::SimulatedMarket

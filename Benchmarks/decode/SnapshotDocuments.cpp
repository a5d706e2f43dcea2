#include "SnapshotDocuments.h"

#include "Model/Snapshot.h"
#include "Support/JSON.h"

#include <array>
#include <charconv>
#include <cmath>
#include <random>

namespace torvane {

namespace {

class Generator final {
public:
    explicit Generator(const DocumentShape& shape)
        : m_shape(shape) {}

    QByteArray document() {
        QByteArray networks;
        for (int i = 0; i < m_shape.networks; ++i)
            networks.append(i ? "," : "").append(network(i));
        return "{\"generatedAt\":\"2026-01-15T12:34:56.789Z\",\"price\":" + JSON::encode(price()) +
               ",\"gas\":" + JSON::encode(gas()) + ",\"l2\":[" + networks + "],\"staking\":" + JSON::encode(staking()) +
               '}';
    }

private:
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_random); }
    double figure(double low, double high) { return rounded(between(low, high)); }

    double rounded(double value) const {
        if (m_shape.digits >= 17)
            return value;
        std::array<char, 32> text;
        const auto written = std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::scientific,
                                           m_shape.digits - 1);
        std::from_chars(text.data(), written.ptr, value);
        return value;
    }

    QList<double> history(double base) {
        QList<double> values;
        double value = base;
        for (int i = 0; i < m_shape.points; ++i) {
            value = std::max(base / 5, value * between(0.9, 1.11));
            values.append(rounded(value));
        }
        return values;
    }

    PriceData price() { return {figure(3000, 4000), -1.26, figure(3000, 4000), 0.025}; }
    GasData gas() { return {figure(0.5, 1), 0.83, 0.9, 1.4, history(0.8), 0.059, 0.42}; }

    static SourceProvenance provenance() {
        return {QStringLiteral("live"), QStringLiteral("contract"),
                QStringLiteral("read on the chain at block 21000000 from the protocol's own contract")};
    }

    StakingData staking() {
        QList<LiquidStakingProtocol> protocols;
        for (const char* const name : {"Alpha", "Beta", "Gamma", "Delta"})
            protocols.append({QLatin1String(name), QString(QLatin1String(name, 3)) + QStringLiteral("ETH"),
                              figure(1e4, 1e7), figure(1, 1.2), figure(1e4, 1e7), figure(0, 1), provenance()});
        return {{protocols, 12345678.9, 0.33, provenance()}};
    }

    QByteArray network(int index) {
        const QString name = QStringLiteral("Network %1").arg(QString::fromStdString(std::to_string(index)));
        const double gwei = std::array{0.001, 0.01, 0.05, 0.5}[static_cast<std::size_t>(index) % 4] * between(0.5, 1.5);
        const QList<QString> rpc{
            QLatin1StringView("https://rpc-") + name.mid(8) + QLatin1StringView(".network.example/v1"),
            QLatin1StringView("https://") + name.mid(8) + QLatin1StringView(".fallback.example/rpc")};
        const L2Entry entry{name,
                            name.left(3).toUpper(),
                            rounded(gwei * 0.06),
                            rounded(gwei),
                            index % 3 ? QStringLiteral("Normal") : QStringLiteral("Elevated"),
                            std::floor(between(1e5, 1e7)),
                            std::floor(between(1e4, 1e6)),
                            figure(1e8, 1e10),
                            history(gwei),
                            1440,
                            rpc,
                            0.25};
        QByteArray text = JSON::encode(entry);
        if (m_shape.extra)
            text.replace(text.size() - 1, 1, ",\"meta\":" + unknownMember(gwei) + '}');
        return text;
    }

    QByteArray unknownMember(double gwei) {
        const QByteArray notes = QByteArray("unicode \u00e9\u4e2d \\\\ \\\" \\n").repeated(4);
        return R"({"explorer":"https://explorer.example/network","notes":")" + notes + R"(","raw":)" +
               JSON::encode(history(gwei)) + R"(,"flags":[true,false,null,{"deep":[[[1]]]}]})";
    }

    const DocumentShape& m_shape;
    std::mt19937_64 m_random{1};
};

/// The same document with one value on each line.
QByteArray indented(QByteArrayView compact) {
    QByteArray out;
    bool inString = false;
    int depth = 0;
    const auto newLine = [&] { out.append('\n').append(QByteArray(2 * depth, ' ')); };
    for (qsizetype i = 0; i < compact.size(); ++i) {
        const char character = compact[i];
        if (character == '"' && (i == 0 || compact[i - 1] != '\\'))
            inString = !inString;
        if (!inString && (character == '}' || character == ']')) {
            --depth;
            newLine();
        }
        out.append(character);
        if (inString)
            continue;
        if (character == ':')
            out.append(' ');
        depth += character == '{' || character == '[';
        if (character == ',' || character == '{' || character == '[')
            newLine();
    }
    return out;
}

} // namespace

QByteArray snapshotDocument(const DocumentShape& shape) {
    const QByteArray compact = Generator(shape).document();
    return shape.pretty ? indented(compact) : compact;
}

QList<DocumentShape> measuredShapes() {
    return {
        {.name = "usual"},
        {.name = "1 network", .networks = 1},
        {.name = "100 networks", .networks = 100},
        {.name = "1000 networks", .networks = 1000},
        {.name = "24 points", .points = 24},
        {.name = "2000 points", .points = 2000},
        {.name = "4 digits", .digits = 4},
        {.name = "8 digits", .digits = 8},
        {.name = "pretty", .pretty = true},
        {.name = "pretty, 4 digits", .digits = 4, .pretty = true},
        {.name = "unknown members", .extra = true},
        {.name = "unknown members, pretty", .pretty = true, .extra = true},
        {.name = "1 network, 24 points", .networks = 1, .points = 24},
    };
}

} // namespace torvane

#include "Relay.h"

#include "Support/Clock.h"
#include "Support/FixedPoint.h"
#include "Support/SafeFile.h"

#include <QElapsedTimer>

namespace torvane {

Relay::Relay(RelayTable table, QString document, Say say)
    : m_table(std::move(table))
    , m_document(std::move(document))
    , m_say(std::move(say)) {}

Task<std::optional<QByteArray>> Relay::run() {
    std::optional<QByteArray> written;
    try {
        Task<QByteArray> publishing = publish();
        written = co_await publishing;
    } catch (const std::exception& failure) {
        m_say(QStringLiteral("Nothing written: ") + QString::fromUtf8(failure.what()));
    }
    co_return written;
}

Task<QByteArray> Relay::publish() {
    const RunLock lock(m_document);
    const EarlierDocument earlier = readEarlierDocument(m_document);
    if (!earlier.trouble.isEmpty())
        m_say(earlier.trouble + QStringLiteral("; histories start anew"));
    requireLater(Clock::now(), earlier); // Before anybody is troubled with questions.
    QElapsedTimer time;
    time.start();
    RequestGate gate({m_table.requestsAtOnce, m_table.requestsAtOncePerHost, m_table.requestsPerSecondPerHost});
    Task<Reading> reads = readAll(gate, m_table, Clock::now());
    const Reading reading = co_await reads;
    const QByteArray bytes = compose(reading, earlier);
    const auto write = [path = m_document, bytes] {
        return SafeFile::replace(path, bytes, SafeFile::Readers::everyone);
    };
    const bool isWritten = co_await detached(write);
    if (!isWritten)
        throw PublicationFailure(m_document + QStringLiteral(" cannot be written"));
    m_say(QStringLiteral("Wrote %1: %2 bytes, after %3 requests in %4 s")
              .arg(m_document, QString::number(bytes.size()), QString::number(gate.admitted()),
                   fixedPoint(static_cast<double>(time.elapsed()) / 1000, 1)));
    co_return bytes;
}

QByteArray Relay::compose(const Reading& reading, const EarlierDocument& earlier) {
    if (!reading.price || !reading.gas)
        throw PublicationFailure(reading.trouble);
    const QDateTime generatedAt = Clock::now();
    requireLater(QDateTime::fromSecsSinceEpoch(generatedAt.toSecsSinceEpoch(), Qt::UTC), earlier);
    std::optional<Earlier> continuing;
    if (earlier.snapshot)
        continuing = {*earlier.snapshot, static_cast<double>(earlier.generatedAt.msecsTo(generatedAt)) / 60000};
    const Snapshot snapshot = composed(reading, m_table, continuing, generatedAt);
    for (const QString& line : summary(reading, m_table, snapshot))
        m_say(line);
    return encodedDocument(snapshot);
}

} // namespace torvane

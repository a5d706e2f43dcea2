#pragma once

#include <QJsonArray>
#include <QJsonValue>
#include <QProcess>
#include <QSslServer>
#include <QUrl>

namespace torvane {

/// A real Ethereum node with a chain of its own, behind TLS. Blocks are made on demand alone.
class AnvilNode final : public QObject {
    Q_OBJECT

public:
    /// Starts it on free ports and waits until it listens; ends the program when it does not.
    explicit AnvilNode(const QStringList& arguments);
    ~AnvilNode() override;

    /// Where it is reached over TLS: a bare origin.
    QUrl url() const;

    /// Asks the node behind its back, without TLS; ends the program when it answers with an error.
    QJsonValue call(const QString& method, const QJsonArray& parameters = {}) const;

    /// Makes a block with this base fee that holds one transfer for each of at most ten priority fees, all in wei.
    void mine(quint64 baseFee, const QList<quint64>& priorityFees);

private:
    void forward();

    QProcess m_process;
    QSslServer m_listener;
    quint16 m_port = 0; // Without TLS.
};

} // namespace torvane

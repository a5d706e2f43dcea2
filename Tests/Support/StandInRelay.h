#pragma once

#include "Model/Snapshot.h"
#include "Support/StandInServer.h"

#include <optional>

namespace torvane {

/// A relay with a simulated market: it serves a snapshot.json that moves, and misbehaves on request. It is told so by a
/// POST to /control whose body is one order:
///     baseFee 7.5         Ethereum's base fee from now on, in gwei, with tiers to match; "baseFee" alone lets it move
///     again answer KIND         how /snapshot.json is answered: normal, status CODE, redirect URL, drip, truncate,
///     endless,
///                         garbage, silence
///     certificate NAME    which of the build's certificates it shows from the next connection on
/// An order that it does not understand gets a 400.
class StandInRelay final : public QObject {
    Q_OBJECT

public:
    explicit StandInRelay(quint16 port = 0, QObject* parent = nullptr);

    StandInServer& server() { return *m_server; }

    /// The document that is served at this moment.
    Snapshot document() const;

private:
    void listen(const QString& certificate, quint16 port);
    StandInAnswer answerSnapshot(const StandInRequest& request) const;
    StandInAnswer answerControl(const QByteArray& order);
    bool obeys(const QByteArray& name, const QByteArray& value);
    bool setBaseFee(const QByteArray& value);
    bool setCertificate(const QByteArray& name);

    std::unique_ptr<StandInServer> m_server;
    std::optional<double> m_baseFee;
    QByteArray m_kind = "normal";
};

} // namespace torvane

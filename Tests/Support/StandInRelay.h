#pragma once

#include "Model/Snapshot.h"
#include "Support/StandInServer.h"

#include <optional>

namespace torvane {

/// A relay with a simulated market and a feed of updates, and the nodes of that market: /snapshot.json is a document
/// that moves, a POST to / asks an Ethereum node and one to /rpc/NETWORK that network's (StandInNodes). All misbehave
/// on request. They are told so by a POST to /control whose body is one order:
///     baseFee 7.5         Ethereum's base fee from now on, in gwei, at the relay and at the nodes, with tiers to
///                         match; "baseFee" alone lets it move again
///     moment TIME         the figures of this time (ISO 8601, with its offset) from now on, standing still, in a
///                         document that is made now: pictures of it are the same each time; "moment" alone ends it
///     answer KIND         how /snapshot.json is answered: normal, status CODE, redirect URL, drip, truncate, endless,
///                         garbage, silence, off (the connection is reset without a byte)
///     nodes KIND          how the nodes answer: the same, and "error" (a JSON-RPC error object)
///     publish FOLDER      /torvane/NAME is from now on what the file NAME in this folder holds
///     updates KIND        how that is answered: the kinds of /snapshot.json
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
    void listenForNodes();
    QDateTime marketTime() const;
    QDateTime documentTime() const;
    StandInAnswer answerSnapshot(const StandInRequest& request) const;
    StandInAnswer answerUpdate(const StandInRequest& request) const;
    StandInAnswer answerNode(const StandInRequest& request, const QByteArray& body) const;
    StandInAnswer answerControl(const QByteArray& order);
    bool obeys(const QByteArray& name, const QByteArray& value);
    bool setBaseFee(const QByteArray& value);
    bool setMoment(const QByteArray& value);
    bool setCertificate(const QByteArray& name);
    bool publish(const QByteArray& folder);
    void listenForUpdates();

    std::unique_ptr<StandInServer> m_server;
    std::optional<double> m_baseFee;
    std::optional<QDateTime> m_moment;
    QDateTime m_orderedAt; // The last base fee or moment.
    QByteArray m_kind = "normal";
    QByteArray m_nodesKind = "normal";
    QByteArray m_updatesKind = "normal";
    QString m_published; // A folder.
};

} // namespace torvane

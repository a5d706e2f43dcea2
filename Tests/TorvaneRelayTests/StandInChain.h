#pragma once

#include "Support/StandInServer.h"
#include "Word.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonValue>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>

namespace torvane {

/// A node of a made-up chain that answers as it is told. A question is named by its method, and by the block for the
/// methods that are asked with several ("eth_feeHistory latest", "eth_feeHistory earlier"); a call of a contract by the
/// function's signature and the contract's first digits ("totalSupply() of 0xae78").
class StandInChain final {
public:
    using Answer = std::function<QJsonValue(const QJsonArray& params)>;
    using Function = std::function<QList<Word>(const QByteArray& arguments)>;

    StandInChain();

    QString endpoint() const;

    void on(const QString& question, Answer answer);
    void always(const QString& question, const QJsonValue& answer);

    /// None stands for a call that the contract refuses.
    void onCall(const QString& contract, const QString& signature, Function function);
    void onCall(const QString& contract, const QString& signature, const QList<Word>& words);

    /// From now on this question alone is answered so, after some good answers if wanted.
    void misbehave(const QString& question, const StandInAnswer& answer, int goodAnswers = 0);
    void behave();

    /// All that can be asked, sorted.
    QStringList questions() const;

    /// How often each was asked; and what was asked that it does not know.
    const QHash<QString, int>& asked() const { return m_asked; }

    StandInServer& server() { return *m_server; }

private:
    struct Fault {
        QString question;
        StandInAnswer answer;
        int goodAnswers; // that still come before it
    };

    StandInAnswer respond(const StandInRequest& request);
    QString nameOf(const QString& method, const QJsonArray& params) const;

    std::unique_ptr<StandInServer> m_server;
    QHash<QString, Answer> m_answers;
    QHash<QString, QString> m_questions; // By contract and selector.
    QHash<QString, int> m_asked;
    std::optional<Fault> m_fault;
};

/// A quantity in hexadecimal.
QJsonValue hex(quint64 number);

/// A block's number and time.
QJsonValue blockAt(quint64 number, qint64 seconds);

} // namespace torvane

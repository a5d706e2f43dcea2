#pragma once

#include "Support/ChildProcess.h"
#include "Support/Later.h"

#include <QDBusConnection>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <memory>

class QDBusPendingCallWatcher;

namespace torvane {

/// Watches a program that was started to take the application's place. Unless it has got there, it is ended with this.
class Takeover final : public QObject {
    Q_OBJECT

public:
    /// Hears of the place from now on, and so before anybody is started.
    Takeover(QDBusConnection bus, QString id, std::chrono::milliseconds limit);
    ~Takeover() override;

    /// Starts the program; throws std::system_error.
    void start(const QString& executable);

    /// Whether it has got there, once that is known.
    const Later<bool>& outcome() const { return m_outcome; }

    /// Ends the program unless it has got there, and waits until what it held is free.
    Task<> end();

private:
    void ownerChanged(const QString& owner);
    void ownerKnown(const QDBusPendingCallWatcher& reply, const QString& owner);
    void ask(const QString& owner, int times);
    void lookForSocket();
    void decide(bool isThere);

    QDBusConnection m_bus;
    const QString m_id;
    QDBusServiceWatcher m_place;
    QTimer m_limit;
    QTimer m_nextLook; // Without a bus nobody tells.
    std::shared_ptr<ChildProcess> m_program;
    bool m_isDecided = false;
    bool m_isThere = false;
    const Later<bool> m_outcome;
    const Later<bool> m_ended;
};

} // namespace torvane

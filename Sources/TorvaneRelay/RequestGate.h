#pragma once

#include "Support/Async.h"

#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QObject>
#include <QString>
#include <QTimer>

namespace torvane {

/// Keeps requests polite: so many at once, in all and per host, and so many a second per host. Who waits is let in in
/// order, past those whose host is busy.
class RequestGate final : public QObject {
    Q_OBJECT

public:
    struct Limits {
        int atOnce;
        int atOncePerHost;
        double perSecondPerHost;
    };

    explicit RequestGate(const Limits& limits);

    class Place;

    /// How many have been let in.
    int admitted() const { return m_admitted; }

private:
    struct Host {
        int inside = 0;
        QDeadlineTimer pause; // Until the next one may come in.
    };

    Place* nextAdmissible();
    void admit();
    void armFor(const Host& host);
    void leave(const QString& host);

    Limits m_limits;
    QList<Place*> m_waiting;
    QHash<QString, Host> m_hosts;
    QTimer m_timer;
    int m_inside = 0;
    int m_admitted = 0;
};

/// A place inside: awaiting it waits until there is one, destroying it gives it back.
///     RequestGate::Place place(gate, host);
///     co_await place;
class RequestGate::Place final {
public:
    Place(RequestGate& gate, const QString& host);
    ~Place();

    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    bool await_ready() const noexcept { return false; }

    void await_suspend(detail::Suspended awaiting);

    void await_resume() const noexcept {}

private:
    friend class RequestGate;

    RequestGate& m_gate;
    QString m_host;
    detail::TaskPromiseBase* m_task = nullptr;
    bool m_isInside = false;
};

} // namespace torvane

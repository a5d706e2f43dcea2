#include "Launch.h"

#include "LaunchEnvironment.h"
#include "Support/Notice.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QGuiApplication>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int notHeard = 1;

} // namespace

Launch::Launch(QString id)
    : m_id(std::move(id)) {
    const auto begin = [this] { m_tasks.run(this->begin()); };
    QMetaObject::invokeMethod(this, begin, Qt::QueuedConnection);
}

Task<> Launch::begin() {
    // The session's bus is connected to once, by whoever asks first, and that one waits for it.
    const auto connectToBus = [] { return QDBusConnection::sessionBus().isConnected(); };
    const bool hasBus = co_await detached(connectToBus);
    if (!hasBus)
        notice(u"There is no session bus, so no notifications, and a badge only in a tray of X's own. "
               u"Start velisk once more to open its window."_s);
    m_instance.emplace(QDBusConnection::sessionBus(), m_id);
    m_successor.emplace(*m_instance, QDBusConnection::sessionBus(), m_id);
    connect(&*m_instance, &ApplicationInstance::becameFirst, this, &Launch::run);
    connect(&*m_instance, &ApplicationInstance::deferred, this, &Launch::end);
    connect(&*m_instance, &ApplicationInstance::activated, this, &Launch::comeForward);
    m_instance->settle();
}

void Launch::run() {
    const auto relaunch = [this](QString executable) { return m_successor->relaunch(std::move(executable)); };
    m_app.emplace(m_id, relaunch);
    if (m_awaited)
        bringForward(*m_awaited);
}

void Launch::end(bool answered) {
    if (!answered)
        notice(u"It runs already in this session, but does not answer: end it and start it anew."_s);
    QCoreApplication::exit(answered ? 0 : notHeard);
}

void Launch::comeForward(const QString& token) {
    if (m_app)
        bringForward(token);
    else
        m_awaited = token;
}

void Launch::bringForward(const QString& token) {
    const ActivationToken leave(token, QGuiApplication::platformName());
    m_app->comeForward();
}

} // namespace torvane

#include "Chain/RequestLog.h"

#include <QLoggingCategory>

namespace torvane {

namespace {

Q_LOGGING_CATEGORY(net, "org.velisk.Torvane.net", QtInfoMsg)

} // namespace

RequestLog::RequestLog(const QByteArray& method, const QUrl& url)
    : m_method(method)
    , m_url(url) {
    m_time.start();
}

RequestLog::~RequestLog() {
    if (!m_isWritten)
        write(0, false);
}

void RequestLog::write(qsizetype bytes, bool isOk) {
    m_isWritten = true;
    // The arguments are evaluated only where the level is enabled.
    qCInfo(net, "method=%s host=%s bytes=%lld ms=%lld %s", m_method.isEmpty() ? "GET" : m_method.constData(),
           m_url.host().isEmpty() ? "unknown" : qUtf8Printable(m_url.host()), static_cast<long long>(bytes),
           static_cast<long long>(m_time.elapsed()), isOk ? "ok" : "fail");
}

} // namespace torvane

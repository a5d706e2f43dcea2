#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QUrl>

namespace torvane {

/// One request's line in the log, category "org.velisk.Torvane.net", level info. It is written once: when the outcome
/// is told, or as a failure without bytes when the request ends in any other way, cancelled ones included.
class RequestLog final {
public:
    RequestLog(const QByteArray& method, const QUrl& url);
    RequestLog(const RequestLog&) = delete;
    RequestLog& operator=(const RequestLog&) = delete;
    ~RequestLog();

    /// `bytes` is the length of the answer's body, decoded.
    void write(qsizetype bytes, bool isOk);

private:
    QByteArray m_method;
    QUrl m_url;
    QElapsedTimer m_time;
    bool m_isWritten = false;
};

} // namespace torvane

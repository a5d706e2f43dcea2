#pragma once

#include "Chain/CurlLibrary.h"

#include <QObject>

#include <memory>

namespace torvane {

class CurlPool;

/// The process's shared HTTPS session: its pool of connections and the TLS sessions that shorten the next handshake.
/// It is made at the first request and ends with the application object. Main thread only.
class CurlSession final : public QObject {
    Q_OBJECT

public:
    /// Null while there is no application object, whose loop drives everything.
    static CurlSession* instance();

    ~CurlSession() override;

    /// The pool that new transfers join.
    CurlPool& pool() { return *m_pool; }

    CURLSH* share() { return m_share; }

    /// New transfers get new connections. Transfers in flight keep theirs until they end.
    void dropPooledConnections();

private:
    CurlSession();

    CURLSH* m_share;
    CurlPool* m_pool;
};

} // namespace torvane

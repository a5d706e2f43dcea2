#include "Chain/CurlSession.h"

#include "Chain/CurlPool.h"

#include <QCoreApplication>

namespace torvane {

namespace {

CurlSession* g_session = nullptr;

} // namespace

CurlSession* CurlSession::instance() {
    if (!g_session && QCoreApplication::instance() && !QCoreApplication::closingDown()) {
        g_session = new CurlSession;
        // Before the loop's objects go, and before any static destructor.
        qAddPostRoutine([] {
            delete g_session;
            g_session = nullptr;
        });
    }
    return g_session;
}

CurlSession::CurlSession() {
    static const CURLcode global = curl().global_init(CURL_GLOBAL_DEFAULT);
    if (global != CURLE_OK)
        qFatal("libcurl does not start: %s", curl().easy_strerror(global));
    m_share = curl().share_init();
    Q_CHECK_PTR(m_share);
    // Each request has a handle of its own; without this each reconnection would be a full handshake.
    curl().share_setopt(m_share, CURLSHOPT_SHARE, CURL_LOCK_DATA_SSL_SESSION);
    m_pool = new CurlPool(this);
}

CurlSession::~CurlSession() {
    const QObjectList pools = children();
    qDeleteAll(pools); // The transfers in flight let go of the share.
    curl().share_cleanup(m_share);
}

void CurlSession::dropPooledConnections() {
    // libcurl cannot empty a pool: the pool goes, as soon as its last transfer has ended.
    CurlPool* retired = m_pool;
    m_pool = new CurlPool(this);
    if (retired->isIdle())
        retired->deleteLater();
    else
        connect(retired, &CurlPool::becameIdle, retired, &QObject::deleteLater);
}

} // namespace torvane

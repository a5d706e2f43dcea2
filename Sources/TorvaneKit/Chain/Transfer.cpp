#include "Chain/Transfer.h"

#include "Chain/CurlPool.h"
#include "Chain/CurlSession.h"
#include "Chain/FileSink.h"
#include "Chain/TrustStore.h"

#include <algorithm>

namespace torvane {

namespace {

constexpr qsizetype headLimit = 128 * 1024; // bytes

/// What arrived was no HTTP: libcurl takes it for HTTP/0.9, which it refuses, or cannot read the status line.
bool isNotHTTP(CURLcode code) {
    return code == CURLE_UNSUPPORTED_PROTOCOL || code == CURLE_WEIRD_SERVER_REPLY;
}

} // namespace

Transfer::Transfer(const Hop& hop)
    : m_hop(hop) {
    m_idleTimer.setSingleShot(true);
    connect(&m_idleTimer, &QTimer::timeout, this, &Transfer::checkIdleness);
}

Transfer::~Transfer() {
    if (m_pool)
        m_pool->remove(*this);
}

template <class Value>
void Transfer::set(CURLoption option, Value value) {
    const CURLcode code = curl().easy_setopt(m_easy.get(), option, value);
    if (m_setUp == CURLE_OK)
        m_setUp = code;
}

void Transfer::setUp() {
    set(CURLOPT_PRIVATE, static_cast<void*>(this));
    set(CURLOPT_ERRORBUFFER, m_errorText.data());
    set(CURLOPT_SHARE, CurlSession::instance()->share());
    // A resolver that never answers must not be waited for: by default its thread is joined when a transfer is removed,
    // with the main loop frozen meanwhile.
    set(CURLOPT_QUICK_EXIT, 1L);
    set(CURLOPT_NOSIGNAL, 1L); // libcurl then no longer guards against SIGPIPE: the program ignores it from its start.
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_FOLLOWLOCATION, 0L); // Each hop has trust of its own.
    // A time-out closes an HTTP/1.1 connection. An HTTP/2 one that died silently would stay and fail every later
    // request.
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    if (!m_hop.sink) // "" would offer all that libcurl was built with: more decoders to attack.
        set(CURLOPT_ACCEPT_ENCODING, "gzip");
    set(CURLOPT_WRITEFUNCTION, &Transfer::received);
    set(CURLOPT_WRITEDATA, static_cast<void*>(this));
    set(CURLOPT_HEADERFUNCTION, &Transfer::receivedHead);
    set(CURLOPT_HEADERDATA, static_cast<void*>(this));
    setUpRequest();
    setUpTrust();
    setUpHeaders();
}

void Transfer::setUpRequest() {
    const QByteArray url = m_hop.url.toEncoded(QUrl::RemoveFragment);
    set(CURLOPT_URL, url.constData());
    if (TrustStore::isLoopback(m_hop.url.host()))
        set(CURLOPT_NOPROXY, "*"); // What never leaves the machine needs no proxy.
    // 0 would mean none.
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(std::max<qint64>(1, m_hop.deadline.remainingTime())));
    if (m_hop.method == "GET")
        return;
    if (m_hop.method == "HEAD") {
        set(CURLOPT_NOBODY, 1L);
        return;
    }
    if (m_hop.method == "POST" || !m_hop.body.isEmpty()) {
        // Read from m_hop while the transfer runs. If a connection from the pool turns out to be closed before the
        // first byte of an answer, libcurl sends the request once more on a new one: harmless for calls that only read.
        set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(m_hop.body.size()));
        set(CURLOPT_POSTFIELDS, m_hop.body.constData());
    }
    set(CURLOPT_CUSTOMREQUEST, m_hop.method.constData());
}

void Transfer::setUpTrust() {
    // Connections and TLS sessions made with one trust are never reused for another: libcurl compares these options.
    const TrustStore::Trust trust = TrustStore::forURL(m_hop.url);
    set(CURLOPT_CAPATH, trust.folder.isEmpty() ? nullptr : trust.folder.constData());
    set(CURLOPT_CAINFO, trust.file.isEmpty() ? nullptr : trust.file.constData());
    if (trust.bundle.isEmpty())
        return;
    const curl_blob blob{.data = const_cast<char*>(trust.bundle.constData()), // Copied, never written.
                         .len = static_cast<std::size_t>(trust.bundle.size()),
                         .flags = CURL_BLOB_COPY};
    set(CURLOPT_CAINFO_BLOB, &blob);
}

void Transfer::setUpHeaders() {
    // Without these libcurl adds its own: it would wait for a go-ahead before longer bodies, and call them a form.
    QList<QByteArray> lines{"Expect:"};
    if (headerValue(m_hop.headers, "Content-Type").isNull())
        lines.append("Content-Type:");
    for (const auto& [name, value] : m_hop.headers)
        lines.append(value.isEmpty() ? name + ';' : name + ": " + value); // libcurl's way to send an empty one
    for (const QByteArray& line : lines) {
        curl_slist* extended = curl().slist_append(m_headers.get(), line.constData());
        Q_CHECK_PTR(extended);
        if (!m_headers)
            m_headers.reset(extended);
    }
    set(CURLOPT_HTTPHEADER, m_headers.get());
}

void Transfer::start(detail::Suspended awaiting) {
    m_awaiting = awaiting.task;
    CurlSession* session = CurlSession::instance();
    if (!session)
        return fail({TransportFailure::Cause::cancelled, "the application is ending"});
    m_easy.reset(curl().easy_init());
    Q_CHECK_PTR(m_easy.get());
    setUp();
    if (m_setUp != CURLE_OK)
        return fail({TransportFailure::Cause::invalidRequest, m_setUp, curl().easy_strerror(m_setUp)});
    if (m_hop.sink)
        connect(m_hop.sink, &FileSink::hasRoom, this, &Transfer::goOn);
    m_sinceActivity.start();
    m_idleTimer.start(m_hop.idleLimit);
    m_pool = &session->pool();
    m_pool->add(*this);
}

std::size_t Transfer::received(char* bytes, std::size_t size, std::size_t count, void* transfer) {
    auto& self = *static_cast<Transfer*>(transfer);
    self.m_sinceActivity.start();
    const auto length = static_cast<qsizetype>(size * count);
    if (self.m_hop.sink && self.isSuccess())
        return self.takeDown(QByteArrayView(bytes, length));
    // Decoded bytes: a small compressed body can be a large one.
    self.m_isTooLarge = length > self.m_hop.bodyLimit - self.m_answer.body.size();
    if (self.m_isTooLarge)
        return 0;
    self.m_answer.body.append(bytes, length);
    return size * count;
}

std::size_t Transfer::takeDown(QByteArrayView bytes) {
    const FileSink::Outcome outcome = m_hop.sink->take(bytes);
    m_isPaused = outcome == FileSink::Outcome::full;
    if (m_isPaused)
        return CURL_WRITEFUNC_PAUSE; // libcurl comes with the same bytes again.
    return outcome == FileSink::Outcome::taken ? static_cast<std::size_t>(bytes.size()) : 0;
}

void Transfer::goOn() {
    if (!m_isPaused || !m_pool)
        return;
    m_isPaused = false;
    m_sinceActivity.start(); // It was the disk that was waited for.
    if (curl().easy_pause(m_easy.get(), CURLPAUSE_CONT) == CURLE_OK)
        return;
    // libcurl does not end a transfer whose bytes are refused at this moment: it only says so.
    m_pool->remove(*this);
    fail(m_hop.sink->failure().value_or(TransportFailure(TransportFailure::Cause::connection, "cannot go on")));
}

bool Transfer::isSuccess() const {
    long status = 0;
    curl().easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    return status >= 200 && status <= 299;
}

std::size_t Transfer::receivedHead(char* bytes, std::size_t size, std::size_t count, void* transfer) {
    auto& self = *static_cast<Transfer*>(transfer);
    self.m_sinceActivity.start();
    const QByteArrayView line(bytes, static_cast<qsizetype>(size * count));
    if (line.startsWith("HTTP/"))
        self.m_head.clear(); // Another head: the one before was interim.
    self.m_isTooLarge = line.size() > headLimit - self.m_head.size();
    if (self.m_isTooLarge)
        return 0;
    self.m_head.append(line.data(), line.size());
    return size * count;
}

void Transfer::checkIdleness() {
    // libcurl's own low-speed rule averages over seconds and does not count headers: no idle limit. Restarting a timer
    // at every piece received would cost more than looking at the time once here.
    const std::chrono::milliseconds quiet(m_isPaused ? 0 : m_sinceActivity.elapsed());
    if (quiet < m_hop.idleLimit) {
        m_idleTimer.start(m_hop.idleLimit - quiet);
        return;
    }
    m_pool->remove(*this);
    CurlSession::instance()->dropPooledConnections();
    fail({TransportFailure::Cause::timedOut, "nothing came for too long"});
}

void Transfer::finish(CURLcode code) {
    m_pool = nullptr;
    long status = 0;
    curl().easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    if (isNotHTTP(code)) {
        m_answer = {};
        return end();
    }
    if (code == CURLE_OK) {
        m_answer.status = static_cast<int>(status);
        m_answer.headers = parseHead(m_head);
        return end();
    }
    if (m_hop.sink && m_hop.sink->failure())
        return fail(*m_hop.sink->failure());
    const bool isTimeOut = code == CURLE_OPERATION_TIMEDOUT;
    if (isTimeOut)
        CurlSession::instance()->dropPooledConnections();
    const auto cause = m_isTooLarge ? TransportFailure::Cause::tooLarge
                       : isTimeOut  ? TransportFailure::Cause::timedOut
                                    : TransportFailure::Cause::connection;
    const char* text = m_errorText.front() != '\0' ? m_errorText.data() : curl().easy_strerror(code);
    fail({cause, code, text});
}

void Transfer::abandon() {
    m_pool = nullptr;
    m_idleTimer.stop();
    m_easy.reset();
}

void Transfer::fail(const TransportFailure& failure) {
    m_failure = failure;
    end();
}

void Transfer::end() {
    m_pool = nullptr;
    m_idleTimer.stop();
    m_easy.reset(); // The handle lets go of the shared session now: nobody knows when the frame goes.
    // From the loop, where the resumed code may do anything: start requests, destroy this, end the application.
    QMetaObject::invokeMethod(
        this, [awaiting = m_awaiting] { awaiting->run(); }, Qt::QueuedConnection);
}

Answer Transfer::outcome() {
    if (m_failure)
        throw *m_failure;
    return std::move(m_answer);
}

} // namespace torvane

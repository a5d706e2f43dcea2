#pragma once

#include "Support/Async.h"

#include <QByteArray>
#include <QUrl>

#include <functional>

namespace torvane::Updates {

/// A file to be fetched.
struct FileRequest final {
    QUrl url;       // https only, also after every redirect
    int descriptor; // Open for writing, at its beginning; stays its owner's, who keeps it open until the task has gone.
    qint64 length;  // What the file must have, in bytes: more ends the download at the first byte too many.
    std::function<void(qint64 received)> progress{};
};

/// How updates reach this machine: injected, so that the framework knows nothing of the network. All of it over HTTPS,
/// with limits on stalls and on the whole. Failures are thrown, as std::exception whose text is for people; destroying
/// the task cancels. Main thread only.
class Download {
public:
    virtual ~Download() = default;

    /// Yields the body of a small document, fresh from its server, of at most `limit` bytes.
    virtual Task<QByteArray> document(QUrl url, qsizetype limit) = 0;

    /// Writes the body into the file. Ends when all of its length has been written; whether it is on the disk is for
    /// the caller to see to.
    virtual Task<> file(FileRequest request) = 0;
};

} // namespace torvane::Updates

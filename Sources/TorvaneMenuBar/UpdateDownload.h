#pragma once

#include "TorvaneUpdates/Download.h"

#include <QByteArray>

#include <exception>

namespace torvane {

/// Why something could not be fetched.
class DownloadFailure final : public std::exception {
public:
    explicit DownloadFailure(const QByteArray& text)
        : m_text(text) {}

    /// A sentence for people.
    const char* what() const noexcept override { return m_text.constData(); }

private:
    QByteArray m_text;
};

/// Updates by the program's own way to the network. What it throws is DownloadFailure.
class UpdateDownload final : public Updates::Download {
public:
    /// The document as its server has it now: nothing that is remembered here is used.
    Task<QByteArray> document(QUrl url, qsizetype limit) override;

    Task<> file(Updates::FileRequest request) override;
};

} // namespace torvane

#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QUrl>

#include <chrono>
#include <exception>

namespace torvane::Updates {

/// No feed is larger, in bytes.
inline constexpr qsizetype largestFeed = qsizetype{1024} * 1024;

/// No payload is larger, in bytes: many times what the program has.
inline constexpr qint64 largestPayload = qint64{256} * 1024 * 1024;

/// One version that a feed offers. Nothing in it is trusted before the payload's signature has been verified. Texts are
/// plain and fit for being shown; where the feed says nothing they are empty.
struct AppcastItem final {
    QString version;        // sparkle:version, on the item or its enclosure
    QString displayVersion; // sparkle:shortVersionString, else the version
    QUrl url{};             // of the payload, https
    qint64 length = 0;      // of the payload, bytes
    QByteArray signature{}; // of the payload, Ed25519 (RFC 8032): 64 bytes
    QString notes{};
    QUrl notesLink{}; // http or https
    bool isCritical = false;
    QString criticalBelow{};      // critical for older versions than this alone, where it is not empty
    bool isInformational = false; // there is nothing to install, only a link
    QUrl link{};                  // http or https
    QString channel{};            // empty: the one for everybody
    QString os{};
    QString minimumSystemVersion{};
    std::chrono::seconds phasedRolloutInterval{}; // 0: everybody at once
    QDateTime pubDate{};                          // invalid where the feed has none
    QString product{};                            // torvane:product
    QString architecture{};                       // torvane:architecture, as uname names it
};

/// A feed that cannot be read as a whole.
class AppcastFailure final : public std::exception {
public:
    explicit AppcastFailure(const QByteArray& text)
        : m_text(text) {}

    /// A sentence for people.
    const char* what() const noexcept override { return m_text.constData(); }

private:
    QByteArray m_text;
};

/// Reads a feed: RSS 2.0 in UTF-8 with the elements of Sparkle's namespace, and two of our own in
/// "urn:org.velisk.Torvane:appcast". Items that lack something, or have it in a form that means nothing, are left out.
/// Throws AppcastFailure for what is not well-formed or not RSS, has a document type declaration (the door to
/// expanding and outside entities), or passes a limit.
QList<AppcastItem> readAppcast(const QByteArray& bytes);

} // namespace torvane::Updates

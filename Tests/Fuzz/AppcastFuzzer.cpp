#include "TorvaneUpdates/Suitability.h"
#include "TorvaneUpdates/Version.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

using namespace torvane::Updates;

namespace {

void insist(bool holds) {
    if (!holds)
        std::abort();
}

bool isOfTheWeb(const QUrl& url) {
    return url.isEmpty() || url.scheme() == QLatin1String("https") || url.scheme() == QLatin1String("http");
}

bool turnsDirection(QChar c) {
    switch (c.direction()) {
    case QChar::DirLRE:
    case QChar::DirLRO:
    case QChar::DirRLE:
    case QChar::DirRLO:
    case QChar::DirPDF:
    case QChar::DirLRI:
    case QChar::DirRLI:
    case QChar::DirFSI:
    case QChar::DirPDI:
        return true;
    default:
        return false;
    }
}

bool isShown(const QString& text, qsizetype longest) {
    return text.size() <= longest + 1 && std::none_of(text.cbegin(), text.cend(), turnsDirection);
}

void check(const AppcastItem& item) {
    insist(!item.version.isEmpty() && isShown(item.displayVersion, 64) && isShown(item.notes, 20000));
    insist(isOfTheWeb(item.link) && isOfTheWeb(item.notesLink));
    insist(compareVersions(item.version, item.version) == 0);
    if (item.isInformational) {
        insist(!item.link.isEmpty());
        return;
    }
    insist(item.url.scheme() == QLatin1String("https") && !item.url.host().isEmpty());
    insist(item.length > 0 && item.length <= largestPayload && item.signature.size() == 64);
}

} // namespace

/// Any bytes as a feed: they are refused with a sentence, or each item is complete, and the best one is newer.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const QList<AppcastItem> items =
            readAppcast(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
        for (const AppcastItem& item : items)
            check(item);
        const Suitability to{.runningVersion = QStringLiteral("1.0"),
                             .product = QStringLiteral("org.velisk.Torvane"),
                             .system = {.version = QStringLiteral("6.1"), .architecture = QStringLiteral("x86_64")},
                             .now = QDateTime({2026, 11, 21}, {12, 0}, Qt::UTC),
                             .rolloutPlace = 0.5};
        const auto best = bestItem(items, to);
        insist(!best || compareVersions(best->version, to.runningVersion) > 0);
    } catch (const AppcastFailure& failure) {
        insist(QByteArrayView(failure.what()).startsWith("The update feed"));
    }
    return 0;
}

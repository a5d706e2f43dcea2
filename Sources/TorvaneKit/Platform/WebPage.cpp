#include "Platform/WebPage.h"

#include <QProcess>

using namespace Qt::StringLiterals;

namespace torvane {

bool isWebPage(const QUrl& url) {
    const bool isWeb = url.scheme() == "https"_L1 || url.scheme() == "http"_L1;
    return url.isValid() && isWeb && !url.host().isEmpty();
}

bool openWebPage(const QUrl& url) {
    // Encoded, it begins with its scheme and has no blanks: it cannot be taken for an option.
    return isWebPage(url) && QProcess::startDetached(u"xdg-open"_s, {url.toString(QUrl::FullyEncoded)});
}

} // namespace torvane

#include "Support/Notice.h"

#include <cstdio>

namespace torvane {

void notice(const QString& sentence) {
    // One call, so that the lines of several threads stay whole.
    std::fputs(qUtf8Printable(QStringLiteral("velisk: ") + sentence + QLatin1Char('\n')), stderr);
}

} // namespace torvane

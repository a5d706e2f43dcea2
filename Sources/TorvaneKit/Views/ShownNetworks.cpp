#include "Views/ShownNetworks.h"

#include <QLocale>

namespace torvane {

QString moreNetworks(qsizetype count) {
    const qsizetype more = count - mostShownNetworks;
    return more > 0 ? QStringLiteral("and %1 more").arg(QLocale().toString(more)) : QString();
}

} // namespace torvane

#include "TorvaneUpdates/Suitability.h"

#include "TorvaneUpdates/Architecture.h"
#include "TorvaneUpdates/Version.h"

#include <cmath>
#include <sys/utsname.h>

namespace torvane::Updates {

namespace {

constexpr double rolloutGroups = 7;

bool suitsMachine(const AppcastItem& item, const Suitability& to) {
    const bool suitsOS = item.os.isEmpty() || item.os.compare(QLatin1String("linux"), Qt::CaseInsensitive) == 0;
    const bool suitsArchitecture = item.architecture.isEmpty() || item.architecture == to.system.architecture;
    return suitsOS && suitsArchitecture && compareVersions(item.minimumSystemVersion, to.system.version) <= 0;
}

bool isHeldBack(const AppcastItem& item, const Suitability& to) {
    // Without an interval the date is none of our business: this machine's clock may be behind.
    if (!item.pubDate.isValid() || item.phasedRolloutInterval <= std::chrono::seconds::zero())
        return false;
    // In floating point: the feed's interval may be any number.
    const double group = std::floor(to.rolloutPlace * rolloutGroups);
    const double wait = group * static_cast<double>(item.phasedRolloutInterval.count());
    return static_cast<double>(item.pubDate.secsTo(to.now)) < wait;
}

bool isSkipped(const AppcastItem& item, const Suitability& to) {
    return !to.skippedVersion.isEmpty() && compareVersions(item.version, to.skippedVersion) <= 0;
}

bool suits(const AppcastItem& item, const Suitability& to) {
    const bool isOurs = item.product.isEmpty() || item.product == to.product;
    if (!isOurs || !item.channel.isEmpty() || !suitsMachine(item, to))
        return false;
    return item.isCritical || to.isAskedFor || (!isHeldBack(item, to) && !isSkipped(item, to));
}

} // namespace

System System::current() {
    utsname names{};
    if (::uname(&names) != 0)
        return {};
    return {.version = QString::fromLocal8Bit(names.release), .architecture = QString::fromLatin1(targetArchitecture)};
}

std::optional<AppcastItem> bestItem(const QList<AppcastItem>& items, const Suitability& to) {
    std::optional<AppcastItem> best;
    for (AppcastItem item : items) {
        item.isCritical = item.isCritical &&
                          (item.criticalBelow.isEmpty() || compareVersions(to.runningVersion, item.criticalBelow) < 0);
        const QString& mark = best ? best->version : to.runningVersion;
        if (compareVersions(item.version, mark) > 0 && suits(item, to))
            best = item;
    }
    return best;
}

} // namespace torvane::Updates

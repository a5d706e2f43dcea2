#include "Badge/BadgeLook.h"

#include "Model/Format.h"
#include "Model/GasLevel.h"
#include "Views/TextRun.h"

#include <QLocale>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr qsizetype longestBesideMark = 24;

/// Relays send what they like, and panels show it all.
QString line(const QString& text) {
    return TextRun::cut(text).simplified();
}

QString levelWord(const Snapshot& snapshot, const BadgeChain& chain) {
    if (chain.isEthereum())
        return word(gasLevel(snapshot.gas.baseFee));
    const L2Entry* network = findL2(chain.title(), snapshot.l2);
    return network ? line(network->status) : u"Unavailable"_s;
}

/// With its unit: "12.3 gwei", "$0.79 a transfer". A Layer 2 network's figure has its own.
QString explained(const QString& figure, const AppSettings& settings) {
    if (!settings.badgeChain->isEthereum())
        return figure;
    return figure + (settings.denom == Denomination::gwei ? " gwei"_L1 : " a transfer"_L1);
}

QDate localDay(const QDateTime& time) {
    return time.toLocalTime().date();
}

/// Hours and minutes as the user writes them. The locale of no country writes seconds too.
QString clockTime(const QDateTime& time) {
    const QLocale locale;
    const QTime local = time.toLocalTime().time();
    return locale == QLocale::c() ? local.toString(u"HH:mm"_s) : locale.toString(local, QLocale::ShortFormat);
}

/// The locale of no country writes months in words.
QString calendarDay(const QDateTime& time) {
    const QLocale locale;
    const QDate day = localDay(time);
    return locale == QLocale::c() ? day.toString(Qt::ISODate) : locale.toString(day, QLocale::ShortFormat);
}

/// The time of this day, or day and time of another one.
QString moment(const QDateTime& time, const QDateTime& now) {
    const bool isToday = localDay(time) == localDay(now);
    return isToday ? clockTime(time) : calendarDay(time) + u' ' + clockTime(time);
}

bool isOld(const QDateTime& lastUpdated, const QDateTime& now) {
    return lastUpdated.addDuration(badgeFreshness) < now;
}

QStringList age(const std::optional<QDateTime>& lastUpdated, const QDateTime& now) {
    if (!lastUpdated || !isOld(*lastUpdated, now))
        return {};
    return {u"as of "_s + moment(*lastUpdated, now)};
}

} // namespace

BadgePicture BadgePicture::besideMark() const {
    BadgePicture picture = *this;
    if (figure.size() > longestBesideMark)
        picture.figure.clear();
    return picture;
}

QString BadgeLook::name() const {
    return line(picture.icon.chain);
}

QString BadgeLook::title() const {
    return detail.isEmpty() ? name() : name() + ": "_L1 + detail;
}

BadgeLook badgeLook(const std::optional<Snapshot>& snapshot, const std::optional<QDateTime>& lastUpdated,
                    const AppSettings& settings, const QDateTime& now) {
    const BadgeChain& chain = settings.badgeChain;
    BadgePicture picture{MenuBarLabel::badgeIcon(snapshot, settings), {}, settings.menuNumber, {}};
    if (!snapshot)
        return {picture, u"No figures yet"_s};
    picture.tag = line(Format::badgeTag(chain, snapshot->l2).value_or(QString()));
    picture.figure = MenuBarLabel::figureText(snapshot, settings).value_or(QString());
    // Whoever switched the figure off still finds it in the tooltip.
    const QString figure = Format::badgeValue(chain, snapshot->gas, snapshot->l2, settings.badgeSource, settings.denom,
                                              snapshot->price.eth);
    const QStringList words{explained(figure, settings), levelWord(*snapshot, chain)};
    return {picture, (words + age(lastUpdated, now)).join(u" · "_s)};
}

std::optional<QDateTime> nextAge(const QDateTime& lastUpdated, const QDateTime& now) {
    if (!isOld(lastUpdated, now))
        return lastUpdated.addDuration(badgeFreshness).addMSecs(1);
    if (localDay(lastUpdated) == localDay(now))
        return localDay(now).addDays(1).startOfDay();
    return std::nullopt;
}

} // namespace torvane

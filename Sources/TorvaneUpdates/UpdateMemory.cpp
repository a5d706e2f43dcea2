#include "TorvaneUpdates/UpdateMemory.h"

#include <QRandomGenerator>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane::Updates {

namespace {

const QString checksByItselfKey = u"automaticallyChecksForUpdates"_s;
const QString lastCheckKey = u"lastUpdateCheck"_s;
const QString skippedKey = u"skippedUpdate"_s;
const QString announcedKey = u"announcedUpdate"_s;
const QString rolloutKey = u"updateRollout"_s;

constexpr qint64 rolloutPositions = 1'000'000;

} // namespace

bool UpdateMemory::checksByItself() const {
    return m_defaults.boolean(checksByItselfKey).value_or(true);
}

void UpdateMemory::setChecksByItself(bool does) const {
    m_defaults.set(checksByItselfKey, does);
}

std::chrono::milliseconds UpdateMemory::untilNextCheck(const QDateTime& now, std::chrono::seconds interval) const {
    const QString stored = m_defaults.string(lastCheckKey).value_or(QString());
    const QDateTime last = QDateTime::fromString(stored, Qt::ISODate);
    if (!last.isValid())
        return std::chrono::milliseconds(0);
    const std::chrono::milliseconds passed(last.msecsTo(now));
    if (passed.count() < 0)
        noteCheck(now);
    const std::chrono::milliseconds whole(interval);
    return std::clamp(whole - std::max(passed, std::chrono::milliseconds(0)), std::chrono::milliseconds(0), whole);
}

void UpdateMemory::noteCheck(const QDateTime& now) const {
    m_defaults.set(lastCheckKey, now.toUTC().toString(Qt::ISODate));
}

QString UpdateMemory::skippedVersion() const {
    return m_defaults.string(skippedKey).value_or(QString());
}

void UpdateMemory::skip(const QString& version) const {
    m_defaults.set(skippedKey, version);
}

QString UpdateMemory::announcedVersion() const {
    return m_defaults.string(announcedKey).value_or(QString());
}

void UpdateMemory::noteAnnounced(const QString& version) const {
    m_defaults.set(announcedKey, version);
}

double UpdateMemory::rolloutPosition() const {
    std::optional<qint64> position = m_defaults.integer(rolloutKey);
    if (!position || *position < 0 || *position >= rolloutPositions) {
        position = QRandomGenerator::global()->bounded(rolloutPositions);
        m_defaults.set(rolloutKey, *position);
    }
    return static_cast<double>(*position) / static_cast<double>(rolloutPositions);
}

} // namespace torvane::Updates

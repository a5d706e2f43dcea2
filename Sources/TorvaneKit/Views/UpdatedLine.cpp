#include "Views/UpdatedLine.h"

#include "Support/Clock.h"
#include "Views/PopoverText.h"

#include <algorithm>
#include <chrono>

namespace torvane {

namespace {

constexpr int lineHeight = 14;

/// A day: where the clock was set back, the age is far away, and further than a timer reaches.
constexpr qint64 longestWaitMs = 86400000;

} // namespace

UpdatedLine::UpdatedLine(QWidget* parent)
    : TextLine({Fonts::sans(10.5, QFont::Medium), Palette::ink3, lineHeight}, {}, parent)
    , m_nextAge(new QTimer(this)) {
    m_nextAge->setSingleShot(true);
    // A coarse timer may fire early, before there is anything new to say, and would have to be set again.
    m_nextAge->setTimerType(Qt::PreciseTimer);
    connect(m_nextAge, &QTimer::timeout, this, &UpdatedLine::showAge);
    showAge();
}

void UpdatedLine::setTime(const std::optional<QDateTime>& lastUpdated) {
    m_lastUpdated = lastUpdated;
    showAge();
}

void UpdatedLine::showEvent(QShowEvent* event) {
    showAge();
    TextLine::showEvent(event);
}

void UpdatedLine::hideEvent(QHideEvent* event) {
    m_nextAge->stop();
    TextLine::hideEvent(event);
}

void UpdatedLine::showAge() {
    const QDateTime now = Clock::now();
    setText(QStringLiteral("Updated ") + updatedText(m_lastUpdated, now));
    setColor(isOld(m_lastUpdated, now) ? always(Palette::warn) : Palette::ink3);
    if (m_lastUpdated && isVisible())
        m_nextAge->start(std::chrono::milliseconds(std::min(untilNextAge(*m_lastUpdated, now), longestWaitMs)));
    else
        m_nextAge->stop();
}

} // namespace torvane

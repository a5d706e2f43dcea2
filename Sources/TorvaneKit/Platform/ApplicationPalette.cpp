#include "Platform/ApplicationPalette.h"

#include <QEvent>
#include <QGuiApplication>
#include <QScopedValueRollback>

namespace torvane {

namespace {

constexpr int middleLightness = 128;

bool hasDarkWindows(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightness() < middleLightness;
}

/// Qt keeps still about a change of the desktop's palette where ours covers every colour. So one stays the desktop's,
/// which no widget of ours shows: it is for the striped lines of lists that are disabled.
bool isLeftToTheDesktop(QPalette::ColorGroup group, QPalette::ColorRole role) {
    return group == QPalette::Disabled && role == QPalette::AlternateBase;
}

QPalette withoutWhatIsLeft(const QPalette& palette) {
    QPalette own;
    for (int group = 0; group < QPalette::NColorGroups; ++group) {
        for (int role = 0; role < QPalette::NColorRoles; ++role) {
            const auto theGroup = static_cast<QPalette::ColorGroup>(group);
            const auto theRole = static_cast<QPalette::ColorRole>(role);
            if (palette.isBrushSet(theGroup, theRole) && !isLeftToTheDesktop(theGroup, theRole))
                own.setBrush(theGroup, theRole, palette.brush(theGroup, theRole));
        }
    }
    return own;
}

} // namespace

ApplicationPalette::ApplicationPalette(QObject* parent)
    : QObject(parent)
    , m_desktopIsDark(hasDarkWindows(QGuiApplication::palette())) {
    QCoreApplication::instance()->installEventFilter(this);
}

ApplicationPalette::~ApplicationPalette() {
    if (m_own)
        apply({});
}

void ApplicationPalette::set(const QPalette& palette) {
    m_own = withoutWhatIsLeft(palette);
    apply(*m_own);
}

bool ApplicationPalette::eventFilter(QObject* watched, QEvent* event) {
    // The application hears of it within the change itself, its windows, who come through here as well, after it.
    const bool isChange = event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance();
    if (isChange && !m_isApplying)
        readSoon();
    return false;
}

/// Not at once: Qt is in the middle of telling everybody.
void ApplicationPalette::readSoon() {
    if (m_willRead)
        return;
    m_willRead = true;
    QMetaObject::invokeMethod(this, &ApplicationPalette::read, Qt::QueuedConnection);
}

/// The desktop's palette can be read only while none covers it. Widgets are painted later, with the one they had.
void ApplicationPalette::read() {
    m_willRead = false;
    if (m_own)
        apply({});
    const bool isDark = hasDarkWindows(QGuiApplication::palette());
    if (m_own)
        apply(*m_own);
    if (isDark == m_desktopIsDark)
        return;
    m_desktopIsDark = isDark;
    Q_EMIT desktopIsDarkChanged(isDark);
}

void ApplicationPalette::apply(const QPalette& palette) {
    const QScopedValueRollback applying(m_isApplying, true);
    QGuiApplication::setPalette(palette);
}

} // namespace torvane

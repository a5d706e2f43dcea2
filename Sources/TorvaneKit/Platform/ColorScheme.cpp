#include "Platform/ColorScheme.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace torvane {

namespace {

constexpr auto portalService = "org.freedesktop.portal.Desktop"_L1;
constexpr auto portalPath = "/org/freedesktop/portal/desktop"_L1;
constexpr auto settingsInterface = "org.freedesktop.portal.Settings"_L1;
constexpr auto appearanceGroup = "org.freedesktop.appearance"_L1;
constexpr auto colorSchemeKey = "color-scheme"_L1;

/// How long an earlier answer counts while the portal owes a new one.
constexpr auto patience = 2s;

/// Read answers with a variant inside a variant, the signal carries a single one. A number that we do not know is no
/// preference, as the portal's documentation asks for.
ColorPreference preferenceFrom(QVariant value) {
    while (value.metaType() == QMetaType::fromType<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    if (value.metaType() != QMetaType::fromType<uint>())
        return ColorPreference::none;
    const auto preference = static_cast<ColorPreference>(value.toUInt());
    const bool isKnown = preference == ColorPreference::dark || preference == ColorPreference::light;
    return isKnown ? preference : ColorPreference::none;
}

} // namespace

ColorScheme::ColorScheme(const QDBusConnection& bus, const ApplicationPalette& palette, QObject* parent)
    : QObject(parent)
    , m_bus(bus)
    , m_palette(palette)
    , m_portals(portalService, bus, QDBusServiceWatcher::WatchForRegistration)
    , m_announced(palette.desktopIsDark()) {
    m_patience.setSingleShot(true);
    connect(&m_patience, &QTimer::timeout, this, [this] { setPreference(ColorPreference::none); });
    connect(&palette, &ApplicationPalette::desktopIsDarkChanged, this, &ColorScheme::announceChange);
    if (!m_bus.isConnected())
        return;
    connect(&m_portals, &QDBusServiceWatcher::serviceRegistered, this, &ColorScheme::ask);
    // By path, not by the service's name: for a name Qt asks for the owner, and waits. The bus itself holds back the
    // portal's many other settings.
    m_bus.connect(QString(), portalPath, settingsInterface, u"SettingChanged"_s, {appearanceGroup, colorSchemeKey},
                  QString(), this, SLOT(settingChanged(QDBusMessage)));
    ask();
}

ColorScheme::~ColorScheme() = default;

bool ColorScheme::isDark() const {
    if (m_preference == ColorPreference::none)
        return m_palette.desktopIsDark();
    return m_preference == ColorPreference::dark;
}

/// As a message: to a slot that takes a variant Qt connects only once some other thread of its has registered the type.
void ColorScheme::settingChanged(const QDBusMessage& signal) {
    if (signal.signature() != "ssv"_L1)
        return;
    m_question.reset(); // Its answer would say the same.
    setPreference(preferenceFrom(signal.arguments().constLast()));
}

/// A portal may need long to start, at a login above all: its answer is heard whenever it comes.
void ColorScheme::ask() {
    QDBusMessage call = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface, u"Read"_s);
    call.setArguments({QString(appearanceGroup), QString(colorSchemeKey)});
    m_question = std::make_unique<QDBusPendingCallWatcher>(m_bus.asyncCall(call));
    connect(m_question.get(), &QDBusPendingCallWatcher::finished, this, &ColorScheme::answered);
    if (m_preference != ColorPreference::none)
        m_patience.start(patience);
}

void ColorScheme::answered() {
    const QDBusPendingReply<QDBusVariant> reply = *m_question;
    const QVariant value = reply.isError() ? QVariant() : QVariant::fromValue(reply.value());
    m_question.release()->deleteLater(); // It is telling us just now.
    setPreference(preferenceFrom(value));
}

void ColorScheme::setPreference(ColorPreference preference) {
    m_patience.stop();
    if (std::exchange(m_preference, preference) != preference)
        Q_EMIT preferenceChanged();
    announceChange();
}

void ColorScheme::announceChange() {
    if (m_announced == isDark())
        return;
    m_announced = isDark();
    Q_EMIT isDarkChanged(m_announced);
}

} // namespace torvane

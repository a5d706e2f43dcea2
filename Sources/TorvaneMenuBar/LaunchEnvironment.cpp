#include "LaunchEnvironment.h"

#include <QtGlobal>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr auto platformVariable = "QT_QPA_PLATFORM";
constexpr auto tokenVariable = "XDG_ACTIVATION_TOKEN";

bool offersBoth() {
    return !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") && !qEnvironmentVariableIsEmpty("DISPLAY");
}

} // namespace

X11Preference::X11Preference()
    : m_isOurs(offersBoth() && !qEnvironmentVariableIsSet(platformVariable)) {
    if (m_isOurs)
        qputenv(platformVariable, "xcb;wayland");
}

X11Preference::~X11Preference() {
    if (m_isOurs)
        qunsetenv(platformVariable);
}

ActivationToken::ActivationToken(const QString& token, const QString& platform)
    : m_isOffered(!token.isEmpty() && platform.startsWith("wayland"_L1)) {
    if (m_isOffered)
        qputenv(tokenVariable, token.toUtf8());
}

ActivationToken::~ActivationToken() {
    if (m_isOffered)
        qunsetenv(tokenVariable); // A token is good once, and Qt leaves it there where it has nothing to activate.
}

} // namespace torvane

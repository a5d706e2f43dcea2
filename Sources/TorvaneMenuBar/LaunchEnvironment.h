#pragma once

#include <QString>

namespace torvane {

/// Under Wayland no program can say where its windows go, but one that takes part through X can (XWayland): where both
/// are offered, X is chosen unless the user has chosen already. Qt reads the choice when the QApplication is made; it
/// ends with this object, since it is not for the programs that this one starts.
class X11Preference final {
public:
    X11Preference();
    ~X11Preference();
    Q_DISABLE_COPY_MOVE(X11Preference)

private:
    bool m_isOurs;
};

/// A launcher's leave to come to the front (xdg-activation): Qt's windows on Wayland take it from the environment when
/// they ask to be activated. While it lives, that has it; elsewhere nobody would take it.
class ActivationToken final {
public:
    /// `platform` is Qt's name of it. An empty token is none.
    ActivationToken(const QString& token, const QString& platform);
    ~ActivationToken();
    Q_DISABLE_COPY_MOVE(ActivationToken)

private:
    bool m_isOffered;
};

} // namespace torvane

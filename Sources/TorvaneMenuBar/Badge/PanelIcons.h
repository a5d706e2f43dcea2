#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace torvane {

/// Pictures as files below $XDG_RUNTIME_DIR, for panels that load icons by their names. Panels keep what they loaded
/// under a name, so that each picture has a name of its own. Nothing is synchronised to a disk: the files end with
/// the session.
class PanelIcons final {
public:
    PanelIcons();

    /// What panels take for the theme's root.
    QString folder() const { return m_folder; }

    /// The icon's name, with this picture in a file behind it; none where it cannot be written. The suffix ends the
    /// file's name and says what it is, as in "-symbolic.svg". The picture before stays, since a panel may be reading
    /// it; earlier ones go.
    std::optional<QString> put(const QByteArray& picture, QLatin1StringView suffix);

private:
    void removeOthers() const;

    const QString m_folder; // Empty without a place for it.
    QString m_current;
    QString m_previous;
};

} // namespace torvane

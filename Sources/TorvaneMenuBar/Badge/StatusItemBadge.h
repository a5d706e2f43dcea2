#pragma once

#include "Platform/StatusNotifierItem.h"

#include <QObject>

namespace torvane {

/// What the badge says. The figure is what fits into a panel, such as "12.3"; empty, the mark stands alone. The title
/// says of what, the detail says the figure in words with its unit: tooltips and screen readers have both.
struct BadgeLook {
    QString figure;
    QString title;
    QString detail;

    bool operator==(const BadgeLook&) const = default;
};

/// The badge on panels that show square icons: the mark with the figure stacked below it.
class StatusItemBadge final : public QObject {
    Q_OBJECT

public:
    /// Needs a QGuiApplication, for the fonts. Without a bus the badge is not seen.
    explicit StatusItemBadge(const QDBusConnection& bus, QObject* parent = nullptr);

    /// Draws what changed and tells the panel; an equal look costs neither.
    void show(const BadgeLook& look);

    /// The pictures offered to the panel, one for each usual size of icons in pixels.
    const QList<QImage>& images() const { return m_shown.icons; }

    bool isRegistered() const { return m_item.isRegistered(); }

Q_SIGNALS:
    /// The badge was clicked, at the position that the panel states.
    void activated(QPoint position);
    void refreshRequested();
    void quitRequested();

private:
    void draw(const QString& figure);

    BadgeLook m_look;
    NotifierLook m_shown;
    StatusNotifierItem m_item;
};

} // namespace torvane

#pragma once

#include "Badge/BadgeSurface.h"
#include "Platform/SystemTrayWindow.h"

#include <QTimer>

class QMenu;

namespace torvane {

/// The badge as a window in the X system tray: the figure beside the mark where the tray gives the room, else as in a
/// square. Its menu and its tooltip are our own.
class TrayWindowBadge final : public BadgeSurface {
    Q_OBJECT

public:
    /// Needs a QApplication and a tray that is present.
    explicit TrayWindowBadge(const SystemTray& tray);
    ~TrayWindowBadge() override;

    void show(const BadgeLook& look, const BadgeInk& ink) override;

private:
    void draw();
    QImage badge(QSize size) const;
    double scale() const;
    QSize wanted() const;
    void pressed(Qt::MouseButton button, QPoint position);
    void openMenu();
    void showToolTip() const;

    const SystemTray& m_tray;
    BadgeLook m_look;
    BadgeInk m_ink;
    std::optional<SystemTrayWindow> m_window;
    std::unique_ptr<QMenu> m_menu;
    QTimer m_hover;
};

} // namespace torvane

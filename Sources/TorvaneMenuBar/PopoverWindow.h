#pragma once

#include "Platform/X11Properties.h"

#include <QWidget>

#include <memory>

class QScrollArea;
class QScrollBar;

namespace torvane {

/// Why a popover closed by itself: its user typed Escape, or turned to another window, of ours or of another program.
enum class PopoverEnd { escape, ownWindow, foreignWindow };

/// The panel at the badge: a frame around a content that scrolls when the screen is too small for it. It has the
/// content's size, follows it, and stays inside its screen's work area. What comes to lie under a resting pointer is
/// hovered. The window goes when its user turns away from
/// it or types Escape; it tells, and the owner deletes it.
class PopoverWindow final : public QWidget {
    Q_OBJECT

public:
    /// The badge and its screen's work area as PopoverPlacement has them.
    PopoverWindow(std::unique_ptr<QWidget> content, const QRect& badge, const QRect& area, const X11::Desktop& desktop);

    /// Shows the window and gives it the keyboard.
    void open();

    /// Brings the open window before the others and gives it the keyboard.
    void bringToFront();

Q_SIGNALS:
    void ended(PopoverEnd end);

protected:
    bool event(QEvent* event) override;
    bool nativeEvent(const QByteArray& eventType, void* message, qintptr* result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QSize contentSize() const;
    void fit();
    void addBar();
    void lookBelowPointerSoon();
    void lookBelowPointer();

    const QRect m_badge;
    const QRect m_area;
    QScrollArea* m_scroller;
    QScrollBar* m_bar = nullptr; // None before it is needed.
    bool m_isLookDue = false;
};

} // namespace torvane

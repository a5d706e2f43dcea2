#pragma once

#include <QList>
#include <QRect>
#include <QRegion>
#include <QString>
#include <qwindowdefs.h>

/// What an X server's clients tell each other through properties: the Extended Window Manager Hints, and KWin's for
/// blur. Positions and sizes are the server's own pixels. On other platforms nothing is there and nothing happens.
namespace torvane::X11 {

/// Whether Qt draws on an X server, one inside a Wayland session included.
bool isRunning();

/// Whether the server always knows where the pointer is. Inside a Wayland session it does not: there it hears of the
/// pointer while that is over windows of its own clients, and panels seldom are such.
bool knowsThePointer();

/// Who puts windows together on the screen. Without a compositor, transparent parts of windows are black.
struct Compositing {
    bool isRunning = false;
    bool blursBehind = false; ///< blurs what lies behind a window, where that asks for it

    bool operator==(const Compositing&) const = default;
};

Compositing compositing();

/// What a window that is about to come up must know of the desktop.
struct Desktop {
    QString windowManagerName; ///< as the window manager calls itself; empty without one
    Compositing compositing;
};

/// Asks the server at once and takes its answers when they are wanted: who has other work to do in between waits for
/// nothing.
class DesktopQuestion final {
public:
    DesktopQuestion();
    ~DesktopQuestion();
    Q_DISABLE_COPY_MOVE(DesktopQuestion)

    /// Once.
    Desktop answer();

private:
    QList<unsigned int> m_requests; // By their numbers in the connection, in the order of the answers.
};

/// A panel, or what else keeps an edge of a screen for itself.
struct Dock {
    QRect geometry;
    Qt::Edge edge;

    bool operator==(const Dock&) const = default;
};

QList<Dock> docks();

/// Keeps the window out of taskbars and pagers. Has an effect before the window is first shown.
void skipTaskbarAndPager(WId window);

/// Whether an event of Qt's connection, as native event filters get it, tells that the state of a window has changed.
bool tellsOfWindowState(const void* event);

/// Asks for blur behind this part of the window; for none when it is empty.
void setBlurBehind(WId window, const QRegion& part);

} // namespace torvane::X11

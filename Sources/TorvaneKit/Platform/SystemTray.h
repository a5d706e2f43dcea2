#pragma once

#include "Platform/XCB.h"

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QList>
#include <QObject>

#include <optional>

namespace torvane {

/// The system tray of an X display: the window that owns its manager selection, by freedesktop.org's System Tray
/// Protocol 0.3. It may come late, go, and come back. Elsewhere than on X11 there is none.
class SystemTray final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    explicit SystemTray(QObject* parent = nullptr);
    ~SystemTray() override;

    /// Null elsewhere than on X11.
    xcb_connection_t* connection() const { return m_connection; }
    const xcb_screen_t* screen() const { return m_screen; }

    bool isPresent() const { return m_manager != XCB_NONE; }

    /// The tray's own window; 0 while there is none.
    xcb_window_t manager() const { return m_manager; }

    /// The visual that the tray wants of its icons, when it is one that can be seen through.
    std::optional<xcb_visualid_t> translucentVisual() const;

    /// The colour of the panel's own texts, where it states one.
    std::optional<QColor> foreground() const { return m_foreground; }

    bool isVertical() const { return m_isVertical; }

    /// Asks the tray to take a window in.
    void dock(xcb_window_t window) const;

Q_SIGNALS:
    /// Another tray, or none any more.
    void managerChanged();

    /// Its foreground or its orientation.
    void lookChanged();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void findManager();
    void readLook();
    QList<quint32> managerProperty(xcb_atom_t name, xcb_atom_t type) const;

    xcb_connection_t* m_connection = nullptr;
    const xcb_screen_t* m_screen = nullptr;
    xcb_atom_t m_selection = XCB_NONE;
    xcb_atom_t m_managerMessage = XCB_NONE;
    xcb_atom_t m_colors = XCB_NONE;
    xcb_atom_t m_orientation = XCB_NONE;
    xcb_window_t m_manager = XCB_NONE;
    std::optional<QColor> m_foreground;
    bool m_isVertical = false;
};

} // namespace torvane

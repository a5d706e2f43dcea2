#pragma once

#include "Platform/SystemTray.h"

#include <QImage>
#include <QPoint>
#include <QRect>

namespace torvane {

/// A window of ours inside the X system tray (XEmbed 0.5). It may be wider than high; what it gets is the tray's to
/// decide. Sizes and positions are pixels of the screen.
class SystemTrayWindow final : public QObject, private QAbstractNativeEventFilter {
    Q_OBJECT

public:
    /// Docks into the present tray, asking for this size.
    SystemTrayWindow(const SystemTray& tray, QSize wanted, QObject* parent = nullptr);
    ~SystemTrayWindow() override;

    /// Asks for another size.
    void request(QSize wanted);

    /// The size that the tray gives at present.
    QSize size() const { return m_size; }

    /// What is to be seen, from the upper left corner; see-through where the picture is.
    void show(const QImage& image);

    /// Where it lies on the screen; null when the server does not say.
    QRect geometry() const;

Q_SIGNALS:
    void resized();
    void pressed(Qt::MouseButton button, QPoint position);
    void entered();
    void left();

private:
    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
    void create(std::optional<xcb_visualid_t> translucent);
    void describe();
    void handle(const xcb_generic_event_t& event);
    void configured(const xcb_configure_notify_event_t& event);
    void clicked(const xcb_button_press_event_t& event);
    void paint();
    QImage background() const;

    const SystemTray& m_tray;
    xcb_connection_t* const m_connection;
    xcb_window_t m_window = XCB_NONE;
    xcb_colormap_t m_colormap = XCB_NONE;
    xcb_gcontext_t m_graphics = XCB_NONE;
    quint8 m_depth = 0;
    QSize m_wanted;
    QSize m_size;
    QImage m_image;
};

} // namespace torvane

#include "Platform/SystemTrayWindow.h"

#include <QGuiApplication>
#include <QPainter>

#include <array>

namespace torvane {

using XCB::atom;
using XCB::owned;

namespace {

template <class Event>
const Event& as(const xcb_generic_event_t& event) {
    return reinterpret_cast<const Event&>(event);
}

constexpr quint32 wantedEvents = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                 XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_ENTER_WINDOW |
                                 XCB_EVENT_MASK_LEAVE_WINDOW;

/// As the embedding side reads them: the protocol's version, and that the window wants to be seen.
constexpr std::array<quint32, 2> embedding{0, 1};

/// WM_SIZE_HINTS of the ICCCM: trays on GTK take the least size for the wanted one.
std::array<quint32, 18> sizeHints(QSize size) {
    constexpr quint32 minimumSize = 1 << 4;
    constexpr quint32 baseSize = 1 << 8;
    const auto width = static_cast<quint32>(size.width());
    const auto height = static_cast<quint32>(size.height());
    std::array<quint32, 18> hints{};
    hints[0] = minimumSize | baseSize;
    hints[5] = hints[15] = width;
    hints[6] = hints[16] = height;
    return hints;
}

std::optional<Qt::MouseButton> button(xcb_button_t number) {
    switch (number) {
    case 1:
        return Qt::LeftButton;
    case 2:
        return Qt::MiddleButton;
    case 3:
        return Qt::RightButton;
    default:
        return std::nullopt; // The wheel.
    }
}

} // namespace

SystemTrayWindow::SystemTrayWindow(const SystemTray& tray, QSize wanted, QObject* parent)
    : QObject(parent)
    , m_tray(tray)
    , m_connection(tray.connection())
    , m_wanted(wanted)
    , m_size(wanted) {
    create(tray.translucentVisual());
    describe();
    qGuiApp->installNativeEventFilter(this);
    tray.dock(m_window);
}

SystemTrayWindow::~SystemTrayWindow() {
    if (m_window != XCB_NONE)
        xcb_destroy_window(m_connection, m_window);
    if (m_graphics != XCB_NONE)
        xcb_free_gc(m_connection, m_graphics);
    if (m_colormap != XCB_NONE)
        xcb_free_colormap(m_connection, m_colormap);
    xcb_flush(m_connection);
}

/// In a tray that cannot blend, the window shows its parent's background, and pictures are laid upon that.
void SystemTrayWindow::create(std::optional<xcb_visualid_t> translucent) {
    const xcb_screen_t& screen = *m_tray.screen();
    const xcb_visualid_t visual = translucent.value_or(screen.root_visual);
    m_depth = translucent ? 32 : screen.root_depth;
    m_colormap = xcb_generate_id(m_connection);
    xcb_create_colormap(m_connection, XCB_COLORMAP_ALLOC_NONE, m_colormap, screen.root, visual);
    m_window = xcb_generate_id(m_connection);
    const std::array<quint32, 4> values{translucent ? XCB_BACK_PIXMAP_NONE : XCB_BACK_PIXMAP_PARENT_RELATIVE, 0,
                                        wantedEvents, m_colormap};
    xcb_create_window(m_connection, m_depth, m_window, screen.root, 0, 0, static_cast<quint16>(m_wanted.width()),
                      static_cast<quint16>(m_wanted.height()), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP, values.data());
    m_graphics = xcb_generate_id(m_connection);
    xcb_create_gc(m_connection, m_graphics, m_window, 0, nullptr);
}

void SystemTrayWindow::describe() {
    const auto set = [this](xcb_atom_t name, xcb_atom_t type, quint8 format, const auto& values) {
        xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, name, type, format,
                            static_cast<quint32>(values.size()), values.data());
    };
    // Trays remember their icons by the name and the class.
    const QByteArray name = QGuiApplication::applicationName().toUtf8();
    set(atom("_NET_WM_NAME"), atom("UTF8_STRING"), 8, name);
    set(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8, QByteArray(name + '\0' + name + '\0'));
    set(atom("_XEMBED_INFO"), atom("_XEMBED_INFO"), 32, embedding);
    set(XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS, 32, sizeHints(m_wanted));
}

void SystemTrayWindow::request(QSize wanted) {
    if (wanted == m_wanted || m_window == XCB_NONE)
        return;
    m_wanted = wanted;
    const auto hints = sizeHints(wanted);
    xcb_change_property(m_connection, XCB_PROP_MODE_REPLACE, m_window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                        32, static_cast<quint32>(hints.size()), hints.data());
    const std::array<quint32, 2> values{static_cast<quint32>(wanted.width()), static_cast<quint32>(wanted.height())};
    xcb_configure_window(m_connection, m_window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values.data());
    xcb_flush(m_connection);
}

void SystemTrayWindow::show(const QImage& image) {
    m_image = image;
    paint();
}

QRect SystemTrayWindow::geometry() const {
    if (m_window == XCB_NONE)
        return {};
    const auto cookie = xcb_translate_coordinates(m_connection, m_window, m_tray.screen()->root, 0, 0);
    const auto reply = owned(xcb_translate_coordinates_reply(m_connection, cookie, nullptr));
    return reply ? QRect(QPoint(reply->dst_x, reply->dst_y), m_size) : QRect();
}

/// What the parent shows below the window; null while the window is not wholly visible.
QImage SystemTrayWindow::background() const {
    xcb_clear_area(m_connection, 0, m_window, 0, 0, 0, 0);
    const auto cookie = xcb_get_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, 0, 0,
                                      static_cast<quint16>(m_size.width()), static_cast<quint16>(m_size.height()), ~0U);
    const auto reply = owned(xcb_get_image_reply(m_connection, cookie, nullptr));
    if (!reply || qsizetype(xcb_get_image_data_length(reply.get())) < qsizetype(m_size.width()) * m_size.height() * 4)
        return {};
    return QImage(xcb_get_image_data(reply.get()), m_size.width(), m_size.height(), QImage::Format_RGB32).copy();
}

void SystemTrayWindow::paint() {
    if (m_window == XCB_NONE || m_image.isNull())
        return;
    QImage whole(m_size, QImage::Format_ARGB32_Premultiplied);
    whole.fill(Qt::transparent);
    QPainter painter(&whole);
    if (m_depth != 32)
        painter.drawImage(0, 0, background());
    painter.drawImage(0, 0, m_image);
    painter.end();
    xcb_put_image(m_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, m_window, m_graphics, static_cast<quint16>(whole.width()),
                  static_cast<quint16>(whole.height()), 0, 0, 0, m_depth, static_cast<quint32>(whole.sizeInBytes()),
                  whole.constBits());
    xcb_flush(m_connection);
}

bool SystemTrayWindow::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType == "xcb_generic_event_t")
        handle(*static_cast<const xcb_generic_event_t*>(message));
    return false;
}

void SystemTrayWindow::handle(const xcb_generic_event_t& event) {
    switch (event.response_type & 0x7f) {
    case XCB_EXPOSE:
        if (as<xcb_expose_event_t>(event).window == m_window && as<xcb_expose_event_t>(event).count == 0)
            paint();
        return;
    case XCB_CONFIGURE_NOTIFY:
        configured(as<xcb_configure_notify_event_t>(event));
        return;
    case XCB_DESTROY_NOTIFY:
        if (as<xcb_destroy_notify_event_t>(event).window == m_window)
            m_window = XCB_NONE; // It went with its tray.
        return;
    case XCB_BUTTON_PRESS:
        clicked(as<xcb_button_press_event_t>(event));
        return;
    case XCB_ENTER_NOTIFY:
        if (as<xcb_enter_notify_event_t>(event).event == m_window)
            Q_EMIT entered();
        return;
    case XCB_LEAVE_NOTIFY:
        if (as<xcb_leave_notify_event_t>(event).event == m_window)
            Q_EMIT left();
        return;
    default:
        return;
    }
}

void SystemTrayWindow::configured(const xcb_configure_notify_event_t& event) {
    const QSize size(event.width, event.height);
    if (event.window != m_window || size == m_size)
        return;
    m_size = size;
    Q_EMIT resized();
}

void SystemTrayWindow::clicked(const xcb_button_press_event_t& event) {
    const std::optional<Qt::MouseButton> pressedButton = button(event.detail);
    if (event.event == m_window && pressedButton)
        Q_EMIT pressed(*pressedButton, QPoint(event.root_x, event.root_y));
}

} // namespace torvane

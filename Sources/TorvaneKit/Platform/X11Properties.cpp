#include "Platform/X11Properties.h"

#include "Platform/XCB.h"

#include <QHash>

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

using XCB::atom;
using XCB::connection;
using XCB::owned;

xcb_window_t root() {
    return xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
}

/// More than any client has of windows, states or rectangles, in units of four bytes.
constexpr quint32 longestValue = 64 * 1024;

xcb_get_property_cookie_t askForProperty(xcb_window_t window, QByteArrayView name) {
    return xcb_get_property(connection(), false, window, atom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, longestValue);
}

QByteArrayView bytes(const xcb_get_property_reply_t& reply) {
    return {static_cast<const char*>(xcb_get_property_value(&reply)), xcb_get_property_value_length(&reply)};
}

QList<quint32> numbers(xcb_get_property_cookie_t question) {
    const auto reply = owned(xcb_get_property_reply(connection(), question, nullptr));
    if (!reply || reply->format != 32)
        return {};
    const auto* first = static_cast<const quint32*>(xcb_get_property_value(reply.get()));
    return {first, first + bytes(*reply).size() / qsizetype(sizeof(quint32))};
}

/// The edge that a dock keeps for itself: the first four numbers are the widths at left, right, top and bottom.
std::optional<Qt::Edge> edgeOf(const QList<quint32>& strut) {
    constexpr std::array edges{Qt::LeftEdge, Qt::RightEdge, Qt::TopEdge, Qt::BottomEdge};
    if (strut.size() < qsizetype(edges.size()))
        return std::nullopt;
    for (size_t i = 0; i < edges.size(); ++i) {
        if (strut.at(qsizetype(i)) > 0)
            return edges[i];
    }
    return std::nullopt;
}

/// The server is asked about all windows before its first answer is awaited.
struct DockQuestion {
    explicit DockQuestion(xcb_window_t window)
        : strut(askForProperty(window, "_NET_WM_STRUT_PARTIAL"))
        , size(xcb_get_geometry(connection(), window))
        , origin(xcb_translate_coordinates(connection(), window, root(), 0, 0)) {}

    std::optional<X11::Dock> answer() const {
        const std::optional<Qt::Edge> edge = edgeOf(numbers(strut));
        const auto place = owned(xcb_translate_coordinates_reply(connection(), origin, nullptr));
        const auto box = owned(xcb_get_geometry_reply(connection(), size, nullptr));
        if (!edge || !place || !box)
            return std::nullopt;
        return X11::Dock{QRect(place->dst_x, place->dst_y, box->width, box->height), *edge};
    }

    xcb_get_property_cookie_t strut;
    xcb_get_geometry_cookie_t size;
    xcb_translate_coordinates_cookie_t origin;
};

X11::Compositing compositingOf(xcb_get_selection_owner_cookie_t ownerQuestion,
                               xcb_list_properties_cookie_t listQuestion) {
    const auto owner = owned(xcb_get_selection_owner_reply(connection(), ownerQuestion, nullptr));
    const auto list = owned(xcb_list_properties_reply(connection(), listQuestion, nullptr));
    if (!owner || owner->owner == XCB_WINDOW_NONE || !list)
        return {};
    const xcb_atom_t* first = xcb_list_properties_atoms(list.get());
    const xcb_atom_t* last = first + xcb_list_properties_atoms_length(list.get());
    return {true, std::find(first, last, atom("_KDE_NET_WM_BLUR_BEHIND_REGION")) != last};
}

/// The name that a window manager has written upon its window; the next one has another window.
QString nameOf(xcb_window_t manager) {
    static xcb_window_t known = XCB_WINDOW_NONE;
    static QString name;
    if (manager == known)
        return name;
    const auto reply = owned(xcb_get_property_reply(connection(), askForProperty(manager, "_NET_WM_NAME"), nullptr));
    name = reply ? QString::fromUtf8(bytes(*reply)) : QString();
    known = name.isEmpty() ? xcb_window_t{XCB_WINDOW_NONE} : manager;
    return name;
}

void setNumbers(WId window, QByteArrayView property, xcb_atom_t type, const std::vector<quint32>& values) {
    xcb_change_property(connection(), XCB_PROP_MODE_REPLACE, static_cast<xcb_window_t>(window), atom(property), type,
                        32, static_cast<quint32>(values.size()), values.data());
}

} // namespace

bool X11::isRunning() {
    return connection();
}

bool X11::knowsThePointer() {
    return isRunning() && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

X11::Compositing X11::compositing() {
    return DesktopQuestion().answer().compositing;
}

X11::DesktopQuestion::DesktopQuestion() {
    if (!isRunning())
        return;
    m_requests = {xcb_get_selection_owner(connection(), atom("_NET_WM_CM_S0")).sequence,
                  xcb_list_properties(connection(), root()).sequence,
                  askForProperty(root(), "_NET_SUPPORTING_WM_CHECK").sequence};
    xcb_flush(connection());
}

/// What nobody took would be kept for good.
X11::DesktopQuestion::~DesktopQuestion() {
    for (const unsigned int request : m_requests)
        xcb_discard_reply(connection(), request);
}

X11::Desktop X11::DesktopQuestion::answer() {
    if (m_requests.isEmpty())
        return {};
    const QList<unsigned int> requests = std::exchange(m_requests, {});
    const Compositing compositing = compositingOf({requests.at(0)}, {requests.at(1)});
    const QList<quint32> manager = numbers({requests.at(2)});
    return {manager.isEmpty() ? QString() : nameOf(manager.first()), compositing};
}

QList<X11::Dock> X11::docks() {
    if (!isRunning())
        return {};
    std::vector<DockQuestion> questions;
    for (const quint32 window : numbers(askForProperty(root(), "_NET_CLIENT_LIST")))
        questions.emplace_back(window);
    QList<Dock> found;
    for (const DockQuestion& question : questions) {
        if (const std::optional<Dock> dock = question.answer())
            found.append(*dock);
    }
    return found;
}

void X11::skipTaskbarAndPager(WId window) {
    if (isRunning())
        setNumbers(window, "_NET_WM_STATE", XCB_ATOM_ATOM,
                   {atom("_NET_WM_STATE_SKIP_TASKBAR"), atom("_NET_WM_STATE_SKIP_PAGER")});
}

bool X11::tellsOfWindowState(const void* event) {
    const auto* changed = static_cast<const xcb_property_notify_event_t*>(event);
    constexpr int kind = 0x7f; // Without the bit that says that another client sent it.
    return (changed->response_type & kind) == XCB_PROPERTY_NOTIFY &&
           (changed->atom == atom("_NET_WM_STATE") || changed->atom == atom("WM_STATE"));
}

void X11::setBlurBehind(WId window, const QRegion& part) {
    if (!isRunning())
        return;
    if (part.isEmpty()) { // An empty list would mean the whole window.
        xcb_delete_property(connection(), static_cast<xcb_window_t>(window), atom("_KDE_NET_WM_BLUR_BEHIND_REGION"));
        return;
    }
    std::vector<quint32> values;
    for (const QRect& each : part) {
        for (const int value : {each.x(), each.y(), each.width(), each.height()})
            values.push_back(static_cast<quint32>(value));
    }
    setNumbers(window, "_KDE_NET_WM_BLUR_BEHIND_REGION", XCB_ATOM_CARDINAL, values);
}

} // namespace torvane

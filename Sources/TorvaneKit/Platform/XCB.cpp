#include "Platform/XCB.h"

#include <QByteArray>
#include <QGuiApplication>
#include <QHash>

namespace torvane {

xcb_connection_t* XCB::connection() {
    // The offscreen platform has the interface, but nothing behind it.
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_atom_t XCB::atom(QByteArrayView name) {
    static QHash<QByteArray, xcb_atom_t> known;
    const QByteArray key = name.toByteArray();
    if (const auto found = known.constFind(key); found != known.cend())
        return *found;
    const auto cookie = xcb_intern_atom(connection(), false, static_cast<quint16>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(connection(), cookie, nullptr));
    return known[key] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

} // namespace torvane

#pragma once

#include <QByteArrayView>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

/// Qt's own connection to the X server.
namespace torvane::XCB {

/// Null elsewhere than on X11.
xcb_connection_t* connection();

/// The server is asked for each name once. Needs a connection.
xcb_atom_t atom(QByteArrayView name);

template <class Reply>
using Owned = std::unique_ptr<Reply, decltype(&std::free)>;

/// What xcb hands out is the receiver's to free.
template <class Reply>
Owned<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

} // namespace torvane::XCB

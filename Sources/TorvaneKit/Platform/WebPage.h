#pragma once

#include <QUrl>

namespace torvane {

/// Whether this is a page that people can be sent to: http or https, with a host.
bool isWebPage(const QUrl& url);

/// Opens a web page in the user's browser, by xdg-open: sandboxes have one of their own, so that no bus is waited for.
/// False for anything but a web page, and where there is no xdg-open.
bool openWebPage(const QUrl& url);

} // namespace torvane

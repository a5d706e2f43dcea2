#pragma once

class QEvent;
class QString;
class QWidget;

namespace torvane {

/// Answers a widget's request for its tool tip with what the screen has no room for; there is none where that is
/// nothing. Markup in it is shown as it is: names are a stranger's.
void showHiddenText(QEvent& request, const QString& hidden, QWidget& widget);

} // namespace torvane

#include "Views/HiddenText.h"

#include "Views/TextRun.h"

#include <QHelpEvent>
#include <QTextDocument>
#include <QToolTip>

namespace torvane {

void showHiddenText(QEvent& request, const QString& hidden, QWidget& widget) {
    const QString text = TextRun::cut(hidden);
    // A tool tip takes what looks like markup for markup, and breaks lines only where it is.
    const QString markup = text.isEmpty() ? QString() : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal);
    QToolTip::showText(static_cast<QHelpEvent&>(request).globalPos(), markup, &widget);
}

} // namespace torvane

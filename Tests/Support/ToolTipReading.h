#pragma once

#include <QApplication>
#include <QHelpEvent>
#include <QTest>
#include <QTextDocumentFragment>
#include <QToolTip>
#include <QWidget>

namespace torvane {

/// What a widget that is shown says where the pointer rests upon it; nothing where it has no tool tip.
inline QString toolTipOf(QWidget& widget) {
    const QPoint middle = widget.rect().center();
    QHelpEvent asks(QEvent::ToolTip, middle, widget.mapToGlobal(middle));
    QApplication::sendEvent(&widget, &asks);
    const QString markup = QToolTip::text();
    QToolTip::hideText();
    if (!QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 30000))
        return QStringLiteral("a tool tip that stays");
    return QTextDocumentFragment::fromHtml(markup).toPlainText();
}

} // namespace torvane

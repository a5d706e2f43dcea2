#pragma once

#include <QApplication>
#include <QEvent>
#include <QTest>
#include <QWidget>

namespace torvane {

/// Counts the paint events of a window and of all its parts.
class PaintCounter final : public QObject {
public:
    explicit PaintCounter(QWidget& window)
        : m_window(window) {
        settle();
        qApp->installEventFilter(this);
    }

    int count() const { return static_cast<int>(m_painted.size()); }
    const QList<QWidget*>& painted() const { return m_painted; }
    void reset() { m_painted.clear(); }

    /// Lets everything happen that was asked for so far: what is posted meanwhile too, and the paints that follow.
    static void settle() {
        for (int i = 0; i < 5; ++i) {
            QCoreApplication::sendPostedEvents();
            QCoreApplication::processEvents();
        }
    }

private:
    bool eventFilter(QObject* object, QEvent* event) override {
        auto* widget = qobject_cast<QWidget*>(object);
        if (event->type() == QEvent::Paint && widget && (widget == &m_window || m_window.isAncestorOf(widget)))
            m_painted.append(widget);
        return false;
    }

    QWidget& m_window;
    QList<QWidget*> m_painted;
};

} // namespace torvane

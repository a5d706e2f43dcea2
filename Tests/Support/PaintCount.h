#pragma once

#include <QCoreApplication>
#include <QEvent>

/// Counts what is painted while it lives: one for each widget that paints.
class PaintCount final : public QObject {
public:
    PaintCount() { QCoreApplication::instance()->installEventFilter(this); }

    int value() const { return m_value; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched->isWidgetType() && event->type() == QEvent::Paint)
            ++m_value;
        return false;
    }

private:
    int m_value = 0;
};

#pragma once

#include <QColor>
#include <QWidget>

namespace torvane {

/// A filled circle. It says nothing by itself: a word stands beside it wherever it does.
class StatusDot final : public QWidget {
    Q_OBJECT

public:
    /// `size` is the diameter in device-independent pixels.
    explicit StatusDot(const QColor& color, double size = 7, QWidget* parent = nullptr);

    /// The same circle, for widgets that draw theirs beside other things.
    static void paint(QPainter& painter, QPointF centre, const QColor& color, double size);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QColor m_color;
    const double m_size;
};

} // namespace torvane

#pragma once

#include <QScrollBar>

namespace torvane {

/// A vertical scroll bar that is a thin handle, and nothing where there is nothing to scroll.
class ThinScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit ThinScrollBar(QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvane

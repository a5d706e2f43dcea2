#pragma once

#include <QWidget>

namespace torvane {

/// Stands for what the popover shows: as large as one says.
class SizedContent final : public QWidget {
public:
    static constexpr int fixedWidth = 344;

    explicit SizedContent(int height)
        : m_height(height) {}

    QSize sizeHint() const override { return {fixedWidth, m_height}; }

    void setHeight(int height) {
        m_height = height;
        updateGeometry();
    }

private:
    int m_height;
};

} // namespace torvane

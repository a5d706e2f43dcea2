#pragma once

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

namespace torvane {

/// Stands for a desktop: what its own windows look like.
class DesktopStyle final : public QProxyStyle {
public:
    explicit DesktopStyle(const QColor& window)
        : m_window(window) {}

    using QProxyStyle::polish;

    void polish(QPalette& palette) override {
        palette.setColor(QPalette::All, QPalette::Window, m_window);
        palette.setColor(QPalette::All, QPalette::AlternateBase, m_window);
    }

private:
    QColor m_window;
};

} // namespace torvane

#pragma once

#include <QBoxLayout>
#include <QWidget>

/// Rows and columns of widgets, written as they stand on the screen: `column(header(), rule(), row(name, stretch,
/// figure))`. No spacing or margins but those that are named.
namespace torvane {

/// Empty room of a fixed length along the row or column.
struct Space {
    int length;
};

/// Room that takes what is left over.
struct Stretch {};
inline constexpr Stretch stretch;

inline void addPart(QBoxLayout& layout, QWidget* part) {
    layout.addWidget(part);
}
inline void addPart(QBoxLayout& layout, QLayout* part) {
    layout.addLayout(part);
}
inline void addPart(QBoxLayout& layout, Space part) {
    layout.addSpacing(part.length);
}
inline void addPart(QBoxLayout& layout, Stretch) {
    layout.addStretch();
}

template <class Layout, class... Parts>
Layout* compose(Parts... parts) {
    auto* layout = new Layout;
    layout->setContentsMargins({});
    layout->setSpacing(0);
    (addPart(*layout, parts), ...);
    return layout;
}

/// From left to right.
template <class... Parts>
QBoxLayout* row(Parts... parts) {
    return compose<QHBoxLayout>(parts...);
}

/// From top to bottom.
template <class... Parts>
QBoxLayout* column(Parts... parts) {
    return compose<QVBoxLayout>(parts...);
}

/// The layout with margins around it.
inline QBoxLayout* padded(QMargins margins, QBoxLayout* layout) {
    layout->setContentsMargins(margins);
    return layout;
}

/// A widget that shows the layout, so that it can be hidden as a whole.
inline QWidget* section(QLayout* layout) {
    auto* widget = new QWidget;
    widget->setLayout(layout);
    return widget;
}

} // namespace torvane

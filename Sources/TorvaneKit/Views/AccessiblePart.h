#pragma once

#include <QAccessible>
#include <QKeySequence>
#include <QWidget>

#include <optional>

namespace torvane {

/// The figures of a chart.
struct AccessibleRange {
    double lowest;
    double highest;
    double latest;
};

/// A painted widget as assistive technology sees it. Its name is the widget's accessibleName; one that is a
/// QAbstractButton can be pressed, and selected where it can be checked.
class AccessiblePart {
public:
    virtual ~AccessiblePart() = default;

    virtual QAccessible::Role accessibleRole() const = 0;

    /// The figure as it is shown, where the part has one.
    virtual QString accessibleValue() const { return {}; }

    virtual std::optional<AccessibleRange> accessibleRange() const { return std::nullopt; }

    /// The keys that press it from anywhere in the window.
    virtual QKeySequence accessibleShortcut() const { return {}; }
};

/// Makes AccessibleParts known to Qt's accessibility. Does nothing after the first time.
void installAccessibility();

/// Gives the widget another accessible name, and tells assistive technology if it differs.
void tellAccessibleName(QWidget& widget, const QString& name);

} // namespace torvane

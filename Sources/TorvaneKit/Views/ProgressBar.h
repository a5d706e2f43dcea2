#pragma once

#include "Views/AccessiblePart.h"

namespace torvane {

/// How much of a task is done. Repainted, and told of, when what is shown changes and not oftener.
class ProgressBar final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit ProgressBar(const QString& name, QWidget* parent = nullptr);

    /// From 0 to 1; what is beyond counts as these, and what is no number as 0.
    void setFraction(double fraction);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    QString accessibleValue() const override;
    std::optional<AccessibleRange> accessibleRange() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int percent() const;
    int filledPixels() const;

    double m_fraction = 0;
};

} // namespace torvane

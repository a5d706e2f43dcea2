#pragma once

#include "Model/GasLevel.h"
#include "Views/AccessiblePart.h"
#include "Views/TextRun.h"

#include <QWidget>

#include <optional>

namespace torvane {

/// A gas level: a dot, and its word in the same colour.
class LevelLine final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    explicit LevelLine(QWidget* parent = nullptr);

    void setLevel(GasLevel level);

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    TextRun m_word;
    std::optional<GasLevel> m_level;
};

} // namespace torvane

#pragma once

#include <QWidget>

namespace torvane {

/// A card around the caller's content: a rounded rectangle with a hairline border.
class SettingCard final : public QWidget {
    Q_OBJECT

public:
    /// Takes the content over.
    explicit SettingCard(QWidget* content, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvane

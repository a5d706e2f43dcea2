#pragma once

#include <QAbstractButton>

namespace torvane {

/// A small button of one word or a few: with an outline, or filled with the accent colour where it is what most people
/// are there for. Return presses it as Space does.
class TextButton final : public QAbstractButton {
    Q_OBJECT

public:
    enum class Look { outlined, filled };

    explicit TextButton(const QString& text, Look look = Look::outlined, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void paintGround(QPainter& painter) const;

    const Look m_look;
};

} // namespace torvane

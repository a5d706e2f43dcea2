#pragma once

#include <QAbstractButton>

namespace torvane {

/// A switch: on to the right, in the colour of all that is well. Its name is read, not shown.
class Switch final : public QAbstractButton {
    Q_OBJECT

public:
    explicit Switch(const QString& name, QWidget* parent = nullptr);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace torvane

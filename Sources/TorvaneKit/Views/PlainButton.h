#pragma once

#include "Views/AccessiblePart.h"

#include <QAbstractButton>

namespace torvane {

/// A row that is a button: without a frame, set off while the pointer is over it or it is pressed, and outlined while
/// it has the keyboard's focus and keys are what its user works with. Return presses it as Space does.
class PlainButton : public QAbstractButton, public AccessiblePart {
    Q_OBJECT

public:
    explicit PlainButton(QWidget* parent = nullptr);

    QAccessible::Role accessibleRole() const override { return QAccessible::Button; }

protected:
    virtual void paintContent(QPainter& painter) = 0;

    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) final;

private:
    void showFocus(bool isShown);

    bool m_isFocusShown = false;
};

} // namespace torvane

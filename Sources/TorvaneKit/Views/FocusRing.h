#pragma once

#include <QFocusFrame>

namespace torvane {

/// The ring around the control that has the keyboard's focus, in one window. It is there once a key has moved the focus
/// or changed a control, and goes with the next click: who uses the mouse sees what was clicked.
class FocusRing final : public QFocusFrame {
    Q_OBJECT

public:
    explicit FocusRing(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void follow(QWidget* focused);

    QWidget* m_window;
    bool m_isByKey = false;
};

} // namespace torvane

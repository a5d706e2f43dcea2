#pragma once

#include <QPointer>
#include <QWidget>

namespace torvane {

/// The ring around the control that has the keyboard's focus, in one window. It is there once a key has been pressed,
/// and goes with the next click: who uses the mouse sees what was clicked.
class FocusRing final : public QWidget {
    Q_OBJECT

public:
    /// Lies over all that the window holds, which owns it.
    explicit FocusRing(QWidget* window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void follow();

    QPointer<QWidget> m_focused; ///< in this window; none while another has the focus
    bool m_isByKey = false;
};

} // namespace torvane

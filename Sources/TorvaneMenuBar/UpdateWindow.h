#pragma once

#include "UpdatePage.h"

#include <QWidget>

class QVBoxLayout;

namespace torvane {

class ProgressBar;
class TextLine;

/// The window of an update: one page at a time. It is discarded when it is closed. Return presses the page's default
/// button from wherever the keyboard is, Escape and Ctrl+W give the mildest answer where there is one.
class UpdateWindow final : public QWidget {
    Q_OBJECT

public:
    explicit UpdateWindow(const UpdatePage& page);

    /// Shows another page; of one that differs in its progress alone, only that changes.
    void turnTo(const UpdatePage& page);

    /// Shows the window in front of the others. It takes the keyboard only where its user is at work with the program:
    /// Return, meant for another program, must not answer here.
    void appear();

    /// The same for somebody who has asked for it: it takes the keyboard in any case.
    void bringToFront();

    /// Closes it without an answer.
    void leave();

Q_SIGNALS:
    void answered(torvane::Updates::Answer answer);

protected:
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void build();
    QWidget* content();
    QWidget* texts(int width) const;
    QWidget* warning(int width) const;
    QWidget* notes();
    QWidget* progress();
    QWidget* buttons();
    QWidget* button(const UpdateChoice& choice);
    void showProgress();

    UpdatePage m_page;
    QVBoxLayout* m_layout;
    QWidget* m_content = nullptr;
    QWidget* m_default = nullptr; // the button that Return presses, where the page has one
    ProgressBar* m_bar = nullptr; // where the page has one
    TextLine* m_barText = nullptr;
};

} // namespace torvane

#pragma once

#include "PopoverWindow.h"

#include <QDeadlineTimer>

#include <chrono>
#include <functional>

namespace torvane {

/// The popover, open or not: its window and its content exist only while it is open.
class Popover final : public QObject {
    Q_OBJECT

public:
    using MakeContent = std::function<std::unique_ptr<QWidget>()>;

    /// On panels that take the keyboard, the click upon the badge closes the popover before the panel tells of it: for
    /// so long, such a click has been answered already.
    static constexpr std::chrono::milliseconds sameClick{300};

    explicit Popover(MakeContent makeContent, std::chrono::milliseconds patience = sameClick);
    ~Popover() override;

    bool isOpen() const { return m_window != nullptr; }

    /// A click upon the badge, which lies there in device-independent pixels: a single pixel is where the pointer was,
    /// and a null rectangle says nothing: then it is taken to lie where it was last.
    void toggle(const QRect& badge);

    /// Opens it, or brings the open one to the front as it is.
    void open(const QRect& badge);

    void close();

    /// Makes and draws a content once and discards it, unseen: what that loads, fonts above all, the first click does
    /// not wait for.
    void rehearse() const;

private:
    void ended(PopoverEnd end);

    const MakeContent m_makeContent;
    const std::chrono::milliseconds m_patience;
    std::unique_ptr<PopoverWindow> m_window;
    QRect m_lastBadge;              // Null before it was seen.
    QDeadlineTimer m_answeredUntil; // Expired at first.
};

} // namespace torvane

#pragma once

#include "Support/Async.h"

#include <QObject>

namespace torvane {

/// Awaiting it resumes from the main loop's next turn. Destroying it before that cancels the resumption.
///     NextTurn turn;
///     co_await turn;
class NextTurn final : public QObject {
public:
    auto operator co_await() noexcept {
        struct Awaiter {
            NextTurn* turn;

            bool await_ready() const noexcept { return false; }

            void await_suspend(detail::Suspended awaiting) const {
                QMetaObject::invokeMethod(
                    turn, [task = awaiting.task] { task->run(); }, Qt::QueuedConnection);
            }

            void await_resume() const noexcept {}
        };
        return Awaiter{this};
    }
};

} // namespace torvane

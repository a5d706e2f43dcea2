#pragma once

#include <exception>
#include <optional>
#include <utility>

// After the others: moc cannot read it before them.
#include <coroutine>

namespace torvane {

template <class T = void>
class Task;

/// What a task's coroutine frame keeps beside the code's own variables; Task.h makes the tasks.
namespace detail {

struct TaskPromiseBase {
    std::coroutine_handle<> frame;     // This task's own.
    TaskPromiseBase* caller = nullptr; // The task that awaits this one, and whose frame goes on when this one ends.
    int* siblings = nullptr;           // How many run beside it for the same caller, itself included, if any do.
    std::exception_ptr error;
    bool isRunning = false;  // Of the outermost task: somewhere below it code runs at this moment.
    bool isOrphaned = false; // Its owner let go of it meanwhile: it goes as soon as that code suspends or ends.

    /// Runs a frame that is suspended. The code may destroy whatever owns the outermost task: a frame cannot be freed
    /// while it runs, so that this is made up for afterwards.
    void run() {
        TaskPromiseBase* outermost = this;
        while (outermost->caller)
            outermost = outermost->caller;
        outermost->isRunning = true;
        frame.resume();
        outermost->isRunning = false;
        if (outermost->isOrphaned)
            outermost->frame.destroy();
    }

    struct FinalAwaiter {
        bool await_ready() const noexcept { return false; }

        template <class Promise>
        std::coroutine_handle<> await_suspend(std::coroutine_handle<Promise> finished) const noexcept {
            const TaskPromiseBase& task = finished.promise();
            const bool isLast = !task.siblings || --*task.siblings == 0;
            return isLast && task.caller ? task.caller->frame : std::noop_coroutine();
        }

        void await_resume() const noexcept {}
    };

    std::suspend_always initial_suspend() const noexcept { return {}; }

    FinalAwaiter final_suspend() const noexcept { return {}; }

    void unhandled_exception() noexcept { error = std::current_exception(); }

    void rethrow() const {
        if (error)
            std::rethrow_exception(error);
    }
};

/// What an awaiter's await_suspend takes: the task that waits, to be run again with `task->run()` from the loop.
struct Suspended {
    TaskPromiseBase* task;

    template <class Promise>
    Suspended(std::coroutine_handle<Promise> awaiting) noexcept
        : task(&awaiting.promise()) {}
};

template <class T>
struct TaskPromise : TaskPromiseBase {
    std::optional<T> value;

    Task<T> get_return_object() noexcept;

    void return_value(T result) { value.emplace(std::move(result)); }

    T take() {
        rethrow();
        return std::move(*value);
    }
};

template <>
struct TaskPromise<void> : TaskPromiseBase {
    Task<void> get_return_object() noexcept;

    void return_void() const noexcept {}

    void take() const { rethrow(); }
};

} // namespace detail

} // namespace torvane

#pragma once

#include "Platform/ApplicationInstance.h"
#include "Successor.h"
#include "Support/Async.h"
#include "TorvaneApp.h"

#include <QObject>

#include <optional>

namespace torvane {

/// One launch of the program: it becomes the session's velisk, or calls the one that runs forward and ends.
class Launch final : public QObject {
    Q_OBJECT

public:
    /// Begins with the main loop. Needs a QApplication. `id` is the application's name on the bus.
    explicit Launch(QString id);

private:
    Task<> begin();
    void run();
    void end(bool answered);
    void comeForward(const QString& token);
    void bringForward(const QString& token);

    const QString m_id;
    std::optional<ApplicationInstance> m_instance;
    std::optional<Successor> m_successor;
    std::optional<TorvaneApp> m_app;
    std::optional<QString> m_awaited; // The token of the call that came before there was anything to bring forward.
    TaskScope m_tasks;
};

} // namespace torvane

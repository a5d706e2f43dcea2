#pragma once

#include "TorvaneUpdates/Windows.h"
#include "UpdateWindow.h"

#include <QObject>
#include <QPointer>

#include <functional>

namespace torvane {

/// The windows of an update: one at a time, made when there is something to show.
class UpdateWindows final : public QObject, public Updates::Windows {
    Q_OBJECT

public:
    UpdateWindows() = default;
    ~UpdateWindows() override;

    void show(Updates::Scene scene, std::function<void(Updates::Answer)> answer) override;
    void close() override;
    void bringToFront() override;

    /// The open window; none when there is nothing to show, or when its user has closed it.
    UpdateWindow* window() const { return m_window; }

private:
    void open(const UpdatePage& page);
    void pass(Updates::Answer answer);

    std::optional<Updates::Scene> m_scene;
    std::function<void(Updates::Answer)> m_answer;
    int m_sceneNumber = 0; // A scene of the same kind has the same.
    QPointer<UpdateWindow> m_window;
};

} // namespace torvane

#pragma once

#include "Coordination/SnapshotStore.h"
#include "Model/AppSettings.h"

#include <QWidget>

namespace torvane {

/// The networks that the popover lists, each with a switch; Ethereum, which it always shows, first. Follows the
/// snapshot: the list is made anew when other networks stand in it, and not for other figures.
class NetworksPanel final : public QWidget {
    Q_OBJECT

public:
    NetworksPanel(SnapshotStore& store, AppSettings& settings, QWidget* parent = nullptr);

private:
    void follow(const std::optional<Snapshot>& snapshot);
    void fill();
    QWidget* list();
    QWidget* networkSwitch(const QString& name);
    QString focusedNetwork() const;

    AppSettings& m_settings;
    std::optional<QStringList> m_names; ///< none before the first snapshot
    QWidget* m_content = nullptr;
};

} // namespace torvane

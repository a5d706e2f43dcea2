#pragma once

#include "Coordination/SnapshotStore.h"
#include "Model/AppSettings.h"

#include <QWidget>

class QAbstractButton;

namespace torvane {

/// The networks that the popover lists, each with a switch; Ethereum, which it always shows, first. Of very many it
/// has the first, and says how many more there are. Follows the snapshot: the list is made anew when other networks
/// stand in it, and not for other figures.
class NetworksPanel final : public QWidget {
    Q_OBJECT

public:
    NetworksPanel(SnapshotStore& store, AppSettings& settings, QWidget* parent = nullptr);

private:
    void follow(const std::optional<Snapshot>& snapshot);
    void fillSoon();
    void fill();
    const QAbstractButton* pressedSwitch() const;
    QWidget* list();
    QWidget* networkSwitch(const QString& name);
    QString focusedNetwork() const;

    AppSettings& m_settings;
    std::optional<QStringList> m_names; ///< of the networks that are shown; none before the first snapshot
    QString m_more;                     ///< what stands in place of the others
    QWidget* m_content = nullptr;
    bool m_isDue = false; ///< to be filled once a switch is released
};

} // namespace torvane

#pragma once

#include "Badge/BadgeLook.h"
#include "Coordination/SnapshotStore.h"
#include "Design/Theme.h"

#include <QTimer>

namespace torvane {

/// Follows the store and the settings, and says how the badge looks: once after all changes of a turn of the main
/// loop, and when data that nobody renewed come to say how old they are, or of which day.
class BadgeFeed final : public QObject {
    Q_OBJECT

public:
    /// Both must outlive it.
    BadgeFeed(const SnapshotStore& store, const AppSettings& settings);

    BadgeLook look() const;

    /// Says in the loop's next turn how the badge looks, where that may differ though nothing was announced: after a
    /// time that passed unnoticed.
    void lookAgain();

    /// Looks again with each change of the windows' appearance: the colour of a dot that says nothing is theirs.
    void follow(const Theme& theme);

Q_SIGNALS:
    /// It may be the same as before.
    void lookChanged(const BadgeLook& look);

private:
    void announce();
    void awaitAge();

    const SnapshotStore& m_store;
    const AppSettings& m_settings;
    bool m_isStale = false;
    QTimer m_age{this};
};

} // namespace torvane

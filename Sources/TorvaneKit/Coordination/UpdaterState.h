#pragma once

#include "Support/Published.h"

#include <functional>

namespace torvane {

/// What windows know of software updates: two flags and two actions. Whoever updates the program keeps the flags and
/// sets the actions; until then these do nothing. Main thread only.
class UpdaterState final : public ObservableObject {
    Q_OBJECT

public:
    /// Whether a check can be started by hand now.
    Published<bool> canCheck{this, false};

    /// Whether checks happen by themselves.
    Published<bool> automaticChecks{this, true};

    std::function<void()> onCheck = [] {};
    std::function<void(bool)> onSetAutomatic = [](bool) {};

    /// Starts a check by hand, whatever `canCheck` says: it is for the caller to look at that.
    void check() const { onCheck(); }

    void setAutomatic(bool automatic) {
        automaticChecks = automatic;
        onSetAutomatic(automatic);
    }
};

} // namespace torvane

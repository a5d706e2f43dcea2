#pragma once

#include <QObject>

namespace torvane {

/// Turns SIGTERM and SIGINT into a signal on the main loop, so that the program ends as it does when its user quits.
/// At most one instance lives at a time; destroying it restores the signals' default action.
class TerminationSignals final : public QObject {
    Q_OBJECT

public:
    explicit TerminationSignals(QObject* parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received();
};

} // namespace torvane

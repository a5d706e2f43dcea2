#pragma once

#include "Views/TextLine.h"

#include <QDateTime>
#include <QTimer>

namespace torvane {

/// Says how long ago the data were current. It counts on by itself while it is visible, with one wakeup for each change
/// of what it says; hidden, it costs none.
class UpdatedLine final : public TextLine {
    Q_OBJECT

public:
    explicit UpdatedLine(QWidget* parent = nullptr);

    void setTime(const std::optional<QDateTime>& lastUpdated);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void showAge();

    std::optional<QDateTime> m_lastUpdated;
    QTimer* m_nextAge;
};

} // namespace torvane

#pragma once

#include "Model/AppSettings.h"

#include <QComboBox>
#include <QStringListModel>

namespace torvane {

/// A drop-down list of networks, by their titles. A selected network that is not offered stands there dimmed, and is no
/// item of the list.
class ChainPicker final : public QComboBox {
    Q_OBJECT

public:
    /// The name is read, not shown.
    explicit ChainPicker(const QString& name, QWidget* parent = nullptr);

    /// Offers these networks, in this order. An open list changes in place.
    void offer(const QList<BadgeChain>& chains);

    /// Shows another network as the selected one, which nobody is told.
    void select(const BadgeChain& chain);

    /// The title that is shown: of the selected network, offered or not.
    QString shownTitle() const;

    QSize sizeHint() const override;

Q_SIGNALS:
    /// The user has chosen a network, another one or the same.
    void chosen(const torvane::BadgeChain& chain);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void showSelection();
    QRect textRoom() const;

    QStringListModel m_titles;
    QList<BadgeChain> m_chains;
    BadgeChain m_selection = BadgeChain::ethereum();
};

} // namespace torvane

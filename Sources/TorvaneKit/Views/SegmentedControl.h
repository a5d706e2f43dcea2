#pragma once

#include "Views/AccessiblePart.h"

#include <QList>
#include <QStringList>
#include <QWidget>

class QAbstractButton;

namespace torvane {

/// Segments beside each other, one of which is selected: by a click, the arrow keys, Home and End. For the keyboard it
/// is one stop, as a group of radio buttons is, and as that it is read.
class SegmentedControl final : public QWidget, public AccessiblePart {
    Q_OBJECT

public:
    /// One segment per label, in this order; none is selected yet. The name is read, not shown.
    SegmentedControl(const QString& name, const QStringList& labels, QWidget* parent = nullptr);

    /// Shows another segment as the selected one, which nobody is told.
    void select(int index);

    /// The selected segment's index; -1 without one.
    int selected() const;

    QSize sizeHint() const override;
    QAccessible::Role accessibleRole() const override { return QAccessible::Grouping; }

    /// What is left of the width, or lacks, is shared evenly: each width is its own hint and that share.
    static QList<double> widths(const QList<double>& hints, double available);

Q_SIGNALS:
    /// The user has chosen a segment, another one or the same.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void placeSegments();

    QList<QAbstractButton*> m_segments;
};

} // namespace torvane

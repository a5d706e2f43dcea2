#pragma once

#include "Views/NetworkLabel.h"
#include "Views/PlainButton.h"
#include "Views/TextRun.h"

#include <QTimer>

namespace torvane {

/// A Layer 2 network: its mark, name and status, and its figure at the trailing edge. Pressing it copies name and
/// figure to the clipboard and says so, for a moment, where the status stands.
class L2Row final : public PlainButton {
    Q_OBJECT

public:
    explicit L2Row(QWidget* parent = nullptr);

    /// `primary` is the formatted figure, `status` the network's status word.
    void setNetwork(const QString& name, const QString& primary, const QString& status);

    const QString& name() const { return m_name; }

    /// The column that a small chart of the network lies in, in a row of this width.
    QRect chartColumn(int rowWidth) const;

    QSize sizeHint() const override;
    QString accessibleValue() const override { return m_primary.text(); }

protected:
    bool event(QEvent* event) override;
    void paintContent(QPainter& painter) override;

private:
    void copy();
    void showStatus();
    int figureColumn(int rowWidth) const;
    double labelRoom() const;
    QString hiddenText() const;

    const int m_usualFigure; ///< the width that any usual figure fits in
    NetworkLabel m_label;
    TextRun m_primary;
    QString m_name;
    QString m_status;
    QTimer m_copied; ///< runs while it says that it was copied
};

} // namespace torvane

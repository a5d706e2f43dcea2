#include "Views/SegmentedControl.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"
#include "Views/OneOfMany.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace torvane {

namespace {

constexpr double trackRadius = 7;
constexpr double segmentRadius = 5;
constexpr int trackPadding = 2;
constexpr int segmentHeight = 24;
constexpr int segmentPadding = 6;
constexpr int leastPadding = 2;

/// Lighter than the track in either appearance.
constexpr DynamicColor selectedFill = {Palette::line2.dark, 1, Palette::surface.light, 1};
constexpr DynamicColor selectedBorder = Palette::line2;

class Segment final : public QAbstractButton {
public:
    Segment(const QString& label, QWidget* parent)
        : QAbstractButton(parent) {
        setText(label);
        setFont(Fonts::sans(12, QFont::Medium));
        setCheckable(true);
        setAutoExclusive(true);
        setFocusPolicy(Qt::StrongFocus);
    }

    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * segmentPadding, segmentHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setOpacity(opacityOf(*this));
        if (isChecked()) {
            const QRectF body = QRectF(rect()).adjusted(0.25, 0.25, -0.25, -0.75);
            fillRoundedRect(painter, QRectF(rect()).adjusted(0, 0.5, 0, 0), segmentRadius, shadow(0.12));
            drawRoundedRect(painter, body, segmentRadius, selectedFill, selectedBorder);
        }
        painter.setFont(isChecked() ? font() : Fonts::sans(12, QFont::Normal));
        painter.setPen(isChecked() || isDown() ? Palette::ink : Palette::ink2);
        drawLine(painter, rect().adjusted(leastPadding, 0, -leastPadding, 0), text(), Qt::AlignHCenter);
    }
};

} // namespace

SegmentedControl::SegmentedControl(const QString& name, const QStringList& labels, QWidget* parent)
    : QWidget(parent) {
    installAccessibility();
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    for (const QString& label : labels) {
        auto* segment = new Segment(label, this);
        segment->installEventFilter(this);
        connect(segment, &QAbstractButton::clicked, this,
                [this, index = static_cast<int>(m_segments.size())] { Q_EMIT chosen(index); });
        connect(segment, &QAbstractButton::toggled, this, [this] { OneOfMany::keepOneTabStop(m_segments); });
        m_segments.append(segment);
    }
}

void SegmentedControl::select(int index) {
    m_segments[index]->setChecked(true);
}

int SegmentedControl::selected() const {
    return OneOfMany::checked(m_segments);
}

QSize SegmentedControl::sizeHint() const {
    const auto add = [](int sum, const QAbstractButton* segment) { return sum + segment->sizeHint().width(); };
    return {std::accumulate(m_segments.begin(), m_segments.end(), 2 * trackPadding, add),
            segmentHeight + 2 * trackPadding};
}

QList<double> SegmentedControl::widths(const QList<double>& hints, double available) {
    const double share =
        (available - std::accumulate(hints.begin(), hints.end(), 0.0)) / std::max(1.0, double(hints.size()));
    QList<double> result;
    for (const double hint : hints)
        result.append(hint + share);
    return result;
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setOpacity(opacityOf(*this));
    drawRoundedRect(painter, rect(), trackRadius, Palette::surface2, Palette::line2);
}

void SegmentedControl::resizeEvent(QResizeEvent*) {
    placeSegments();
}

void SegmentedControl::placeSegments() {
    QList<double> hints;
    for (const QAbstractButton* segment : std::as_const(m_segments))
        hints.append(segment->sizeHint().width());
    double left = trackPadding;
    const QList<double> room = widths(hints, width() - 2 * trackPadding);
    for (qsizetype i = 0; i < m_segments.size(); ++i) {
        const int begin = static_cast<int>(std::lround(left));
        left += room[i];
        const int end = static_cast<int>(std::lround(left));
        const QRect place(begin, trackPadding, end - begin, height() - 2 * trackPadding);
        const bool isMirrored = layoutDirection() == Qt::RightToLeft;
        m_segments[i]->setGeometry(isMirrored ? QRect(width() - end, place.y(), place.width(), place.height()) : place);
    }
}

/// The segments' own reading of the arrow keys goes by where they lie, and knows neither Home nor End.
bool SegmentedControl::eventFilter(QObject*, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    const int count = static_cast<int>(m_segments.size());
    const std::optional<int> next =
        OneOfMany::afterKey(*static_cast<QKeyEvent*>(event), selected(), count, layoutDirection());
    if (!next)
        return false;
    m_segments[*next]->setFocus(Qt::OtherFocusReason);
    if (*next != selected())
        m_segments[*next]->click();
    return true;
}

} // namespace torvane

#include "popover/DrawnPopover.h"

#include "Design/ChainMarksMono.h"
#include "Design/DesignSystem.h"
#include "Design/SVGPath.h"
#include "Model/Format.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

constexpr int width = 344;
constexpr int margin = 14;

QPainterPath spark(const QList<double>& values, QSizeF box, bool isArea) {
    const auto [low, high] = std::minmax_element(values.cbegin(), values.cend());
    const double range = *high > *low ? *high - *low : 1;
    QPainterPath path;
    for (qsizetype i = 0; i < values.size(); ++i) {
        const QPointF point(3 + (box.width() - 6) * double(i) / double(values.size() - 1),
                            3 + (box.height() - 6) * (1 - (values[i] - *low) / range));
        if (i == 0)
            path.moveTo(isArea ? QPointF(point.x(), box.height()) : point);
        path.lineTo(point);
    }
    if (isArea)
        path.lineTo(box.width() - 3, box.height());
    return path;
}

void drawSpark(QPainter& painter, const QRectF& place, const QList<double>& values) {
    QColor shade = Palette::ink2;
    shade.setAlpha(31);
    painter.save();
    painter.translate(place.topLeft());
    painter.fillPath(spark(values, place.size(), true), shade);
    painter.strokePath(spark(values, place.size(), false), QPen(QColor(Palette::ink2), 1.5));
    painter.restore();
}

void drawText(QPainter& painter, const QRectF& place, const QFont& font, const QColor& color, const QString& text,
              int alignment = Qt::AlignLeft) {
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(place, alignment | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

void drawRule(QPainter& painter, int top) {
    painter.fillRect(QRectF(margin, top, width - 2 * margin, 0.5), QColor(Palette::line2));
}

} // namespace

DrawnPopover::DrawnPopover(const Snapshot& snapshot)
    : m_snapshot(snapshot)
    , m_caption(Fonts::label())
    , m_body(Fonts::sans(12, QFont::Medium))
    , m_bodyMono(Fonts::mono(12, QFont::Normal))
    , m_title(Fonts::sans(13, QFont::DemiBold))
    , m_figure(Fonts::mono(18, QFont::Medium)) {
    for (const L2Entry& entry : snapshot.l2) {
        QList<QPainterPath> paths;
        for (const QString& data : ChainMarksMono::byName().value(entry.name))
            paths.append(SVGPath::path(data));
        m_marks.append(paths);
    }
}

void DrawnPopover::draw(QPainter& painter) const {
    painter.setRenderHint(QPainter::Antialiasing);
    drawHeader(painter);
    drawTiers(painter);
    drawCosts(painter);
    drawRule(painter, 173);
    drawText(painter, {margin, 183, 150, 14}, m_body, Palette::ink2, u"ETH price"_s);
    drawText(painter, {180, 183, 90, 14}, m_bodyMono, Palette::ink, Format::ethPrice(m_snapshot.price.eth),
             Qt::AlignRight);
    drawText(painter, {275, 183, 55, 14}, m_bodyMono, Palette::pos, Format::pct(m_snapshot.price.change24h),
             Qt::AlignRight);
    drawRule(painter, 206);
    drawText(painter, {margin, 218, 150, 14}, m_caption, Palette::ink3, u"24H BASE FEE"_s);
    drawText(painter, {130, 218, 200, 14}, m_caption, Palette::ink3, u"2.1 – 16.4 gwei · Average 9.6"_s,
             Qt::AlignRight);
    drawSpark(painter, {margin, 237, width - 2 * margin, 46}, m_snapshot.gas.history);
    drawRule(painter, 292);
    drawText(painter, {margin, 302, 150, 14}, m_caption, Palette::ink3, u"Layer 2"_s);
    int top = 320;
    for (const L2Entry& entry : m_snapshot.l2) {
        drawRow(painter, entry, top);
        top += 34;
    }
    drawFooter(painter, top + 9);
}

void DrawnPopover::drawHeader(QPainter& painter) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(Palette::surface3));
    painter.drawRoundedRect(QRectF(margin, 19, 30, 30), 9, 9);
    drawText(painter, {54, 15, 120, 16}, m_title, Palette::ink, u"Ethereum"_s);
    drawText(painter, {54, 35, 200, 14}, m_caption, Palette::ink3, u"Mainnet · block "_s + Format::block(21000000));
    drawText(painter, {150, 12, 150, 24}, Fonts::mono(24, QFont::Medium), Palette::ink,
             Format::gwei(m_snapshot.gas.baseFee), Qt::AlignRight);
    drawText(painter, {300, 16, 30, 20}, m_bodyMono, Palette::ink3, u"gwei"_s, Qt::AlignRight);
    drawText(painter, {250, 35, 80, 14}, m_caption, Palette::warn, u"Normal"_s, Qt::AlignRight);
    painter.setBrush(Palette::warn);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPointF(280, 42), 3.5, 3.5);
}

void DrawnPopover::drawTiers(QPainter& painter) const {
    const QList<std::pair<QString, double>> tiers{
        {u"LOW"_s, m_snapshot.gas.low}, {u"AVERAGE"_s, m_snapshot.gas.avg}, {u"HIGH"_s, m_snapshot.gas.high}};
    double left = margin;
    for (const auto& [label, gwei] : tiers) {
        const QRectF card(left, 61, 101, 73);
        painter.setBrush(QColor(Palette::glassFill));
        painter.setPen(QPen(QColor(Palette::line2), 0.5));
        painter.drawRoundedRect(card, 9, 9);
        drawText(painter, card.adjusted(10, 8, -10, -50), m_caption, Palette::ink3, label);
        drawText(painter, card.adjusted(10, 26, -10, -27), m_figure, Palette::ink, Format::gwei(gwei));
        drawText(painter, card.adjusted(10, 48, -10, -10), m_caption, Palette::ink3,
                 Format::txUsd(gwei, m_snapshot.price.eth, Format::transferGas));
        painter.setPen(Qt::NoPen);
        painter.setBrush(Palette::warn);
        painter.drawEllipse(card.topRight() + QPointF(-13, 16), 3, 3);
        left += 107;
    }
}

void DrawnPopover::drawCosts(QPainter& painter) const {
    const QList<std::pair<QString, double>> costs{{u"TRANSFER"_s, m_snapshot.gas.feeTransferUsd.value_or(0)},
                                                  {u"SWAP"_s, m_snapshot.gas.feeSwapUsd.value_or(0)},
                                                  {u"NFT MINT"_s, 5.14}};
    double left = margin + 10;
    for (const auto& [label, usd] : costs) {
        drawText(painter, {left, 144, 90, 14}, m_caption, Palette::ink3, label);
        drawText(painter, {left, 158, 90, 14}, m_bodyMono, Palette::ink, Format::usd(usd));
        left += 107;
    }
}

void DrawnPopover::drawRow(QPainter& painter, const L2Entry& entry, int top) const {
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(0x1B, 0x4A, 0xDD));
    painter.drawRoundedRect(QRectF(margin, top + 5, 24, 24), 7, 7);
    painter.save();
    painter.translate(margin, top + 5);
    for (const QPainterPath& path : m_marks[(top - 320) / 34])
        painter.fillPath(path, Qt::white);
    painter.restore();
    drawText(painter, {48, top + 4.0, 130, 14}, m_body, Palette::ink, entry.name);
    drawText(painter, {48, top + 18.0, 130, 12}, m_caption, l2StatusColor(entry.status), entry.status);
    drawSpark(painter, {179, top + 5.0, 62, 24}, *entry.history);
    drawText(painter, {240, top + 8.0, 90, 18}, m_bodyMono, Palette::ink, Format::l2Value(entry, Denomination::gwei),
             Qt::AlignRight);
}

void DrawnPopover::drawFooter(QPainter& painter, int top) const {
    drawRule(painter, top);
    drawText(painter, {margin, top + 9.0, 150, 14}, m_body, Palette::ink3, u"Updated just now"_s);
    drawText(painter, {200, top + 9.0, 130, 14}, m_caption, Palette::ink3, u"Per block"_s, Qt::AlignRight);
    drawRule(painter, top + 32);
    const QList<std::pair<QString, QString>> actions{
        {u"Refresh Now"_s, u"⌘R"_s}, {u"Preferences…"_s, u"⌘,"_s}, {u"Quit velisk"_s, u"⌘Q"_s}};
    top += 39;
    for (const auto& [label, keys] : actions) {
        drawText(painter, {margin, double(top), 200, 28}, m_title, Palette::ink, label);
        drawText(painter, {200, double(top), 130, 28}, m_bodyMono, Palette::ink3, keys, Qt::AlignRight);
        top += 28;
    }
}

} // namespace torvane

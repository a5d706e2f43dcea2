#include "Views/PanelParts.h"

#include "Design/ChainIcon.h"
#include "Design/DesignSystem.h"
#include "Views/Composition.h"
#include "Views/Drawing.h"
#include "Views/Rule.h"
#include "Views/SettingCard.h"
#include "Views/StatusDot.h"
#include "Views/Switch.h"
#include "Views/TextButton.h"
#include "Views/TextLabel.h"
#include "Views/TextLine.h"

#include <QPainter>

namespace torvane {

namespace {

constexpr int rowHeight = 47; ///< with the line below it, 48
constexpr int rowPadding = 8;
constexpr int controlGap = 12;
constexpr int titleHeight = 16;
constexpr double markSize = 24;
constexpr int cardGap = 16;
constexpr int noteGap = 10;

class Capsule final : public QWidget, public AccessiblePart {
public:
    explicit Capsule(const QString& text)
        : m_text(text) {
        setFont(Fonts::sans(10.5, QFont::Normal));
        setFixedSize(fontMetrics().horizontalAdvance(text) + 2 * 8, fontMetrics().height() + 2 * 2);
        installAccessibility();
        setAccessibleName(text);
    }

    QAccessible::Role accessibleRole() const override { return QAccessible::StaticText; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        drawRoundedRect(painter, rect(), std::min(9.0, height() / 2.0), Qt::transparent, Palette::ink4);
        painter.setPen(Palette::ink3);
        painter.drawText(rect(), Qt::AlignCenter, m_text);
    }

private:
    QString m_text;
};

QWidget* subtitleLabel(const QString& text) {
    return new TextLabel(text, Fonts::sans(11, QFont::Normal), Palette::ink3);
}

QWidget* lines(const QList<QWidget*>& texts) {
    QWidget* lines = PanelParts::column(texts);
    lines->layout()->setSpacing(1);
    return lines;
}

} // namespace

QWidget* PanelParts::column(const QList<QWidget*>& parts) {
    QBoxLayout* layout = torvane::column();
    for (QWidget* part : parts)
        layout->addWidget(part);
    return section(layout);
}

QWidget* PanelParts::row(QWidget* label, QWidget* control) {
    QBoxLayout* layout = padded({0, rowPadding, 0, rowPadding}, torvane::row(label, Space{controlGap}, control));
    layout->setStretchFactor(label, 1);
    QWidget* row = section(layout);
    row->setMinimumHeight(rowHeight);
    return row;
}

QWidget* PanelParts::beside(QWidget* picture, int gap, QWidget* text) {
    QBoxLayout* layout = torvane::row(picture, Space{gap}, text);
    layout->setStretchFactor(text, 1);
    return section(layout);
}

QWidget* PanelParts::info(const QString& title, const QString& subtitle) {
    auto* titleLabel = new TextLabel(title, Fonts::sans(13, QFont::Normal), Palette::ink);
    return subtitle.isEmpty() ? titleLabel : lines({titleLabel, subtitleLabel(subtitle)});
}

QWidget* PanelParts::netInfo(const QString& name, const QString& subtitle) {
    // A line that gives way: relays name networks as they like.
    auto* title = new TextLine({Fonts::sans(13, QFont::Normal), Palette::ink, titleHeight}, name);
    return beside(new ChainIcon(name, markSize), 10, lines({title, subtitleLabel(subtitle)}));
}

QWidget* PanelParts::sep() {
    return new Rule(0, Palette::line);
}

QWidget* PanelParts::label(const QString& text) {
    QFont font = Fonts::label();
    font.setLetterSpacing(QFont::AbsoluteSpacing, 0.4);
    auto* label = new TextLabel(text.toUpper(), font, Palette::ink3, QAccessible::Heading);
    label->setContentsMargins(2, 0, 2, 7);
    label->setAccessibleName(text); // Capitals may be read letter by letter.
    return label;
}

QWidget* PanelParts::legend(const QColor& color, const QString& text) {
    auto* word = new TextLabel(text, Fonts::sans(13, QFont::Normal), Palette::ink);
    word->setWordWrap(false);
    return section(torvane::row(new StatusDot(color), Space{7}, word));
}

QWidget* PanelParts::capsule(const QString& text) {
    return new Capsule(text);
}

QAbstractButton* PanelParts::outlineButton(const QString& text) {
    return new TextButton(text);
}

QWidget* PanelParts::card(QWidget* content, const QString& note) {
    QWidget* card = column({new SettingCard(content)});
    card->layout()->setContentsMargins(0, 0, 0, cardGap);
    if (!note.isEmpty()) {
        auto* label = new TextLabel(note, Fonts::sans(11, QFont::Normal), Palette::ink3);
        label->setContentsMargins(2, noteGap, 2, 0);
        card->layout()->addWidget(label);
    }
    return card;
}

QAbstractButton* PanelParts::toggle(const QString& name, Setting<bool>& setting) {
    auto* toggle = new Switch(name);
    toggle->setChecked(setting.value());
    setting.observe(toggle, [toggle](bool isOn) { toggle->setChecked(isOn); });
    QObject::connect(toggle, &QAbstractButton::clicked, toggle, [&setting](bool isOn) { setting = isOn; });
    return toggle;
}

} // namespace torvane

#include "Views/PanelParts.h"

#include "Design/ChainIcon.h"
#include "Design/DesignSystem.h"
#include "Views/Drawing.h"
#include "Views/SettingCard.h"
#include "Views/StatusDot.h"
#include "Views/Switch.h"
#include "Views/TextLabel.h"
#include "Views/TextLine.h"

#include <QPainter>
#include <QVBoxLayout>

namespace torvane {

namespace {

constexpr int rowHeight = 47; ///< with the line below it, 48
constexpr int rowPadding = 8;
constexpr int controlGap = 12;
constexpr int titleHeight = 16;
constexpr double markSize = 24;
constexpr int cardGap = 16;
constexpr int noteGap = 10;

class Separator final : public QWidget {
public:
    Separator() { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(QRectF(0, 0, width(), hairline), Palette::line);
    }
};

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

class OutlineButton final : public QAbstractButton {
public:
    explicit OutlineButton(const QString& text) {
        setText(text);
        setFont(Fonts::sans(12, QFont::Normal));
        setAttribute(Qt::WA_Hover);
        setFocusPolicy(Qt::StrongFocus);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 2 * 11, fontMetrics().height() + 2 * 5};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        constexpr double unavailableOpacity = 0.5;
        QPainter painter(this);
        painter.setOpacity(isEnabled() ? 1 : unavailableOpacity);
        const QColor fill = isDown() ? Palette::surface3 : underMouse() ? Palette::surface2 : Palette::surface;
        drawRoundedRect(painter, rect(), 7, fill, Palette::ink4);
        painter.setPen(Palette::ink);
        painter.drawText(rect(), Qt::AlignCenter, text());
    }
};

template <class Layout>
Layout* bare(QWidget* parent) {
    auto* layout = new Layout(parent);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    return layout;
}

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
    auto* column = new QWidget;
    auto* layout = bare<QVBoxLayout>(column);
    for (QWidget* part : parts)
        layout->addWidget(part);
    return column;
}

QWidget* PanelParts::row(QWidget* label, QWidget* control) {
    auto* row = new QWidget;
    row->setMinimumHeight(rowHeight);
    auto* layout = bare<QHBoxLayout>(row);
    layout->setContentsMargins(0, rowPadding, 0, rowPadding);
    layout->setSpacing(controlGap);
    layout->addWidget(label, 1);
    layout->addWidget(control);
    return row;
}

QWidget* PanelParts::info(const QString& title, const QString& subtitle) {
    auto* titleLabel = new TextLabel(title, Fonts::sans(13, QFont::Normal), Palette::ink);
    return subtitle.isEmpty() ? titleLabel : lines({titleLabel, subtitleLabel(subtitle)});
}

QWidget* PanelParts::netInfo(const QString& name, const QString& subtitle) {
    auto* network = new QWidget;
    auto* layout = bare<QHBoxLayout>(network);
    layout->setSpacing(10);
    layout->addWidget(new ChainIcon(name, markSize));
    // A line that gives way: relays name networks as they like.
    auto* title = new TextLine({Fonts::sans(13, QFont::Normal), Palette::ink, titleHeight}, name);
    layout->addWidget(lines({title, subtitleLabel(subtitle)}), 1);
    return network;
}

QWidget* PanelParts::sep() {
    return new Separator;
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
    auto* legend = new QWidget;
    auto* layout = bare<QHBoxLayout>(legend);
    layout->setSpacing(7);
    layout->addWidget(new StatusDot(color));
    auto* word = new TextLabel(text, Fonts::sans(13, QFont::Normal), Palette::ink);
    word->setWordWrap(false);
    layout->addWidget(word);
    return legend;
}

QWidget* PanelParts::capsule(const QString& text) {
    return new Capsule(text);
}

QAbstractButton* PanelParts::outlineButton(const QString& text) {
    return new OutlineButton(text);
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

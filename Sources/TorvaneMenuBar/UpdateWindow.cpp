#include "UpdateWindow.h"

#include "Design/DesignSystem.h"
#include "NotesView.h"
#include "Platform/WebPage.h"
#include "ProgramIcon.h"
#include "Support/Notice.h"
#include "Views/Composition.h"
#include "Views/FocusRing.h"
#include "Views/PanelParts.h"
#include "Views/Paragraph.h"
#include "Views/ProgressBar.h"
#include "Views/SettingCard.h"
#include "Views/StatusDot.h"
#include "Views/SymbolTile.h"
#include "Views/TextButton.h"
#include "Views/TextLabel.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>

#include <utility>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// No button to maximise what has a fixed size.
constexpr Qt::WindowFlags windowButtons = Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                                          Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint;

constexpr int windowWidth = 480;
constexpr int highestPage = 400; ///< or nearly so
constexpr int sidePadding = 24;
constexpr int topPadding = 22;
constexpr int bottomPadding = 18;
constexpr int innerWidth = windowWidth - 2 * sidePadding;
constexpr int tileSize = 52;
constexpr int tileGap = 14;
constexpr int textHeight = 17;
constexpr int partGap = 16;
constexpr int buttonGap = 8;
constexpr int buttonRowHeight = 28; ///< kept free where there are none, so that the window does not jump

/// All that a page shows, read as one pane of its headline's name.
class Content final : public QWidget, public AccessiblePart {
public:
    explicit Content(const QString& headline) {
        installAccessibility();
        setAccessibleName(headline);
        setFixedWidth(windowWidth);
    }

    QAccessible::Role accessibleRole() const override { return QAccessible::Pane; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.fillRect(rect(), Palette::paper);
    }
};

/// The page with the other one's progress.
UpdatePage withProgressOf(UpdatePage page, const UpdatePage& other) {
    page.progress = other.progress;
    return page;
}

Paragraph* paragraph(const QString& text, const DynamicColor& color, int width) {
    return new Paragraph({Fonts::sans(12, QFont::Normal), color, textHeight}, width, text);
}

/// In the middle of the screen where the user is, with room below for pages that are higher than the first: desktops
/// put a window where it fits as it is at first.
QPoint placeFor(const QPoint& pointer) {
    const QScreen* screen = QGuiApplication::screenAt(pointer);
    const QRect room = (screen ? screen : QGuiApplication::primaryScreen())->availableGeometry();
    return room.center() - QPoint(windowWidth / 2, highestPage / 2);
}

} // namespace

UpdateWindow::UpdateWindow(const UpdatePage& page)
    : QWidget(nullptr, Qt::Window | windowButtons)
    , m_page(page)
    , m_layout(new QVBoxLayout(this)) {
    setWindowTitle(u"velisk Update"_s);
    setWindowIcon(programIcon());
    setAttribute(Qt::WA_DeleteOnClose);
    m_layout->setContentsMargins(0, 0, 0, 0);
    m_layout->setSizeConstraint(QLayout::SetFixedSize);
    new FocusRing(this);
    build();
    move(placeFor(QCursor::pos()));
}

void UpdateWindow::turnTo(const UpdatePage& page) {
    if (page == m_page)
        return;
    const bool isSamePage = m_page.progress && page.progress && withProgressOf(page, m_page) == m_page;
    m_page = page;
    if (isSamePage)
        showProgress();
    else
        build();
}

void UpdateWindow::build() {
    if (QWidget* old = std::exchange(m_content, nullptr)) {
        old->hide();
        m_layout->removeWidget(old);
        old->deleteLater(); // It may be one of its buttons that led here.
    }
    m_default = nullptr;
    m_bar = nullptr;
    m_barText = nullptr;
    m_content = content();
    m_layout->addWidget(m_content);
    m_content->show();
    // The window itself where there is no default: a button that has the focus is pressed by Return.
    (m_default ? m_default : this)->setFocus(Qt::OtherFocusReason);
}

QWidget* UpdateWindow::content() {
    auto* content = new Content(m_page.headline);
    QBoxLayout* parts = padded({sidePadding, topPadding, sidePadding, bottomPadding}, column());
    content->setLayout(parts);
    auto* tile = new SymbolTile(u"fuelpump.fill"_s, {tileSize, 12, 22});
    auto* header = row(tile, Space{tileGap}, texts(innerWidth - tileSize - tileGap));
    header->setAlignment(tile, Qt::AlignTop);
    parts->addLayout(header);
    const bool hasNotes = !m_page.notes.isEmpty() || !m_page.notesLink.isEmpty();
    for (QWidget* part : {m_page.progress ? progress() : nullptr, hasNotes ? notes() : nullptr, buttons()}) {
        if (!part)
            continue;
        parts->addSpacing(partGap);
        parts->addWidget(part);
    }
    return content;
}

QWidget* UpdateWindow::texts(int width) const {
    auto* headline = new TextLine({Fonts::sans(17, QFont::DemiBold), Palette::ink, 22}, m_page.headline);
    auto* parts = column(headline, Space{3}, paragraph(m_page.text, Palette::ink2, width));
    if (!m_page.warning.isEmpty()) {
        parts->addSpacing(6);
        parts->addWidget(warning(width));
    }
    parts->addStretch();
    return section(parts);
}

QWidget* UpdateWindow::warning(int width) const {
    constexpr int dotSize = 7;
    constexpr int dotGap = 7;
    auto* dot = new StatusDot(Palette::neg, dotSize);
    return section(row(dot, Space{dotGap}, paragraph(m_page.warning, Palette::ink, width - dotSize - dotGap)));
}

QWidget* UpdateWindow::progress() {
    m_bar = new ProgressBar(m_page.headline);
    m_barText = new TextLine({Fonts::sans(12, QFont::Normal), Palette::ink3, textHeight});
    showProgress();
    return section(column(m_bar, Space{7}, m_barText));
}

void UpdateWindow::showProgress() {
    m_bar->setFraction(m_page.progress->fraction);
    m_barText->setText(m_page.progress->text);
}

QWidget* UpdateWindow::notes() {
    auto* heading = row(stretch);
    if (!m_page.notes.isEmpty())
        heading->insertWidget(0, PanelParts::label(u"What is new"_s), 0, Qt::AlignBottom);
    auto* parts = column(heading);
    if (!m_page.notesLink.isEmpty()) {
        auto* link = new TextButton(u"Release Notes…"_s);
        link->setAccessibleDescription(m_page.notesLink.toDisplayString());
        connect(link, &QAbstractButton::clicked, this, [url = m_page.notesLink] {
            if (!openWebPage(url))
                notice(u"No xdg-open here, which would open "_s + url.toDisplayString());
        });
        heading->addWidget(link);
        parts->addSpacing(m_page.notes.isEmpty() ? 0 : 7);
    }
    if (!m_page.notes.isEmpty()) {
        auto* card = new SettingCard(new NotesView(m_page.notes));
        card->layout()->setContentsMargins(0, 1, 0, 1); // Its border; all else is the notes' own, to their scroll bar.
        parts->addWidget(card);
    }
    return section(parts);
}

/// From the mildest to the default, which ends the row as it does on most desktops; to skip is far from both.
QWidget* UpdateWindow::buttons() {
    auto* row = torvane::row(stretch);
    for (const UpdateChoice& choice : m_page.choices) {
        if (choice.answer == Updates::Answer::skip)
            row->insertWidget(0, button(choice));
    }
    for (auto choice = m_page.choices.crbegin(); choice != m_page.choices.crend(); ++choice) {
        if (choice->answer != Updates::Answer::skip)
            row->addWidget(button(*choice));
    }
    row->setSpacing(buttonGap);
    QWidget* buttons = section(row);
    buttons->setMinimumHeight(buttonRowHeight);
    return buttons;
}

QWidget* UpdateWindow::button(const UpdateChoice& choice) {
    const bool isDefault = choice == m_page.byDefault();
    auto* button = new TextButton(choice.text, isDefault ? TextButton::Look::filled : TextButton::Look::outlined);
    connect(button, &QAbstractButton::clicked, this, [this, answer = choice.answer] { Q_EMIT answered(answer); });
    if (isDefault)
        m_default = button;
    return button;
}

void UpdateWindow::appear() {
    if (QGuiApplication::focusWindow())
        return bringToFront();
    setAttribute(Qt::WA_ShowWithoutActivating);
    show();
    raise();
}

void UpdateWindow::bringToFront() {
    setAttribute(Qt::WA_ShowWithoutActivating, false);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void UpdateWindow::leave() {
    m_page.mildest.reset();
    close();
}

/// Never refused: a program that quits asks its windows first, and one that stays open would keep it.
void UpdateWindow::closeEvent(QCloseEvent* event) {
    if (const auto answer = std::exchange(m_page.mildest, std::nullopt))
        Q_EMIT answered(*answer);
    event->accept();
}

void UpdateWindow::keyPressEvent(QKeyEvent* event) {
    const bool closes = event->matches(QKeySequence::Cancel) || event->keyCombination() == (Qt::CTRL | Qt::Key_W);
    const bool agrees = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (closes && m_page.mildest)
        close();
    else if (const auto choice = m_page.byDefault(); agrees && choice && !event->isAutoRepeat())
        Q_EMIT answered(choice->answer);
    else if (!closes)
        QWidget::keyPressEvent(event);
}

} // namespace torvane

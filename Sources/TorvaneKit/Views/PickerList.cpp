#include "Views/PickerList.h"

#include "Design/DesignSystem.h"
#include "Views/Drawing.h"
#include "Views/HiddenText.h"
#include "Views/ThinScrollBar.h"

#include <QComboBox>
#include <QHelpEvent>
#include <QListView>
#include <QPainter>
#include <QProxyStyle>
#include <QStyledItemDelegate>

namespace torvane {

namespace {

constexpr int rowHeight = 26;
constexpr double rowRadius = 5;
constexpr int rowPadding = 8;
constexpr int listPadding = 3;

class Row final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        return {QStyledItemDelegate::sizeHint(option, index).width(), rowHeight};
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        painter->save();
        if (option.state & QStyle::State_Selected)
            fillRoundedRect(*painter, option.rect, rowRadius, Palette::surface3);
        painter->setPen(Palette::ink);
        drawLine(*painter, roomOf(option), index.data().toString());
        painter->restore();
    }

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override {
        if (event->type() != QEvent::ToolTip)
            return QStyledItemDelegate::helpEvent(event, view, option, index);
        const QString title = index.data().toString();
        const bool isCut = view->fontMetrics().horizontalAdvance(title) > roomOf(option).width();
        showHiddenText(*event, isCut ? title : QString(), *view->viewport());
        return true;
    }

private:
    static QRect roomOf(const QStyleOptionViewItem& option) {
        return option.rect.adjusted(rowPadding, 0, -rowPadding, 0);
    }
};

class List final : public QListView {
public:
    explicit List(const QFont& font) {
        setFont(font);
        setFrameShape(QFrame::NoFrame);
        setVerticalScrollBar(new ThinScrollBar(this));
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setViewportMargins(listPadding, listPadding, listPadding, listPadding);
        setMouseTracking(true);
    }

protected:
    void paintEvent(QPaintEvent* event) override {
        QPainter(viewport()).fillRect(viewport()->rect(), Palette::surface);
        QListView::paintEvent(event);
    }
};

/// A list below the control that scrolls, not a menu over it that lies where the current item is.
class Style final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* answer) const override {
        return hint == SH_ComboBox_Popup ? 0 : QProxyStyle::styleHint(hint, option, widget, answer);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        if (element != CE_ShapedFrame)
            return QProxyStyle::drawControl(element, option, painter, widget);
        painter->setPen(QColor(Palette::line2));
        painter->setBrush(QColor(Palette::surface));
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }
};

} // namespace

void PickerList::install(QComboBox& comboBox) {
    auto* style = new Style;
    style->setParent(&comboBox);
    comboBox.setStyle(style);
    auto* list = new List(comboBox.font());
    comboBox.setView(list);
    list->window()->setStyle(style); // The frame around it.
    comboBox.setItemDelegate(new Row(&comboBox));
}

} // namespace torvane

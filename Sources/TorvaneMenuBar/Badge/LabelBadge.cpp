#include "Badge/LabelBadge.h"

#include "Badge/BadgeDrawing.h"

#include <QBuffer>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

/// Three times the usual 24.
constexpr int iconPixels = 72;

QByteArray png(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes;
}

/// The widest figure of as many characters: its room does not change with every digit.
QString guide(QString figure) {
    for (QChar& each : figure) {
        if (each.isDigit())
            each = u'0';
    }
    return figure;
}

} // namespace

std::optional<QString> LabelBadge::iconName(const BadgePicture& mark, const BadgeInk& ink) {
    if (mark.icon.colorIcon)
        return m_icons.put(png(squareBadge(mark, {ink.color, {}}, iconPixels)), ".png"_L1);
    return m_icons.put(symbolicBadge(mark, ink.color), "-symbolic.svg"_L1);
}

void LabelBadge::draw(const BadgePicture& picture, const BadgeInk& ink, NotifierLook& look) {
    BadgePicture mark = picture;
    mark.figure.clear();
    const std::optional<QString> name = iconName(mark, ink);
    look.iconName = name.value_or(QString());
    look.iconThemePath = name ? m_icons.folder() : QString();
    look.icons = name ? QList<QImage>() : squareBadges(mark, ink);
    const QString figure = picture.besideMark().figure;
    look.label = NotifierLabel{figure, guide(figure)};
}

} // namespace torvane

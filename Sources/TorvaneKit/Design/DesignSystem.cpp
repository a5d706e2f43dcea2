#include "Design/DesignSystem.h"

#include <QFontDatabase>
#include <QFontInfo>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

Appearance appearance = Appearance::light;

QFont sized(QFont font, double size, QFont::Weight weight) {
    font.setPixelSize(std::max(1, static_cast<int>(std::lround(size))));
    font.setWeight(weight);
    return font;
}

/// The desktop's fixed face, looked at again only when it became another one: that takes loading it.
QFont fixedFace() {
    static QFont asked;
    static QFont found = Fonts::monospaced(asked);
    const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    if (font != asked) {
        asked = font;
        found = Fonts::monospaced(font);
    }
    return found;
}

} // namespace

Appearance currentAppearance() {
    return appearance;
}

void setCurrentAppearance(Appearance next) {
    appearance = next;
}

QColor DynamicColor::in(Appearance wanted) const {
    const bool isDark = wanted == Appearance::dark;
    QColor color = QColor::fromRgb(isDark ? dark : light);
    color.setAlphaF(static_cast<float>(isDark ? darkOpacity : lightOpacity));
    return color;
}

QFont Fonts::mono(double size, QFont::Weight weight) {
    return sized(fixedFace(), size, weight);
}

QFont Fonts::sans(double size, QFont::Weight weight) {
    return sized(QFontDatabase::systemFont(QFontDatabase::GeneralFont), size, weight);
}

QFont Fonts::label() {
    return mono(10.5, QFont::Medium);
}

QFont Fonts::monospaced(const QFont& font) {
    if (QFontInfo(font).fixedPitch())
        return font;
    QFont fixed = font;
    fixed.setFamilies({u"monospace"_s});
    fixed.setStyleHint(QFont::Monospace);
    fixed.setFixedPitch(true);
    return fixed;
}

QColor color(GasLevel level) {
    switch (level) {
    case GasLevel::low:
        return Palette::pos;
    case GasLevel::normal:
        return Palette::warn;
    case GasLevel::busy:
        return Palette::neg;
    }
    Q_UNREACHABLE();
}

QColor l2StatusColor(const QString& status) {
    if (status == "Low"_L1)
        return Palette::pos;
    if (status == "Normal"_L1)
        return Palette::warn;
    if (status == "Elevated"_L1)
        return Palette::neg;
    return Palette::ink3;
}

} // namespace torvane

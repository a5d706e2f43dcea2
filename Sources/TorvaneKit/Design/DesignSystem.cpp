#include "Design/DesignSystem.h"

#include <QFontDatabase>

#include <cmath>

using namespace Qt::StringLiterals;

namespace torvane {

namespace {

Appearance appearance = Appearance::light;

QFont face(QFontDatabase::SystemFont kind, double size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(kind);
    font.setPixelSize(static_cast<int>(std::lround(size)));
    font.setWeight(weight);
    return font;
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
    return face(QFontDatabase::FixedFont, size, weight);
}

QFont Fonts::sans(double size, QFont::Weight weight) {
    return face(QFontDatabase::GeneralFont, size, weight);
}

QFont Fonts::label() {
    return mono(10.5, QFont::Medium);
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

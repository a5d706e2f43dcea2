#pragma once

#include "Model/GasLevel.h"

#include <QColor>
#include <QFont>

/// Every colour and font of the windows. No view names one of its own.
namespace torvane {

/// Whether windows are dark or light.
enum class Appearance { light, dark };

/// The appearance that the palette's colours resolve against; light until it is set. Main thread only.
Appearance currentAppearance();
void setCurrentAppearance(Appearance appearance);

/// A colour with a value for each appearance; it resolves anew each time it is read as a QColor, so that a change of
/// the appearance recolours everything at its next repaint.
struct DynamicColor {
    QRgb dark;
    double darkOpacity;
    QRgb light;
    double lightOpacity;

    QColor in(Appearance appearance) const;
    operator QColor() const { return in(currentAppearance()); } // NOLINT(google-explicit-constructor)
};

/// sRGB colours: a warm grey ramp and three muted status colours.
namespace Palette {

/// From 0xRRGGBB for the dark and for the light appearance.
constexpr DynamicColor dyn(quint32 dark, quint32 light) {
    return {dark, 1, light, 1};
}

/// The same with an opacity for each, 0 to 1.
constexpr DynamicColor dynA(quint32 dark, double darkOpacity, quint32 light, double lightOpacity) {
    return {dark, darkOpacity, light, lightOpacity};
}

inline constexpr DynamicColor ink = dyn(0xECEBE7, 0x1B1B1A);
inline constexpr DynamicColor ink2 = dyn(0xA7A6A0, 0x5C5B57);
inline constexpr DynamicColor ink3 = dyn(0x7A7974, 0x8A8984);
inline constexpr DynamicColor ink4 = dyn(0x54534F, 0xB3B2AC);
inline constexpr DynamicColor paper = dyn(0x161614, 0xF6F5F3);
inline constexpr DynamicColor surface = dyn(0x1E1E1C, 0xFFFFFF);
inline constexpr DynamicColor surface2 = dyn(0x262624, 0xEFEEEB);
inline constexpr DynamicColor surface3 = dyn(0x2F2F2C, 0xE7E5E1);
inline constexpr DynamicColor line = dyn(0x2C2C29, 0xE4E2DD);
inline constexpr DynamicColor line2 = dyn(0x3A3A36, 0xD5D3CD);

inline constexpr DynamicColor glassScrim = dynA(0x1E1E1C, 0.55, 0xFFFFFF, 0.50);
inline constexpr DynamicColor glassFill = dynA(0xFFFFFF, 0.06, 0xFFFFFF, 0.55);
inline constexpr DynamicColor glassStroke = dynA(0xFFFFFF, 0.16, 0xFFFFFF, 0.85);

inline constexpr QColor pos{0x5E, 0x72, 0x57};
inline constexpr QColor warn{0x9A, 0x7B, 0x43};
inline constexpr QColor neg{0x97, 0x57, 0x4B};

inline constexpr const DynamicColor& accent = ink;
inline constexpr const DynamicColor& accentInk = surface; ///< text upon an accent fill

} // namespace Palette

/// Fonts of the desktop's own faces. Sizes are in device-independent pixels, to the nearest whole one, halves up: so Qt
/// draws them anyhow, in points too. That keeps a text's width the same at every scale.
namespace Fonts {

QFont mono(double size, QFont::Weight weight);
QFont sans(double size, QFont::Weight weight);
QFont label(); ///< 10.5, medium, monospaced: captions in capitals

/// The font, or a fixed one of its size and weight where it is not fixed itself.
QFont monospaced(const QFont& font);

} // namespace Fonts

/// pos, warn or neg.
QColor color(GasLevel level);

/// The colour of a Layer 2 network's status word, matched exactly; ink3 for "Unavailable" and any other.
QColor l2StatusColor(const QString& status);

} // namespace torvane

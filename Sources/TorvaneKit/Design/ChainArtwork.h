#pragma once

#include <QStringView>

/// The networks' emblems as SVG path data in a box of 24 by 24 units: what the coloured and the monochrome marks share.
/// Holes run against their outlines, so that either fill rule leaves them open. No gap but a pointed one is thinner
/// than 1.2 units: it has to be seen at 15 pixels.
namespace torvane::ChainArtwork {

/// An eight-sided stone seen from the side, cut through below its widest place.
inline constexpr QStringView ethereumAbove = u"M12 2.1L18.1 11.9L12 15.5L5.9 11.9Z";
inline constexpr QStringView ethereumBelow = u"M5.9 13.9L12 17.5L18.1 13.9L12 21.9Z";

/// A hexagon on its tip with three slanted bars cut out of it.
inline constexpr QStringView arbitrum =
    u"M11.1 2.12A1.8 1.8 0 0 1 12.9 2.12L20.11 6.28A1.8 1.8 0 0 1 21.01 7.84V16.16A1.8 1.8 0 0 1 20.11 17.72"
    "L12.9 21.88A1.8 1.8 0 0 1 11.1 21.88L3.89 17.72A1.8 1.8 0 0 1 2.99 16.16V7.84A1.8 1.8 0 0 1 3.89 6.28Z"
    "M5.31 16.9H7.89L11.99 6.3H9.41ZM9.92 17.6H12.48L14.38 12.5H11.82ZM16.11 16.9H18.69L14.99 7.7H12.41Z";

/// The letters O and P, heavy and leaning by 1 in 5.
inline constexpr QStringView optimism =
    u"M1.85 12C2.47 8.9 4.6 7 7.45 7C10.3 7 11.67 8.9 11.05 12C10.43 15.1 8.3 17 5.45 17C2.6 17 1.23 15.1 1.85 12Z"
    "M8.3 12C8.6 10.5 8.06 9.5 6.95 9.5C5.84 9.5 4.9 10.5 4.6 12C4.3 13.5 4.84 14.5 5.95 14.5C7.06 14.5 8 13.5 8.3 12Z"
    "M11.4 17L13.4 7H19.25C21.2 7 22.24 8.3 21.85 10.25C21.46 12.2 19.9 13.5 17.95 13.5H14.95L14.25 17Z"
    "M15.38 11.35H18.38C19.04 11.35 19.57 10.91 19.7 10.25C19.83 9.59 19.48 9.15 18.82 9.15H15.82Z";

/// A disc with a slot from its left edge to past its middle.
inline constexpr QStringView base = u"M3.45 11.05A8.6 8.6 0 1 1 3.45 12.95H15.2V11.05Z";

/// A feather; the slit along its shaft is open at the foot.
inline constexpr QStringView robinhoodFeather =
    u"M5.6 21.6C5.2 13.2 8.2 5.9 14.6 2.8L19 2.2C19.8 6 19.2 8.9 17.6 11.3L14.2 11.6L16.4 13C14.8 15.5 12.8 16.8 9.9 17"
    "C10.8 13.2 12.5 9.6 15.4 5.4C11.2 9 8.6 13.2 7.9 18.2C7.6 19.4 7.4 20.5 7.4 21.6Z";

/// Two arrows that point away from each other, each with the other's shaft beside its own; either is the other turned
/// by half a circle.
inline constexpr QStringView zkSyncLeft = u"M1.6 12L8 5.6V8.8H14.8L8 13.9V18.4Z";
inline constexpr QStringView zkSyncRight = u"M22.4 12L16 18.4V15.2H9.2L16 10.1V5.6Z";

/// A cross; a quarter circle fills it out at upper right and at lower left. Its bars are one whole pixel wide at 15.
inline constexpr QStringView unichain =
    u"M11.2 1.6H12.8A9.6 9.6 0 0 0 22.4 11.2V12.8H12.8V22.4H11.2A9.6 9.6 0 0 0 1.6 12.8V11.2H11.2Z";

/// A sheet that is rolled up at its top left and at its foot.
inline constexpr QStringView scrollCurl = u"M4.9 3.2A2.5 2.5 0 0 1 7.4 5.7V9.2H2.4V5.7A2.5 2.5 0 0 1 4.9 3.2Z";
inline constexpr QStringView scrollSheet = u"M7.9 3.2H15.6A3 3 0 0 1 18.6 6.2V15.4H8.8V5.7C8.8 4.8 8.5 3.9 7.9 3.2Z";
inline constexpr QStringView scrollFoot = u"M8.8 16.8H21.6V17.6A3.2 3.2 0 0 1 18.4 20.8H12A3.2 3.2 0 0 1 8.8 17.6Z";

/// The letter L, as high as the middle of the dot beside it. Edges lie on multiples of 1.6: whole pixels at 15.
inline constexpr QStringView lineaLetter = u"M4.8 6.4H8V17.6H19.2V20.8H4.8Z";
inline constexpr QStringView lineaDot = u"M13.2 6.4A3 3 0 1 1 19.2 6.4A3 3 0 1 1 13.2 6.4Z";

/// A wave with a crest along its back, a star and a dot.
inline constexpr QStringView starknetCrest =
    u"M2.4 16.6C4.2 9.6 9.6 5.8 15.4 6C17.8 6.1 19.8 6.8 21.6 7.6C19.5 8.3 17.5 8.6 15 8.9C10 9.4 6 12 2.4 16.6Z";
inline constexpr QStringView starknetWave = u"M2.4 16.6C5.6 10.6 10.2 7.9 15.4 7.9C17.6 7.9 19.6 8.1 21.6 7.6C18.4 8.9 "
                                            u"16.8 11 15.2 14C13.4 17.6 11 19.6 7.7 19.3"
                                            "C5.5 19.1 3.6 18.2 2.4 16.6Z";
inline constexpr QStringView starknetStar =
    u"M5.9 2.6Q6.56 5.24 9.2 5.9Q6.56 6.56 5.9 9.2Q5.24 6.56 2.6 5.9Q5.24 5.24 5.9 2.6Z";
inline constexpr QStringView starknetDot = u"M16.2 17.6A2 2 0 1 1 20.2 17.6A2 2 0 1 1 16.2 17.6Z";

} // namespace torvane::ChainArtwork

#pragma once

#include <QLocale>
#include <QString>

namespace torvane {

/// A number with this many decimals, as C's printf("%.*f") writes it in the POSIX locale whatever the process's locale
/// is: rounded to the nearest from the exact binary value, ties to even. A negative precision counts as 6, as in C.
/// Not a number is "nan", without a sign.
QString fixedPoint(double value, int precision);

/// A fixed-point text in a locale's digits, grouping, decimal point and minus sign. A text that is no finite number is
/// returned as it is.
QString grouped(const QString& fixedPoint, const QLocale& locale);

} // namespace torvane

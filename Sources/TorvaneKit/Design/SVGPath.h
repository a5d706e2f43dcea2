#pragma once

#include <QPainterPath>
#include <QStringView>

/// Path data as in the d attribute of SVG 1.1.
namespace torvane::SVGPath {

/// The path in the string's own units; empty when anything in it is malformed, never a part of it.
QPainterPath path(QStringView from);

} // namespace torvane::SVGPath

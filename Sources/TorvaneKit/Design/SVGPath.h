#pragma once

#include <QPainterPath>
#include <QStringView>

/// Path data as in the d attribute of SVG 1.1 (chapter 8.3), with two rules of its own: the flags of an arc are numbers
/// like any other, so `00` is one of them, and every group after the first of a Q is read as one of a T.
namespace torvane::SVGPath {

/// The path in the string's own units; empty when anything in it is malformed, or lies further out than a QPainterPath
/// can hold (1e128), never a part of it. Which parts of the plane are inside is the caller's to say: the path has Qt's
/// fill rule, odd-even, while SVG fills by the winding number unless told otherwise.
QPainterPath path(QStringView from);

} // namespace torvane::SVGPath

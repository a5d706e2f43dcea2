#pragma once

#include <QString>

/// Texts from a feed as they may be shown: whoever wrote them cannot restyle, reorder or flood a window.
namespace torvane::Updates::PlainText {

/// Several lines. Markup is shown as it stands, and nothing in it is carried out. Control characters and those that
/// turn the direction of text around are gone; what is longer than some pages ends in an ellipsis.
QString paragraphs(const QString& text);

/// One short line, blanks folded.
QString line(const QString& text);

} // namespace torvane::Updates::PlainText

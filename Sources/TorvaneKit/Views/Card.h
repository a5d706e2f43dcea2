#pragma once

class QPainter;
class QRectF;

namespace torvane {

/// The ground that sets a group of figures off: translucent, rounded, with a hairline border inside its rectangle.
void paintCard(QPainter& painter, const QRectF& rectangle);

} // namespace torvane

#pragma once

#include "Badge/BadgeLook.h"

#include <QImage>
#include <QPainterPath>

namespace torvane {

QImage markImage(const BadgePicture& picture, int pixels);
QPainterPath markPath(const BadgePicture& picture);

} // namespace torvane

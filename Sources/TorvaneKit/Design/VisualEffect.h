#pragma once

#include "Platform/X11Properties.h"

#include <QRegion>
#include <QWidget>

namespace torvane {

/// What a backdrop is made of.
enum class Material {
    popover, ///< glass with round corners and a bright edge
    window,  ///< plain paper up to the edges
};

/// What a backdrop lets through, where the desktop can: what lies behind its window, or nothing.
enum class BlendingMode { behindWindow, withinWindow };

/// How a backdrop comes about on the present desktop.
struct BackdropLook {
    bool hasGround; ///< opaque below the glass
    bool isBlurred; ///< the compositor blurs what lies behind
    bool isCutOut;  ///< the corners are cut out of the window, since they cannot be transparent

    bool operator==(const BackdropLook&) const = default;
};

BackdropLook backdropLook(BlendingMode mode, bool isX11, const X11::Compositing& compositing);

/// A backdrop behind a window's content. Its look does not depend on whether the window is active.
class VisualEffect final : public QWidget {
public:
    /// A backdrop that lets through what lies behind makes its window translucent, where that shows: before the window
    /// is first shown.
    VisualEffect(Material material, BlendingMode blendingMode, QWidget* parent,
                 const X11::Compositing& compositing = X11::compositing());

    Material material() const { return m_material; }
    BlendingMode blendingMode() const { return m_blendingMode; }

    void setMaterial(Material material);
    void setBlendingMode(BlendingMode mode);

    /// The whole pixels of a rectangle with round corners.
    static QRegion outline(const QRect& rectangle, int radius);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void adapt(const X11::Compositing& compositing);
    void shapeWindow();

    Material m_material;
    BlendingMode m_blendingMode;
    BackdropLook m_look;
};

} // namespace torvane

#include "Icons/QtSVGPath.h"

#include <QPaintEngine>
#include <QPainter>
#include <QSvgRenderer>

namespace torvane {

namespace {

constexpr int side = 24;

/// Keeps what is drawn instead of drawing it: Qt has no public function that reads path data.
class KeepingEngine final : public QPaintEngine {
public:
    KeepingEngine()
        : QPaintEngine(AllFeatures) {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPath(const QPainterPath& path) override { kept = path; }
    Type type() const override { return User; }

    QPainterPath kept;
};

class KeepingDevice final : public QPaintDevice {
public:
    QPaintEngine* paintEngine() const override { return &engine; }

    mutable KeepingEngine engine;

protected:
    int metric(PaintDeviceMetric which) const override {
        switch (which) {
        case PdmWidth:
        case PdmHeight:
            return side;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        case PdmDepth:
            return 32;
        default:
            return 96;
        }
    }
};

} // namespace

QByteArray svgDocument(const QString& text, const char* attribute) {
    return QByteArrayLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 24\"><path ") + attribute +
           "=\"" + text.toUtf8() + "\"/></svg>";
}

QPainterPath qtSVGPath(const QString& text) {
    QSvgRenderer renderer(svgDocument(text, "d"));
    KeepingDevice device;
    QPainter painter(&device);
    renderer.render(&painter, QRectF(0, 0, side, side));
    painter.end();
    return device.engine.kept;
}

} // namespace torvane

// What is drawn on what: the texts and symbols of a widget with their colours and the grounds behind them.
#pragma once

#include "support/contrast.h"
#include "support/painted.h"

#include <QHash>
#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>

#include <vector>

namespace kelm::test {

/// A text or a symbol that was drawn.
struct Ink
{
    enum class Kind { text, symbol };

    Kind kind = Kind::text;
    /// Empty for symbols.
    QString text;
    /// Both opaque: what is seen.
    QColor color;
    QColor ground;
    /// In the picture.
    QRect place;

    double contrast() const { return test::contrast(color, ground); }
};

/// Draws as any picture does, and writes down the texts and symbols with what lay behind them when they were drawn.
class InkEngine final : public QPaintEngine
{
public:
    explicit InkEngine(QImage& picture) : QPaintEngine(AllFeatures), picture_(picture) {}

    std::vector<Ink>& inks() { return inks_; }

    bool begin(QPaintDevice*) override { return painter_.begin(&picture_); }
    bool end() override { return painter_.end(); }
    Type type() const override { return User; }

    void updateState(const QPaintEngineState& changedState) override
    {
        const DirtyFlags changed = changedState.state();
        if (changed.testFlag(DirtyPen)) {
            painter_.setPen(changedState.pen());
        }
        if (changed.testFlag(DirtyBrush)) {
            painter_.setBrush(changedState.brush());
        }
        if (changed.testFlag(DirtyBrushOrigin)) {
            painter_.setBrushOrigin(changedState.brushOrigin());
        }
        if (changed.testFlag(DirtyFont)) {
            painter_.setFont(changedState.font());
        }
        if (changed.testFlag(DirtyBackground)) {
            painter_.setBackground(changedState.backgroundBrush());
        }
        if (changed.testFlag(DirtyBackgroundMode)) {
            painter_.setBackgroundMode(changedState.backgroundMode());
        }
        if (changed.testFlag(DirtyOpacity)) {
            painter_.setOpacity(changedState.opacity());
        }
        if (changed.testFlag(DirtyHints)) {
            painter_.setRenderHints(painter_.renderHints(), false);
            painter_.setRenderHints(changedState.renderHints());
        }
        if (changed.testFlag(DirtyCompositionMode)) {
            painter_.setCompositionMode(changedState.compositionMode());
        }
        if (changed & (DirtyTransform | DirtyClipRegion | DirtyClipPath | DirtyClipEnabled)) {
            followClip(changedState);
        }
    }

    void drawPath(const QPainterPath& path) override { painter_.drawPath(path); }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override
    {
        if (mode == PolylineMode) {
            painter_.drawPolyline(points, count);
        } else {
            painter_.drawPolygon(points, count, mode == WindingMode ? Qt::WindingFill : Qt::OddEvenFill);
        }
    }
    void drawPolygon(const QPoint* points, int count, PolygonDrawMode mode) override
    {
        const QList<QPointF> exact(points, points + count);
        drawPolygon(exact.constData(), count, mode);
    }
    void drawPixmap(const QRectF& target, const QPixmap& pixmap, const QRectF& source) override
    {
        drawImage(target, pixmap.toImage(), source, Qt::AutoColor);
    }
    void drawImage(const QRectF& target, const QImage& image, const QRectF& source, Qt::ImageConversionFlags) override
    {
        constexpr qreal largestSymbol = 80;
        if (image.hasAlphaChannel() && target.width() <= largestSymbol && target.height() <= largestSymbol) {
            noteSymbol(target, image.copy(source.toRect()));
        }
        painter_.drawImage(target, image, source);
    }
    void drawTiledPixmap(const QRectF& target, const QPixmap& pixmap, const QPointF& offset) override
    {
        painter_.drawTiledPixmap(target, pixmap, offset);
    }
    void drawTextItem(const QPointF& place, const QTextItem& item) override
    {
        const QString text = item.text().simplified();
        const QRectF box(place.x(), place.y() - item.ascent(), item.width(), item.ascent() + item.descent());
        if (!text.isEmpty()) {
            note(Ink::Kind::text, text, painter_.pen().color(), box);
        }
        painter_.drawTextItem(place, item);
    }

private:
    void followClip(const QPaintEngineState& followed)
    {
        painter_.resetTransform();
        if (systemClip().isEmpty()) {
            painter_.setClipping(false);
        } else {
            painter_.setClipRegion(systemClip());
        }
        painter_.setTransform(followed.transform());
        const bool cuts = painter()->hasClipping();
        if (cuts) {
            painter_.setClipPath(painter()->clipPath(), systemClip().isEmpty() ? Qt::ReplaceClip : Qt::IntersectClip);
        }
    }

    void noteSymbol(const QRectF& target, const QImage& symbol)
    {
        // The colour of its strokes is that of the pixel that is covered most.
        QColor strokes = Qt::transparent;
        const auto eachPixel = [&](const auto& visit) {
            for (int y = 0; y < symbol.height(); ++y) {
                for (int x = 0; x < symbol.width(); ++x) {
                    visit(symbol.pixelColor(x, y));
                }
            }
        };
        eachPixel([&](const QColor& pixel) { strokes = pixel.alpha() > strokes.alpha() ? pixel : strokes; });
        // A picture in many colours is no symbol.
        bool isOfOneColor = strokes.alpha() > 0;
        eachPixel([&](const QColor& pixel) {
            constexpr int nearlyCovered = 200;
            constexpr int rounding = 12;
            isOfOneColor = isOfOneColor && (pixel.alpha() < nearlyCovered || distance(pixel, strokes) <= rounding);
        });
        if (isOfOneColor) {
            note(Ink::Kind::symbol, {}, strokes, target);
        }
    }

    void note(Ink::Kind kind, const QString& text, QColor color, const QRectF& box)
    {
        QRect place = painter_.transform().mapRect(box).toAlignedRect() & picture_.rect();
        if (painter_.hasClipping()) {
            place &= painter_.transform().map(painter_.clipRegion()).boundingRect();
        }
        color.setAlphaF(static_cast<float>(color.alphaF() * painter_.opacity()));
        if (place.isEmpty() || color.alpha() == 0) {
            return;
        }
        QHash<QRgb, int> grounds;
        for (int y = place.top(); y <= place.bottom(); ++y) {
            const auto* line = reinterpret_cast<const QRgb*>(picture_.constScanLine(y));
            for (int x = place.left(); x <= place.right(); ++x) {
                ++grounds[line[x]];
            }
        }
        const QColor ground = QColor::fromRgb(commonest(grounds));
        inks_.push_back({kind, text, over(ground, color), ground, place});
    }

    static QRgb commonest(const QHash<QRgb, int>& counts)
    {
        auto most = counts.constBegin();
        for (auto count = counts.constBegin(); count != counts.constEnd(); ++count) {
            if (count.value() > most.value()) {
                most = count;
            }
        }
        return most.key();
    }

    QImage& picture_;
    QPainter painter_;
    std::vector<Ink> inks_;
};

/// A picture that knows the texts and symbols on it.
class InkRecorder final : public QPaintDevice
{
public:
    explicit InkRecorder(QSize size) : picture_(size, QImage::Format_RGB32), engine_(picture_)
    {
        picture_.fill(Qt::magenta);
    }

    const QImage& picture() const { return picture_; }
    const std::vector<Ink>& inks() { return engine_.inks(); }

    QPaintEngine* paintEngine() const override { return &engine_; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return picture_.width();
        case PdmHeight:
            return picture_.height();
        case PdmDepth:
            return picture_.depth();
        case PdmNumColors:
            return picture_.colorCount();
        case PdmWidthMM:
            return picture_.widthMM();
        case PdmHeightMM:
            return picture_.heightMM();
        case PdmDpiX:
        case PdmPhysicalDpiX:
            return picture_.physicalDpiX();
        case PdmDpiY:
        case PdmPhysicalDpiY:
            return picture_.physicalDpiY();
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(devicePixelRatioFScale());
        }
        return QPaintDevice::metric(metric);
    }

private:
    QImage picture_;
    mutable InkEngine engine_;
};

/// The texts and symbols that a window shows, each with the picture's colours.
inline std::vector<Ink> inksOf(QWidget& widget, QImage* picture = nullptr)
{
    InkRecorder recorder(widget.size());
    widget.render(&recorder);
    if (picture != nullptr) {
        *picture = recorder.picture();
    }
    return recorder.inks();
}

} // namespace kelm::test

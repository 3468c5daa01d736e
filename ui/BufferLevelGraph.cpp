#include "ui/BufferLevelGraph.h"

#include "ui/PolygonCoverage.h"

#include <algorithm>
#include <cmath>

namespace {

/// Device pixels. Narrower strips cost more to set up than they save.
constexpr double leastStripWidth = 8.0;
/// A painter may round the edge of a clip that lies on a whole pixel to either side.
constexpr double clipInset = 1.0 / 16.0;
/// Device pixels. A painter cuts polygons that reach further, and what is left
/// of their edges would depend on the strip.
constexpr double furthest = polygoncoverage::furthest;

/// From the painter's own origin, without the transformation of its user.
QTransform ownTransform(const QCPPainter &painter)
{
    return painter.worldTransform().inverted() * painter.deviceTransform();
}

bool isFar(double coordinate)
{
    return std::abs(coordinate) > furthest;
}

} // namespace

BufferLevelGraph::BufferLevelGraph(QCPAxis *keyAxis, QCPAxis *valueAxis)
    : QCPGraph(keyAxis, valueAxis)
{
}

void BufferLevelGraph::drawFill(QCPPainter *painter, QVector<QPointF> *lines) const
{
    if (painter->brush().style() == Qt::NoBrush || painter->brush().color().alpha() == 0)
        return;
    applyFillAntialiasingHint(painter);
    const bool coarse = !painter->antialiasing() && antialiasedFill() && isDragged();
    if (coarse)
        painter->setAntialiasing(true);
    const auto fill = canFillByPixels(*painter, *lines)   ? &BufferLevelGraph::fillByPixels
                      : canFillInStrips(*painter, *lines) ? &BufferLevelGraph::fillInStrips
                                                          : nullptr;
    if (fill) {
        const QVector<QCPDataRange> segments = getNonNanSegments(lines, Qt::Horizontal);
        for (const QCPDataRange &segment : segments) {
            if (segment.size() > 1)
                (this->*fill)(painter, *lines, segment);
        }
    } else {
        QCPGraph::drawFill(painter, lines);
    }
    if (coarse)
        painter->setAntialiasing(false);
}

/// Antialiasing is off then to save time, of which this fill takes least with it.
bool BufferLevelGraph::isDragged() const
{
    return parentPlot()->noAntialiasingOnDrag() && parentPlot()->notAntialiasedElements() == QCP::aeAll;
}

/// Where the painter would use a plain colour and its own antialiasing, pixel
/// on pixel.
bool BufferLevelGraph::canFillByPixels(const QCPPainter &painter, const QVector<QPointF> &lines) const
{
    return lineStyle() != lsImpulse && !channelFillGraph() && keyAxis()->orientation() == Qt::Horizontal &&
           painter.antialiasing() && !painter.modes().testFlag(QCPPainter::pmVectorized) &&
           painter.paintEngine()->type() == QPaintEngine::Raster &&
           painter.brush().style() == Qt::SolidPattern &&
           painter.compositionMode() == QPainter::CompositionMode_SourceOver && painter.opacity() >= 1.0 &&
           painter.deviceTransform().type() <= QTransform::TxScale && isNear(painter, lines) &&
           std::none_of(lines.cbegin(), lines.cend(), [&painter](const QPointF &point) {
               return isFar(painter.deviceTransform().map(point).x());
           });
}

/// Whether the painter's device has neither a level nor the base too high or low.
bool BufferLevelGraph::isNear(const QCPPainter &painter, const QVector<QPointF> &lines) const
{
    const auto isFarOff = [&painter](const QPointF &point) {
        return isFar(painter.deviceTransform().map(point).y());
    };
    return lines.isEmpty() || (!isFarOff(getFillBasePoint(lines.first())) &&
                               std::none_of(lines.cbegin(), lines.cend(), isFarOff));
}

void BufferLevelGraph::fillByPixels(QCPPainter *painter, const QVector<QPointF> &lines,
                                    const QCPDataRange &segment) const
{
    const QPolygonF area = painter->deviceTransform().map(
        areaUnder(lines.constData() + segment.begin(), lines.constData() + segment.end() - 1));
    const QRect view = visiblePixels(*painter) & area.boundingRect().adjusted(0, 0, 1, 1).toAlignedRect();
    if (view.isEmpty())
        return;
    painter->save();
    painter->setWorldTransform(ownTransform(*painter).inverted());
    painter->drawImage(view.topLeft(), polygoncoverage::paint(area, view, painter->brush().color()));
    painter->restore();
}

/// Of the painter's device. Its own clip may be a pixel off.
QRect BufferLevelGraph::visiblePixels(const QCPPainter &painter) const
{
    return painter.deviceTransform().mapRect(QRectF(clipRect())).adjusted(-2, -2, 2, 2).toAlignedRect();
}

/// Strips are upright, meet on whole pixels of the device and hold successive
/// points. A vector format has no pixels: seams would show there.
bool BufferLevelGraph::canFillInStrips(const QCPPainter &painter, const QVector<QPointF> &lines) const
{
    const QTransform &transform = painter.deviceTransform();
    if (lineStyle() == lsImpulse || channelFillGraph() || keyAxis()->orientation() != Qt::Horizontal ||
        painter.modes().testFlag(QCPPainter::pmVectorized) || transform.type() > QTransform::TxScale ||
        transform.m11() <= 0.0)
        return false;
    return isNear(painter, lines) &&
           std::is_sorted(lines.cbegin(), lines.cend(),
                          [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
}

/// Each strip is clipped out of the area under those points that it needs. The
/// curve itself is never cut, so that every pixel gets the coverage it would
/// have in one piece. A strip ends in the pixel of a point: an edge, however
/// long, is drawn twice at most.
void BufferLevelGraph::fillInStrips(QCPPainter *painter, const QVector<QPointF> &lines,
                                    const QCPDataRange &segment) const
{
    const QTransform toDevice = painter->deviceTransform();
    const QTransform fromDevice = toDevice.inverted();
    const auto deviceX = [&](const QPointF &point) { return point.x() * toDevice.m11() + toDevice.dx(); };
    const QRectF visible(visiblePixels(*painter));

    const QPointF *const end = lines.constData() + segment.end();
    const QPointF *first = lines.constData() + segment.begin();
    double left = std::floor(deviceX(*first)) - 1.0;
    while (first + 1 < end) {
        const QPointF *last = std::partition_point(first + 1, end, [&](const QPointF &point) {
            return deviceX(point) < std::max(left, visible.left()) + leastStripWidth;
        });
        const bool closes = last == end || last + 1 == end;
        if (last == end)
            --last;
        const double right = closes ? std::ceil(deviceX(*last)) + 1.0 : std::floor(deviceX(*last));
        const double shownLeft = std::max(left, visible.left());
        const double shownRight = std::min(right, visible.right());
        if (shownLeft < shownRight) {
            painter->save();
            const QRectF strip(QPointF(shownLeft, visible.top()), QPointF(shownRight, visible.bottom()));
            painter->setClipRect(fromDevice.mapRect(strip.adjusted(clipInset, 0, -clipInset, 0)),
                                 Qt::IntersectClip);
            painter->drawPolygon(areaUnder(first, last));
            painter->restore();
        }
        if (closes || right >= visible.right())
            return;
        left = right;
        // The last point that is not right of the boundary begins the next strip.
        first = deviceX(*last) > right ? last - 1 : last;
    }
}

/// \param last the last point, not one past it
QPolygonF BufferLevelGraph::areaUnder(const QPointF *first, const QPointF *last) const
{
    QPolygonF area(static_cast<int>(last - first) + 3);
    area.first() = getFillBasePoint(*first);
    std::copy(first, last + 1, area.begin() + 1);
    area.last() = getFillBasePoint(*last);
    return area;
}

#include "ui/BufferLevelGraph.h"

#include <algorithm>
#include <cmath>

namespace {

/// Device pixels. Narrower strips cost more to set up than they save.
constexpr double leastStripWidth = 16.0;
/// A painter may round the edge of a clip that lies on a whole pixel to either side.
constexpr double clipInset = 1.0 / 16.0;
/// Device pixels. A painter cuts polygons that reach further, and what is left
/// of their edges would depend on the strip.
constexpr double furthest = 8192.0;

} // namespace

BufferLevelGraph::BufferLevelGraph(QCPAxis *keyAxis, QCPAxis *valueAxis)
    : QCPGraph(keyAxis, valueAxis)
{
}

void BufferLevelGraph::drawFill(QCPPainter *painter, QVector<QPointF> *lines) const
{
    if (!canFillInStrips(*painter, *lines)) {
        QCPGraph::drawFill(painter, lines);
        return;
    }
    if (painter->brush().style() == Qt::NoBrush || painter->brush().color().alpha() == 0)
        return;
    applyFillAntialiasingHint(painter);
    const QVector<QCPDataRange> segments = getNonNanSegments(lines, Qt::Horizontal);
    for (const QCPDataRange &segment : segments) {
        if (segment.size() > 1)
            fillInStrips(painter, *lines, segment);
    }
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
    const auto isFar = [&transform](const QPointF &point) {
        return std::abs(point.y() * transform.m22() + transform.dy()) > furthest;
    };
    return std::none_of(lines.cbegin(), lines.cend(), isFar) &&
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
    // The painter's own clip may be a pixel off.
    const QRectF visible(toDevice.mapRect(QRectF(clipRect())).adjusted(-2, -2, 2, 2).toAlignedRect());

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

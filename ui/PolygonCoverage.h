#pragma once

#include <QColor>
#include <QImage>
#include <QPolygonF>
#include <QRect>

/// Filled polygons with the same pixels as the painter's own antialiasing has.
///
/// The painter searches the edges that cross a row of pixels one by one, which
/// takes the longer the more there are. Here every pixel has its place, and the
/// time grows with the length of the edges and the pixels alone.
namespace polygoncoverage {

/// Pixels from the origin that corners may lie.
constexpr int furthest = 8192;

/// The part of a device that `view` holds, with the polygon on it and otherwise
/// transparent. Coordinates are the device's; filled by the odd-even rule.
QImage paint(const QPolygonF &polygon, const QRect &view, const QColor &colour);

} // namespace polygoncoverage

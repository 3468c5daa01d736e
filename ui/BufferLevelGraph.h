#pragma once

#include "measurement/PlotLibrary.h"

/// A graph for dense, jagged data with a fill.
///
/// The time to fill a polygon grows with the square of the edges that cross a
/// row of pixels; a filled second of noise would take longer to draw than the
/// second lasts. This graph finds out pixel by pixel what is covered, or fills
/// in narrow strips where it cannot, with the same pixels as result. It belongs
/// to the plot of its axes.
class BufferLevelGraph : public QCPGraph
{
public:
    BufferLevelGraph(QCPAxis *keyAxis, QCPAxis *valueAxis);

protected:
    void drawFill(QCPPainter *painter, QVector<QPointF> *lines) const override;

private:
    bool isDragged() const;
    bool isNear(const QCPPainter &painter, const QVector<QPointF> &lines) const;
    QRect visiblePixels(const QCPPainter &painter) const;
    bool canFillByPixels(const QCPPainter &painter, const QVector<QPointF> &lines) const;
    void fillByPixels(QCPPainter *painter, const QVector<QPointF> &lines, const QCPDataRange &segment) const;
    bool canFillInStrips(const QCPPainter &painter, const QVector<QPointF> &lines) const;
    void fillInStrips(QCPPainter *painter, const QVector<QPointF> &lines, const QCPDataRange &segment) const;
    QPolygonF areaUnder(const QPointF *first, const QPointF *last) const;
};

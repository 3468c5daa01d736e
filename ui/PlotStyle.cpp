#include "ui/PlotStyle.h"

namespace plotstyle {

namespace {

QFont axisFont(int points = 8)
{
    return QFont(QStringLiteral("sans serif"), points);
}

/// The layers of a plot's first axes; new ones lie among the graphs.
void useUsualLayers(QCPAxisRect *rect)
{
    rect->setLayer(QStringLiteral("background"));
    const QList<QCPAxis *> axes = rect->axes();
    for (QCPAxis *axis : axes) {
        axis->setLayer(QStringLiteral("axes"));
        axis->grid()->setLayer(QStringLiteral("grid"));
    }
}

/// Gives the areas below one another the same ends, however wide their labels.
void alignSides(QCPAxisRect *rect)
{
    QCustomPlot *plot = rect->parentPlot();
    auto *group = plot->findChild<QCPMarginGroup *>();
    if (!group)
        group = new QCPMarginGroup(plot);
    rect->setMarginGroup(QCP::msLeft | QCP::msRight, group);
}

/// Ticks on an axis of that length, at most as many as it has without a limit.
int tickCount(int length, int lengthPerTick)
{
    constexpr int usual = 5;
    return qBound(1, length / lengthPerTick, usual);
}

/// The largest font in which an upright label keeps clear of the next area's.
QFont labelFont(const QString &label, int areaHeight)
{
    for (int points = 8; points > 6; --points) {
        const QFont font = axisFont(points);
        if (QFontMetrics(font).size(Qt::TextSingleLine, label).width() <= areaHeight)
            return font;
    }
    return axisFont(6);
}

/// Works with estimates, because the layout depends on the labels itself.
void fitAxes(QCPAxisRect *rect)
{
    const QCustomPlot *plot = rect->parentPlot();
    const QFontMetrics metrics(axisFont());
    const int line = metrics.height();
    // Around the axes lie the title, the time and the labels on both sides.
    const int areaHeight = plot->viewport().height() / qMax(1, plot->axisRectCount());
    const int height = areaHeight - 4 * line;
    const int width = plot->viewport().width() - 10 * line;
    for (const QCPAxis::AxisType side : {QCPAxis::atLeft, QCPAxis::atRight}) {
        QCPAxis *axis = rect->axis(side);
        axis->ticker()->setTickCount(tickCount(height, 2 * line));
        axis->setLabelFont(labelFont(axis->label(), areaHeight - line / 2));
    }
    const QSize time = metrics.size(Qt::TextSingleLine, QStringLiteral("-00:00.000"));
    rect->axis(QCPAxis::atBottom)->ticker()->setTickCount(tickCount(width, 2 * time.width()));
}

} // namespace

QFont titleFont()
{
    return QFont(QStringLiteral("sans serif"), 8, QFont::Bold);
}

QPen linePen(const QColor &colour)
{
    return QPen(QBrush(colour), 1.0);
}

void styleAxis(QCPAxis *axis)
{
    const QPen white(Qt::white);
    axis->setTickLabelColor(Qt::white);
    axis->setBasePen(white);
    axis->setTickPen(white);
    axis->setSubTickPen(white);
    axis->setLabelColor(Qt::white);
    axis->setTickLabelFont(axisFont());
    axis->setLabelFont(axisFont());
}

void fitIntoPlot(QCPAxisRect *rect)
{
    useUsualLayers(rect);
    alignSides(rect);
    // Rather a low area than a cut title.
    rect->setMinimumSize(50, 10);
    rect->parentPlot()->plotLayout()->setRowSpacing(0);
    QObject::connect(rect->parentPlot(), &QCustomPlot::beforeReplot, rect, [rect] { fitAxes(rect); });
}

} // namespace plotstyle

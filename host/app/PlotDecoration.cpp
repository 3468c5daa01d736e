#include "host/app/PlotDecoration.h"

#include "host/app/PlotLibrary.h"
#include "host/app/PlotReadout.h"

namespace host {

namespace {

constexpr QRgb plotColour = 0xff1c1e21;
constexpr QRgb areaColour = 0xff232629;
constexpr QRgb gridColour = 0xff3a3e43;
constexpr QRgb zeroLineColour = 0xff5a6068;

void style(QCPAxisRect &rect)
{
    rect.setBackground(QBrush(QColor(areaColour)));
    const auto axes = rect.axes();
    for (const QCPAxis *axis : axes) {
        axis->grid()->setPen(QPen(QColor(gridColour)));
        axis->grid()->setZeroLinePen(QPen(QColor(zeroLineColour)));
        axis->grid()->setSubGridVisible(false);
    }
}

} // namespace

PlotDecoration::PlotDecoration(QCustomPlot *plot)
    : QObject(plot)
    , m_plot(plot)
    , m_readout(new PlotReadout(plot))
{
    plot->setBackground(QBrush(QColor(plotColour)));
    // Nothing tells of new rectangles. The layout is updated before everything
    // that is drawn, exported pictures included.
    connect(plot, &QCustomPlot::afterLayout, this, &PlotDecoration::styleNewRects);
    styleNewRects();
}

PlotDecoration::~PlotDecoration()
{
    delete m_readout;
}

void PlotDecoration::styleNewRects()
{
    // On the rectangle: another one may come to lie at the address of a deleted one.
    static constexpr char styled[] = "hostStyled";
    const auto rects = m_plot->axisRects();
    for (QCPAxisRect *rect : rects) {
        if (rect->property(styled).toBool())
            continue;
        style(*rect);
        rect->setProperty(styled, true);
    }
}

} // namespace host

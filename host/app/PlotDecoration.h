#pragma once

#include <QObject>
#include <QPointer>

class QCPAxisRect;
class QCustomPlot;

namespace host {

class PlotReadout;

/// The viewer's style and value read-out for a plot of a plug-in. Lives and dies
/// with the plot, whose parts the plug-in may replace at any time.
///
/// Sets the background and the grids only; axes, titles and graphs are the
/// plug-in's. A grid is set once, when its axis rectangle is first drawn, so
/// that the plug-in may change it afterwards.
class PlotDecoration : public QObject
{
    Q_OBJECT

public:
    /// Becomes a child of the plot.
    explicit PlotDecoration(QCustomPlot *plot);
    ~PlotDecoration() override;

private:
    void styleNewRects();

    QCustomPlot *m_plot;
    QPointer<PlotReadout> m_readout; ///< the plot may delete it first
};

} // namespace host

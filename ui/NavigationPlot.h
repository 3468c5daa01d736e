#pragma once

#include "measurement/PlotLibrary.h"

/// A plot that stays one picture behind the mouse at most.
///
/// Every move of a drag and every turn of the wheel asks for several replots:
/// the owner of a time axis wants one for the new range, the library another.
/// Here they become one, and events that are waiting together share it. Replots
/// for other reasons are as in any plot.
///
/// No Q_OBJECT: style sheets and tools shall know it as a QCustomPlot.
class NavigationPlot : public QCustomPlot
{
public:
    using QCustomPlot::QCustomPlot;

protected:
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
};

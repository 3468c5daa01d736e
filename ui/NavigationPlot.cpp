#include "ui/NavigationPlot.h"

#include <QMouseEvent>
#include <QScopedValueRollback>

void NavigationPlot::mouseMoveEvent(QMouseEvent *event)
{
    if (!event->buttons().testFlag(Qt::LeftButton)) {
        QCustomPlot::mouseMoveEvent(event);
        return;
    }
    {
        // Makes replot() return at once, as it does within a replot.
        const QScopedValueRollback<bool> held(mReplotting, true);
        QCustomPlot::mouseMoveEvent(event);
    }
    replot(rpQueuedReplot);
}

void NavigationPlot::wheelEvent(QWheelEvent *event)
{
    {
        const QScopedValueRollback<bool> held(mReplotting, true);
        QCustomPlot::wheelEvent(event);
    }
    replot(rpQueuedReplot);
}

#pragma once

#include "zuCoreGui/ZuCoreGuiGlobal.h"

#include <QString>
#include <Qt>

class QCustomPlot;
class QWidget;

/// The host program as plug-ins see it; GUI thread only. The order of the
/// virtual operations is the binary interface.
class ZUCOREGUI_EXPORT IxAppDelegate
{
public:
    /// The running program's delegate. Never null: a program that registered
    /// none before it loaded plug-ins ends here with a message.
    static IxAppDelegate *instance();

    /// Directory in which the host's save dialogs start.
    virtual QString defaultSavePath() = 0;
    virtual void setDefaultSavePath(const QString &path) = 0;

    /// Docks a widget in the main window and takes it over. `flags` is 0.
    virtual void addPluginWidget(QWidget *widget, Qt::DockWidgetArea area, Qt::DockWidgetAreas allowedAreas,
                                 int flags) = 0;

    /// false while a plug-in drives the camera: the host then keeps its own
    /// controls of that camera disabled. true gives the camera back.
    virtual void setCameraControlEnabled(void *camera, bool enabled) = 0;

    /// How much detail the user wants to see; expert views start at 3.
    virtual int interfaceLevel() = 0;

    /// Lets the host style a plot and add its read-out. Not taken over.
    virtual void registerPlotWidget(QCustomPlot *plot) = 0;

protected:
    ~IxAppDelegate() = default;
};

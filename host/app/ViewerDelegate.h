#pragma once

#include "zuCoreGui/IxAppDelegate.h"

#include <QMainWindow>
#include <QObject>
#include <QPointer>

class QDockWidget;

namespace host {

class CameraControl;
class ViewerSettings;

/// The viewer as plug-ins see it. Registered while it lives, which must be
/// longer than every widget of a plug-in; the window may go before. GUI thread.
class ViewerDelegate final : public QObject, public IxAppDelegate
{
    Q_OBJECT

public:
    /// \param settings, control outlive the delegate
    ViewerDelegate(ViewerSettings &settings, CameraControl &control);
    ~ViewerDelegate() override;

    /// Where widgets are docked from now on.
    void setWindow(QMainWindow *window) { m_window = window; }

    QString defaultSavePath() override;
    void setDefaultSavePath(const QString &path) override;
    /// The dock is titled as the widget, whose object name (or class) names it in
    /// the stored layout. An area that is none, or is not allowed, is replaced.
    void addPluginWidget(QWidget *widget, Qt::DockWidgetArea area, Qt::DockWidgetAreas allowedAreas,
                         int flags) override;
    void setCameraControlEnabled(void *camera, bool enabled) override;
    int interfaceLevel() override;
    void registerPlotWidget(QCustomPlot *plot) override;

Q_SIGNALS:
    void dockAdded(QDockWidget *dock);

private:
    void place(QDockWidget *dock, Qt::DockWidgetArea area);
    QString freeDockName(const QWidget &widget) const;

    ViewerSettings &m_settings;
    CameraControl &m_control;
    QPointer<QMainWindow> m_window;
};

} // namespace host

#pragma once

#include "tests/scriptedhost/ScriptedGui.h"

namespace scripted {

class Delegate final : public IxAppDelegate
{
public:
    QString defaultSavePath() override;
    void setDefaultSavePath(const QString &path) override;
    void addPluginWidget(QWidget *widget, Qt::DockWidgetArea area, Qt::DockWidgetAreas allowedAreas,
                         int flags) override;
    void setCameraControlEnabled(void *camera, bool enabled) override;
    int interfaceLevel() override;
    void registerPlotWidget(QCustomPlot *plot) override;
};

struct Gui::Private
{
    Delegate delegate;
    int interfaceLevel = 3;
    QString savePath;
    std::function<void(void *)> releaseAction;
    QList<DockedWidget> widgets;
    QList<QCustomPlot *> plots;
    QList<ExportedImage> images;
};

} // namespace scripted

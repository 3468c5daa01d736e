#pragma once

#include "zuCoreGui/IxAppDelegate.h"

/// A program that remembers the path of its save dialogs and nothing else.
class TestDelegate final : public IxAppDelegate
{
public:
    virtual ~TestDelegate() = default;

    QString defaultSavePath() override { return savePath; }
    void setDefaultSavePath(const QString &path) override { savePath = path; }
    void addPluginWidget(QWidget *, Qt::DockWidgetArea, Qt::DockWidgetAreas, int) override {}
    void setCameraControlEnabled(void *, bool) override {}
    int interfaceLevel() override { return 0; }
    void registerPlotWidget(QCustomPlot *) override {}

    QString savePath;
};

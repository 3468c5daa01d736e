#include "tests/scriptedhost/ScriptedGuiPrivate.h"

#include "tests/scriptedhost/ScriptedHost.h"

namespace scripted {

namespace {

/// Records a call that has no parameter name.
void record(Function function, void *camera = nullptr, long long value = 0)
{
    Host::instance().record({function, camera, {}, value});
}

} // namespace

Gui &Gui::instance()
{
    static Gui gui;
    return gui;
}

Gui::Gui()
    : d(std::make_unique<Private>())
{
}

Gui::~Gui() = default;

void Gui::reset()
{
    for (const DockedWidget &docked : qAsConst(d->widgets))
        delete docked.widget.data();
    d->interfaceLevel = 3;
    d->savePath.clear();
    d->releaseAction = nullptr;
    d->widgets.clear();
    d->plots.clear();
    d->images.clear();
}

void Gui::setInterfaceLevel(int level)
{
    d->interfaceLevel = level;
}

void Gui::setReleaseAction(std::function<void(void *)> action)
{
    d->releaseAction = std::move(action);
}

void Gui::setSavePath(const QString &path)
{
    d->savePath = path;
}

QString Gui::savePath() const
{
    return d->savePath;
}

QList<DockedWidget> Gui::dockedWidgets() const
{
    return d->widgets;
}

QList<QCustomPlot *> Gui::plots() const
{
    return d->plots;
}

QList<ExportedImage> Gui::exportedImages() const
{
    return d->images;
}

QString Delegate::defaultSavePath()
{
    QString path = Gui::instance().savePath();
    Host::instance().record({Function::DefaultSavePath, nullptr, path.toStdString()});
    return path;
}

void Delegate::setDefaultSavePath(const QString &path)
{
    Host::instance().record({Function::SetDefaultSavePath, nullptr, path.toStdString()});
    Gui::instance().setSavePath(path);
}

void Delegate::addPluginWidget(QWidget *widget, Qt::DockWidgetArea area, Qt::DockWidgetAreas allowedAreas,
                               int flags)
{
    record(Function::AddPluginWidget);
    Gui::instance().priv().widgets.append({widget, area, allowedAreas, flags});
}

void Delegate::setCameraControlEnabled(void *camera, bool enabled)
{
    record(Function::SetCameraControlEnabled, camera, enabled);
    const auto action = Gui::instance().priv().releaseAction;
    if (enabled && action)
        action(camera);
}

int Delegate::interfaceLevel()
{
    const int level = Gui::instance().priv().interfaceLevel;
    record(Function::InterfaceLevel, nullptr, level);
    return level;
}

void Delegate::registerPlotWidget(QCustomPlot *plot)
{
    record(Function::RegisterPlotWidget);
    Gui::instance().priv().plots.append(plot);
}

} // namespace scripted

IxAppDelegate *IxAppDelegate::instance()
{
    return &scripted::Gui::instance().priv().delegate;
}

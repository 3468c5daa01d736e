#include "host/app/ViewerDelegate.h"

#include "host/app/CameraControl.h"
#include "host/app/PlotDecoration.h"
#include "host/app/PlotLibrary.h"
#include "host/app/ViewerSettings.h"
#include "host/gui/AppDelegateRegistration.h"

#include <QDebug>
#include <QDockWidget>
#include <QEvent>
#include <QScrollArea>

#include <array>

namespace host {

namespace {

constexpr std::array dockAreas{Qt::LeftDockWidgetArea, Qt::RightDockWidgetArea, Qt::TopDockWidgetArea,
                               Qt::BottomDockWidgetArea};

/// The area if it is one and allowed, else the first allowed one.
Qt::DockWidgetArea usableArea(Qt::DockWidgetArea wanted, Qt::DockWidgetAreas allowed)
{
    Qt::DockWidgetArea usable = Qt::BottomDockWidgetArea;
    for (const Qt::DockWidgetArea area : dockAreas) {
        if (!allowed.testFlag(area))
            continue;
        if (area == wanted)
            return wanted;
        usable = area;
    }
    return usable;
}

bool isAcross(Qt::DockWidgetArea area)
{
    return area == Qt::TopDockWidgetArea || area == Qt::BottomDockWidgetArea;
}

/// What a plug-in's widget may claim of the window; beyond it scrolls.
constexpr QSize maxClaim(800, 420);

/// Owns a plug-in's widget and shows it whole if it is of moderate size; however
/// much it wants, the window still fits on the screen.
class ToolFrame : public QScrollArea
{
public:
    explicit ToolFrame(QWidget *widget)
    {
        setFrameShape(QFrame::NoFrame);
        setWidgetResizable(true);
        setWidget(widget);
        setFocusPolicy(Qt::NoFocus); // no tab stop of its own
        setFocusProxy(widget);
    }

    QSize minimumSizeHint() const override
    {
        if (!widget())
            return QScrollArea::minimumSizeHint();
        return widget()->minimumSizeHint().expandedTo(widget()->minimumSize()).boundedTo(maxClaim);
    }

protected:
    bool event(QEvent *event) override
    {
        if (event->type() == QEvent::LayoutRequest) // a widget without a layout
            updateGeometry();
        return QScrollArea::event(event);
    }

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (watched == widget() && event->type() == QEvent::LayoutRequest)
            updateGeometry();
        return QScrollArea::eventFilter(watched, event);
    }
};

bool isDocked(const QWidget &widget)
{
    const QWidget *viewport = widget.parentWidget();
    const auto *frame = qobject_cast<QScrollArea *>(viewport ? viewport->parentWidget() : nullptr);
    return frame && frame->widget() == &widget && qobject_cast<QDockWidget *>(frame->parentWidget());
}

} // namespace

ViewerDelegate::ViewerDelegate(ViewerSettings &settings, CameraControl &control)
    : m_settings(settings)
    , m_control(control)
{
    setAppDelegate(this);
}

ViewerDelegate::~ViewerDelegate()
{
    setAppDelegate(nullptr);
}

QString ViewerDelegate::defaultSavePath()
{
    return m_settings.savePath();
}

void ViewerDelegate::setDefaultSavePath(const QString &path)
{
    m_settings.setSavePath(path);
}

void ViewerDelegate::addPluginWidget(QWidget *widget, Qt::DockWidgetArea area,
                                     Qt::DockWidgetAreas allowedAreas, int /*flags*/)
{
    if (!widget) {
        qWarning("a plug-in asked to dock nothing");
        return;
    }
    if (!m_window) { // taken over all the same
        widget->deleteLater();
        return;
    }
    if (isDocked(*widget)) {
        qWarning("a plug-in asked to dock a widget twice");
        return;
    }
    Qt::DockWidgetAreas allowed = allowedAreas & Qt::AllDockWidgetAreas;
    if (!allowed)
        allowed = Qt::AllDockWidgetAreas;

    auto *dock = new QDockWidget(widget->windowTitle(), m_window);
    dock->setObjectName(freeDockName(*widget));
    dock->setAllowedAreas(allowed);
    dock->setWidget(new ToolFrame(widget));
    connect(widget, &QWidget::windowTitleChanged, dock, &QDockWidget::setWindowTitle);
    // A plug-in may delete its widget; an empty frame would stay.
    connect(widget, &QObject::destroyed, dock, &QObject::deleteLater);
    // Perhaps it has a place in a layout that was restored before it came.
    if (!m_window->restoreDockWidget(dock))
        place(dock, usableArea(area, allowed));
    Q_EMIT dockAdded(dock);
}

void ViewerDelegate::place(QDockWidget *dock, Qt::DockWidgetArea area)
{
    QDockWidget *neighbour = nullptr;
    if (isAcross(area)) {
        const auto docks = m_window->findChildren<QDockWidget *>(QString(), Qt::FindDirectChildrenOnly);
        for (QDockWidget *other : docks) {
            if (other != dock && !other->isFloating() && m_window->dockWidgetArea(other) == area)
                neighbour = other;
        }
    }
    m_window->addDockWidget(area, dock);
    if (neighbour) {
        m_window->tabifyDockWidget(neighbour, dock);
        dock->raise();
    }
}

QString ViewerDelegate::freeDockName(const QWidget &widget) const
{
    const QString own =
        widget.objectName().isEmpty() ? QLatin1String(widget.metaObject()->className()) : widget.objectName();
    const QString base = QLatin1String("plugin.") + own;
    QString name = base;
    for (int i = 2; m_window->findChild<QDockWidget *>(name, Qt::FindDirectChildrenOnly); ++i)
        name = base + QStringLiteral(".%1").arg(i);
    return name;
}

void ViewerDelegate::setCameraControlEnabled(void *camera, bool enabled)
{
    m_control.setEnabled(camera, enabled);
}

int ViewerDelegate::interfaceLevel()
{
    return m_settings.interfaceLevel();
}

void ViewerDelegate::registerPlotWidget(QCustomPlot *plot)
{
    if (plot && !plot->findChild<PlotDecoration *>(QString(), Qt::FindDirectChildrenOnly))
        new PlotDecoration(plot);
}

} // namespace host

#pragma once

#include "tests/scriptedhost/ScriptedCall.h"
#include "zuCoreGui/CxExportToolButton.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QImage>
#include <QList>
#include <QPointer>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

class QCustomPlot;

namespace scripted {

/// A widget that was handed over for docking.
struct DockedWidget
{
    QPointer<QWidget> widget;
    Qt::DockWidgetArea area;
    Qt::DockWidgetAreas allowedAreas;
    int flags;
};

struct ExportedImage
{
    QImage image;
    CxExportToolButton::ExExportType type;
    QWidget *parent;
    QString fileFilter;
};

/// The test's side of the scripted libzuCoreGui.so. Its calls stand in the one
/// record of scripted::Host. GUI thread only.
class Q_DECL_EXPORT Gui
{
public:
    static Gui &instance();

    /// Deletes the docked widgets, as a main window does, and forgets the rest.
    void reset();

    void setInterfaceLevel(int level); ///< 3 at first
    /// What the host does with a camera that it may control again.
    void setReleaseAction(std::function<void(void *camera)> action);
    void setSavePath(const QString &path);
    QString savePath() const;

    QList<DockedWidget> dockedWidgets() const;
    /// Registered plots in their order; never dereferenced here.
    QList<QCustomPlot *> plots() const;
    QList<ExportedImage> exportedImages() const;

    struct Private;
    Private &priv() { return *d; }

private:
    Gui();
    ~Gui();

    std::unique_ptr<Private> d;
};

} // namespace scripted

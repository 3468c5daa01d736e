#pragma once

#include "zuCoreGui/ZuCoreGuiGlobal.h"

#include <QString>
#include <QtPlugin>

class CxImageData;
class QGraphicsSceneMouseEvent;
class QSettings;

/// What the host asks of a plug-in. The order of the virtual operations is the
/// binary interface: nothing is inserted or moved. All calls come on the GUI
/// thread. Every operation has a default in the host's library: init() succeeds,
/// the version is 0.0.0, texts are empty, the rest does nothing.
class ZUCOREGUI_EXPORT CxPlugin
{
public:
    virtual ~CxPlugin();

    /// Called once after loading; false keeps the plug-in out of use.
    virtual bool init();
    /// Called once before unloading.
    virtual void finish();

    /// The host's own settings, at no particular group.
    virtual void loadSettings(QSettings *settings);
    virtual void saveSettings(QSettings *settings);

    virtual QString copyrightNotice() const;
    virtual QString name() const;
    virtual QString author() const;
    virtual QString description() const;
    virtual void version(int &major, int &minor, int &build) const;
    /// The three numbers above as text, "1.2.3".
    virtual QString version() const;
    virtual QString website() const;

    virtual void activeViewChanged(int view);
    virtual void viewAboutToClose(int view);
    virtual void newCameraConnected(void *camera);
    virtual void cameraDisconnected(void *camera);
    virtual void viewGotNewImage(int view, const CxImageData *image);
    virtual void viewMouseBtnPressEvent(int view, QGraphicsSceneMouseEvent *event);
    virtual void viewMouseMoveEvent(int view, QGraphicsSceneMouseEvent *event);
    virtual void viewMouseBtnReleaseEvent(int view, QGraphicsSceneMouseEvent *event);
    virtual void viewMouseDoubleClickEvent(int view, QGraphicsSceneMouseEvent *event);
    virtual void customCommand(const QString &command, int param1, int param2, void *data1, void *data2);
};

#define CxPlugin_iid "com.korvant.CxPlugin"
Q_DECLARE_INTERFACE(CxPlugin, CxPlugin_iid)

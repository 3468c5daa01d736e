#include "zuCoreGui/CxPlugin.h"

// The defaults of the plug-in interface: nothing happens, every text is empty.

CxPlugin::~CxPlugin() = default;

bool CxPlugin::init()
{
    return true;
}

void CxPlugin::finish() {}

void CxPlugin::loadSettings(QSettings *) {}

void CxPlugin::saveSettings(QSettings *) {}

QString CxPlugin::copyrightNotice() const
{
    return {};
}

QString CxPlugin::name() const
{
    return {};
}

QString CxPlugin::author() const
{
    return {};
}

QString CxPlugin::description() const
{
    return {};
}

void CxPlugin::version(int &major, int &minor, int &build) const
{
    major = minor = build = 0;
}

QString CxPlugin::version() const
{
    int major = 0;
    int minor = 0;
    int build = 0;
    version(major, minor, build);
    return QStringLiteral("%1.%2.%3").arg(major).arg(minor).arg(build);
}

QString CxPlugin::website() const
{
    return {};
}

void CxPlugin::activeViewChanged(int) {}

void CxPlugin::viewAboutToClose(int) {}

void CxPlugin::newCameraConnected(void *) {}

void CxPlugin::cameraDisconnected(void *) {}

void CxPlugin::viewGotNewImage(int, const CxImageData *) {}

void CxPlugin::viewMouseBtnPressEvent(int, QGraphicsSceneMouseEvent *) {}

void CxPlugin::viewMouseMoveEvent(int, QGraphicsSceneMouseEvent *) {}

void CxPlugin::viewMouseBtnReleaseEvent(int, QGraphicsSceneMouseEvent *) {}

void CxPlugin::viewMouseDoubleClickEvent(int, QGraphicsSceneMouseEvent *) {}

void CxPlugin::customCommand(const QString &, int, int, void *, void *) {}

#pragma once

#include "plugin/Translation.h"
#include "ui/DataGraphForm.h"
#include "zuCoreGui/CxPlugin.h"

#include <QObject>
#include <QPointer>

/// The plug-in as the host sees it: it makes the tool window and passes the
/// host's settings on to it. GUI thread only.
class CxDataThroughputGraphPlugin : public QObject, public CxPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "com.korvant.Velmora.CxDataThroughputGraphPlugin")
    Q_INTERFACES(CxPlugin)

public:
    /// Makes the tool window and has the host dock it. Called once.
    bool init() override;
    void loadSettings(QSettings *settings) override;
    void saveSettings(QSettings *settings) override;
    QString name() const override;
    QString author() const override;
    QString description() const override;
    using CxPlugin::version;
    /// The version of the host's core library.
    void version(int &major, int &minor, int &build) const override;
    QString website() const override;

private:
    Translation m_translation;        ///< from the start: hosts ask for the name before init()
    QPointer<CxDataGraphForm> m_form; ///< the host's, once it is docked; null when it is gone
};

/// The object that was initialised last; null before.
extern CxDataThroughputGraphPlugin *g_pPlugin;

#include "plugin/mrdDataThroughputGraph.h"

#include "zuCore/ZuApi.h"
#include "zuCoreGui/IxAppDelegate.h"

#include <QSettings>

namespace {

const QLatin1String settingsGroup("DataThroughputGraphPlugin");

} // namespace

CxDataThroughputGraphPlugin *g_pPlugin = nullptr;

bool CxDataThroughputGraphPlugin::init()
{
    g_pPlugin = this;
    IxAppDelegate *host = IxAppDelegate::instance();
    m_form = new CxDataGraphForm(nullptr);
    host->addPluginWidget(m_form, Qt::BottomDockWidgetArea, Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea,
                          0);
    return true;
}

void CxDataThroughputGraphPlugin::loadSettings(QSettings *settings)
{
    settings->beginGroup(settingsGroup);
    if (m_form)
        m_form->loadSettings(settings);
    settings->endGroup();
}

void CxDataThroughputGraphPlugin::saveSettings(QSettings *settings)
{
    settings->beginGroup(settingsGroup);
    if (m_form)
        m_form->saveSettings(settings);
    settings->endGroup();
}

QString CxDataThroughputGraphPlugin::name() const
{
    return tr("Data Throughput Graph Tool");
}

QString CxDataThroughputGraphPlugin::author() const
{
    return QStringLiteral("Korvant");
}

QString CxDataThroughputGraphPlugin::description() const
{
    return tr("Measures the available bandwidth during time and shows results in graph.");
}

void CxDataThroughputGraphPlugin::version(int &major, int &minor, int &build) const
{
    zuCoreVersion(major, minor, build);
}

QString CxDataThroughputGraphPlugin::website() const
{
    return QStringLiteral("https://korvant.example");
}

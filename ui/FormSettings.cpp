#include "ui/DataGraphForm.h"

#include "ui_DataGraphForm.h"

#include <QSettings>

namespace {

const QLatin1String samplePeriodKey("DTGTSamplePeriod");
const QLatin1String maxSamplesKey("DTGTMaxSamples");
const QLatin1String resetBufferLevelKey("DTGTResetBufferLevel");
const QLatin1String timestampOriginKey("DTGTTimestampOrigin");
const QLatin1String exportTypeKey("DTGTExportType");
const QLatin1String measureModeKey("DTGTMeasMode");
const QLatin1String liveGraphKey("DTGTLiveGraph");

} // namespace

void CxDataGraphForm::saveSettings(QSettings *settings)
{
    settings->setValue(samplePeriodKey, m_samplePeriod);
    settings->setValue(maxSamplesKey, m_maxSamples);
    settings->setValue(resetBufferLevelKey, m_resetBufferLevel);
    settings->setValue(timestampOriginKey, static_cast<int>(m_timestampOrigin));
    settings->setValue(exportTypeKey, static_cast<int>(ui->btnExport->exportType()));
    settings->setValue(measureModeKey, static_cast<int>(m_measureMode));
    settings->setValue(liveGraphKey, ui->checkBoxLiveGraph->isChecked() ? 1 : 0);
}

void CxDataGraphForm::loadSettings(QSettings *settings)
{
    const auto loadInt = [settings](QLatin1String key, int fallback) {
        return settings->value(key, fallback).toInt();
    };
    m_samplePeriod = loadInt(samplePeriodKey, m_samplePeriod);
    m_maxSamples = settings->value(maxSamplesKey, m_maxSamples).toLongLong();
    m_resetBufferLevel = settings->value(resetBufferLevelKey, m_resetBufferLevel).toBool();
    m_timestampOrigin = static_cast<ExTimestampOrigin>(loadInt(timestampOriginKey, m_timestampOrigin));
    ui->btnExport->setExportType(
        static_cast<CxExportToolButton::ExExportType>(loadInt(exportTypeKey, ui->btnExport->exportType())));
    // Where no mode was ever stored, the window returns to the first one.
    m_measureMode = static_cast<MeasureMode>(loadInt(measureModeKey, MeasureModeThroughput));
    ui->checkBoxLiveGraph->setChecked(loadInt(liveGraphKey, 1) != 0);

    const QList<CxCameraLineData *> lines = m_cameraLines.values();
    for (CxCameraLineData *line : lines)
        setDefaultCameraSettings(line);
    updateCameraList();
}

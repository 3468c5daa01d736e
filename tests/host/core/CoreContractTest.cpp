#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParam.h"
#include "zuCore/CxCameraParameters.h"
#include "zuCore/CxValue.h"
#include "zuCore/ZuApi.h"

#include <QtTest>

#include <cstddef>

/// What plug-ins that were built elsewhere rely on: the layout of the image
/// record, the written numbers, the names, the symbols.
class CoreContractTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void imageRecord_data();
    void imageRecord();
    void writtenNumbers_data();
    void writtenNumbers();
    void parameterNames_data();
    void parameterNames();
    void managerSignals_data();
    void managerSignals();
    void handleTravelsInQueuedSignals();
    void symbols_data();
    void symbols();
    void showsNoInternals();

private:
    static const QStringList &exported();
};

void CoreContractTest::imageRecord_data()
{
    QTest::addColumn<int>("actual");
    QTest::addColumn<int>("expected");
    QTest::newRow("record") << int(sizeof(ZU_IMG)) << 312;
    QTest::newRow("size") << int(offsetof(ZU_IMG, size)) << 0;
    QTest::newRow("filledSize") << int(offsetof(ZU_IMG, filledSize)) << 4;
    QTest::newRow("data") << int(offsetof(ZU_IMG, data)) << 8;
    QTest::newRow("width") << int(offsetof(ZU_IMG, width)) << 16;
    QTest::newRow("height") << int(offsetof(ZU_IMG, height)) << 20;
    QTest::newRow("frameNumber") << int(offsetof(ZU_IMG, frameNumber)) << 24;
    QTest::newRow("timestampSeconds") << int(offsetof(ZU_IMG, timestampSeconds)) << 28;
    QTest::newRow("timestampMicroseconds") << int(offsetof(ZU_IMG, timestampMicroseconds)) << 32;
    QTest::newRow("reserved") << int(offsetof(ZU_IMG, reserved)) << 36;
}

void CoreContractTest::imageRecord()
{
    QFETCH(int, actual);
    QFETCH(int, expected);
    QCOMPARE(actual, expected);
}

void CoreContractTest::writtenNumbers_data()
{
    QTest::addColumn<int>("actual");
    QTest::addColumn<int>("expected");
    QTest::newRow("unsafe buffers") << ZU_BP_UNSAFE << 0;
    QTest::newRow("transport data") << ZU_FRM_TRANSPORT_DATA << 7;
    QTest::newRow("16 bits a pixel") << ZU_BPP_16 << 16;
    QTest::newRow("FPGA pattern generator") << ZU_TESTPAT_GEN_FPGA << 1;
    QTest::newRow("counter pattern") << ZU_TESTPAT_DEVICE_SPEC_COUNTER << 11;
    QTest::newRow("frame buffer off") << ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED << 9;
    QTest::newRow("frame buffer on") << ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED << 10;
    QTest::newRow("frame buffer: unit") << ZU_DP_UNIT_FRAMEBUF << 1;
    QTest::newRow("frame buffer: block") << ZU_DP_PROC_FRAMEBUF << 5;
    QTest::newRow("frame buffer: mode") << ZU_DP_PARAM_FRAMEBUF_MODE << 6;
    QTest::newRow("frame buffer: size") << ZU_DP_PARAM_FRAMEBUF_SIZE << 7;
    QTest::newRow("transport: unit") << ZU_DEVICE_UNIT_TRANSPORT << 1;
    QTest::newRow("transport: register") << ZU_DEVICE_REG_TRANSPORT << 55;
    QTest::newRow("transport: measure") << ZU_DEVICE_REG_TRANSPORT_MEASURE << 25000;
    QTest::newRow("transport: default") << ZU_DEVICE_REG_TRANSPORT_DEFAULT << 1;
    QTest::newRow("speed: unit") << ZU_DEVICE_UNIT_SPEED << 8;
    QTest::newRow("speed: register") << ZU_DEVICE_REG_AVG_SPEED << 4096;
    QTest::newRow("time stamp: mode") << ZU_TS_RST_MODE_ONCE << 0;
    QTest::newRow("time stamp: source") << ZU_TS_RST_SOURCE_ACQUISITION << 19;
    QTest::newRow("counter: transport skip") << int(ZU_CNT_SEL_TRANSPORT_SKIP) << 0;
    QTest::newRow("counter: API skip") << int(ZU_CNT_SEL_API_SKIP) << 1;
    QTest::newRow("counter: transferred") << int(ZU_CNT_SEL_TRANSFERRED) << 2;
    QTest::newRow("counter: missed, overlap") << int(ZU_CNT_SEL_MISSED_TRG_OVERLAP) << 3;
    QTest::newRow("counter: missed, overflow") << int(ZU_CNT_SEL_MISSED_TRG_OVERFLOW) << 4;
    QTest::newRow("counter: buffer overflow") << int(ZU_CNT_SEL_BUFFER_OVERFLOW) << 5;
    QTest::newRow("refresh of views") << int(CxCameraParameters::eCommitRefreshChanged) << 1;
}

void CoreContractTest::writtenNumbers()
{
    QFETCH(int, actual);
    QFETCH(int, expected);
    QCOMPARE(actual, expected);
}

void CoreContractTest::parameterNames_data()
{
    QTest::addColumn<QByteArray>("actual");
    const auto row = [](const char *expected, const char *actual) {
        QTest::newRow(expected) << QByteArray(actual);
    };
    row("buffer_policy", ZU_PRM_BUFFER_POLICY);
    row("imgdataformat", ZU_PRM_IMAGE_DATA_FORMAT);
    row("output_bit_depth", ZU_PRM_OUTPUT_DATA_BIT_DEPTH);
    row("output_bit_packing", ZU_PRM_OUTPUT_DATA_PACKING);
    row("column_fpn_correction", ZU_PRM_COLUMN_FPN_CORRECTION);
    row("row_fpn_correction", ZU_PRM_ROW_FPN_CORRECTION);
    row("LUTEnable", ZU_PRM_LUT_ENABLE);
    row("test_pattern_generator_selector", ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR);
    row("test_pattern", ZU_PRM_TEST_PATTERN);
    row("dp_unit_selector", ZU_PRM_DP_UNIT_SELECTOR);
    row("dp_proc_selector", ZU_PRM_DP_PROC_SELECTOR);
    row("dp_param_selector", ZU_PRM_DP_PARAM_SELECTOR);
    row("dp_param_value", ZU_PRM_DP_PARAM_VALUE);
    row("device_unit_selector", ZU_PRM_DEVICE_UNIT_SELECTOR);
    row("device_unit_register_selector", ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR);
    row("device_unit_register_value", ZU_PRM_DEVICE_UNIT_REGISTER_VALUE);
    row("recent_frame", ZU_PRM_RECENT_FRAME);
    row("buffers_queue_size", ZU_PRM_BUFFERS_QUEUE_SIZE);
    row("counter_selector", ZU_PRM_COUNTER_SELECTOR);
    row("counter_value", ZU_PRM_COUNTER_VALUE);
    row("ts_rst_mode", ZU_PRM_TS_RST_MODE);
    row("ts_rst_source", ZU_PRM_TS_RST_SOURCE);
    row(":max", ZU_PRM_SUFFIX_MAX);
    row(":settable", ZU_PRM_SUFFIX_SETTABLE);
}

void CoreContractTest::parameterNames()
{
    QFETCH(QByteArray, actual);
    QCOMPARE(actual, QByteArray(QTest::currentDataTag()));
}

void CoreContractTest::managerSignals_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name :
         {"cameraOpened(ZUCORE_HANDLE)", "cameraClosed(ZUCORE_HANDLE)", "acquisitionStarted(ZUCORE_HANDLE)",
          "acquisitionFinished(ZUCORE_HANDLE)", "imageFormatChanged(ZUCORE_HANDLE)"})
        QTest::newRow(name) << QByteArray(name);
}

void CoreContractTest::managerSignals()
{
    QFETCH(QByteArray, name);
    QVERIFY(CxCameraManager::staticMetaObject.indexOfSignal(name.constData()) >= 0);
}

void CoreContractTest::handleTravelsInQueuedSignals()
{
    QVERIFY(CxCameraManager::instance());
    QVERIFY(QMetaType::type("ZUCORE_HANDLE") != QMetaType::UnknownType);
}

const QStringList &CoreContractTest::exported()
{
    static const QStringList lines = [] {
        QProcess nm;
        nm.start(QStringLiteral("nm"),
                 {QStringLiteral("-DC"), QStringLiteral("--defined-only"), QStringLiteral(ZUCORE_FILE)});
        nm.waitForFinished();
        QStringList names;
        for (const QString &line : QString::fromUtf8(nm.readAllStandardOutput()).split(QLatin1Char('\n')))
            names << line.section(QLatin1Char(' '), 2);
        return names;
    }();
    return lines;
}

void CoreContractTest::symbols_data()
{
    QTest::addColumn<QByteArray>("name");
    for (const char *name : {"zuApi_GetParamInt(void*, char const*, int&, int*)",
                             "zuApi_GetParamInt64(void*, char const*, unsigned long long&, int*)",
                             "zuApi_SetParamInt(void*, char const*, int, int*)",
                             "zuApi_StartAcquisition(void*)",
                             "zuApi_StopAcquisition(void*)",
                             "zuApi_GetImage(void*, unsigned int, ZU_IMG*, int*, bool)",
                             "zuCoreVersion(int&, int&, int&)",
                             "CxCameraManager::instance()",
                             "CxCameraManager::openedCameras()",
                             "CxCameraManager::isCameraRunning(void*)",
                             "CxCameraManager::cameraParameters(void*)",
                             "CxCameraManager::cameraOpened(void*)",
                             "CxCameraManager::cameraClosed(void*)",
                             "CxCameraManager::acquisitionStarted(void*)",
                             "CxCameraManager::acquisitionFinished(void*)",
                             "CxCameraManager::imageFormatChanged(void*)",
                             "CxCameraManager::staticMetaObject",
                             "CxCameraParameters::findParam(QString const&, bool)",
                             "CxCameraParameters::addParamCommitToBatch(QString const&)",
                             "CxCameraParameters::endCommitBatch(CxCameraParameters::ExCommitRefreshGuiMode)",
                             "CxCameraParameters::cameraInfo() const",
                             "CxCameraParam::setParamValue(CxValue const&)",
                             "CxCameraParam::paramValue() const",
                             "CxCameraParam::enumItems() const",
                             "CxValue::CxValue(int)",
                             "CxValue::toInt() const"})
        QTest::newRow(name) << QByteArray(name);
}

void CoreContractTest::symbols()
{
    QFETCH(QByteArray, name);
    QVERIFY2(exported().contains(QString::fromLatin1(name)), "not exported");
}

void CoreContractTest::showsNoInternals()
{
    QVERIFY(!exported().isEmpty());
    for (const QString &symbol : exported()) {
        for (const char *internal :
             {"host::CameraRegistry::", "host::CameraSession::", "CxCameraManager::Private::",
              "CxCameraParameters::Private::", "CxCameraParam::Private::"})
            QVERIFY2(!symbol.startsWith(QLatin1String(internal)), qPrintable(symbol));
    }
}

QTEST_GUILESS_MAIN(CoreContractTest)
#include "CoreContractTest.moc"

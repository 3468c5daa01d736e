#include "tests/ui/PluginRig.h"

#include "tests/measurement/LogCapture.h"
#include "tests/ui/StartReport.h"

#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

using rig::PluginRig;
using scripted::Gui;
using scripted::Host;

/// The settings that survive the program, and the graph's picture.
class FormSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void fileOfAFreshWindow();
    void storedTypes();
    void roundTrip_data();
    void roundTrip();
    void emptyStoreKeepsAllButTwo();
    void liveGraph_data();
    void liveGraph();
    void valuesAreTakenAsTheyStand_data();
    void valuesAreTakenAsTheyStand();
    void settingsReachOpenCameras();
    void settingsReachLaterCameras();
    void loadingRebuildsTheTable();
    void unsupportedExportType();
    void garbage_data();
    void garbage();
    void exportedImage_data();
    void exportedImage();
    void ignoredExportTypes_data();
    void ignoredExportTypes();

private:
    /// Text of the file in which the host keeps what the plug-in saves.
    QString savedFile();
    /// Loads a file that has this text in the plug-in's group.
    void loadText(const QByteArray &lines);
    QCheckBox *liveBox() const { return m_rig->find<QCheckBox>("checkBoxLiveGraph"); }
    void requestExport(int type)
    {
        QVERIFY(QMetaObject::invokeMethod(m_rig->form(), "onBtnExport", Q_ARG(int, type)));
    }

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
};

void FormSettingsTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
}

void FormSettingsTest::cleanup()
{
    m_rig.reset();
}

QString FormSettingsTest::savedFile()
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    m_rig->plugin()->saveSettings(&settings);
    settings.sync();
    QFile file(settings.fileName());
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : file.errorString();
}

void FormSettingsTest::loadText(const QByteArray &lines)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("host.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("[DataThroughputGraphPlugin]\n" + lines + "\n");
    file.close();
    QSettings settings(file.fileName(), QSettings::IniFormat);
    m_rig->plugin()->loadSettings(&settings);
}

void FormSettingsTest::fileOfAFreshWindow()
{
    QCOMPARE(savedFile(), "[DataThroughputGraphPlugin]\n"
                          "DTGTExportType=1\n"
                          "DTGTLiveGraph=1\n"
                          "DTGTMaxSamples=10000000\n"
                          "DTGTMeasMode=0\n"
                          "DTGTResetBufferLevel=true\n"
                          "DTGTSamplePeriod=1024\n"
                          "DTGTTimestampOrigin=0\n");
}

void FormSettingsTest::storedTypes()
{
    const QVariantMap saved = m_rig->savedSettings();
    QCOMPARE(saved.size(), 7);
    for (const char *key :
         {"DTGTSamplePeriod", "DTGTTimestampOrigin", "DTGTExportType", "DTGTMeasMode", "DTGTLiveGraph"})
        QCOMPARE(saved[key].userType(), int(QMetaType::Int));
    QCOMPARE(saved["DTGTMaxSamples"].userType(), int(QMetaType::LongLong));
    QCOMPARE(saved["DTGTResetBufferLevel"].userType(), int(QMetaType::Bool));
}

void FormSettingsTest::roundTrip_data()
{
    QTest::addColumn<QByteArray>("mode");
    QTest::addColumn<int>("measureColumn");
    QTest::newRow("throughput") << QByteArray("0") << 2;
    QTest::newRow("acquisition") << QByteArray("1") << 3;
}

void FormSettingsTest::roundTrip()
{
    QFETCH(QByteArray, mode);
    QFETCH(int, measureColumn);
    rig::openCamera("Model", "1");
    const QByteArray lines = "DTGTExportType=2\n"
                             "DTGTLiveGraph=0\n"
                             "DTGTMaxSamples=9000000000000\n"
                             "DTGTMeasMode=" +
                             mode +
                             "\n"
                             "DTGTResetBufferLevel=false\n"
                             "DTGTSamplePeriod=51200\n"
                             "DTGTTimestampOrigin=1\n";
    loadText(lines);
    QVERIFY(!liveBox()->isChecked());
    QCOMPARE(int(m_rig->find<CxExportToolButton>("btnExport")->exportType()), 2);
    const QString saved = savedFile();
    QCOMPARE(saved, "[DataThroughputGraphPlugin]\n" + lines);
    QVERIFY(m_rig->cellWidget<QPushButton>(0, measureColumn));

    m_rig.reset();
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
    loadText(lines);
    QCOMPARE(savedFile(), saved);
}

void FormSettingsTest::emptyStoreKeepsAllButTwo()
{
    m_rig->loadSettings({{"DTGTSamplePeriod", 4096},
                         {"DTGTMaxSamples", 7},
                         {"DTGTResetBufferLevel", false},
                         {"DTGTTimestampOrigin", 1},
                         {"DTGTExportType", 2},
                         {"DTGTMeasMode", 0},
                         {"DTGTLiveGraph", 0}});
    {
        const LogCapture log; // of the mode, which is none
        m_rig->loadSettings({{"DTGTMeasMode", 5}});
        QCOMPARE(m_rig->savedSettings()["DTGTMeasMode"].toInt(), 5);
    }
    liveBox()->setChecked(false);
    m_rig->loadSettings({});
    QVERIFY(liveBox()->isChecked());
    const QVariantMap saved = m_rig->savedSettings();
    QCOMPARE(saved["DTGTSamplePeriod"].toInt(), 4096);
    QCOMPARE(saved["DTGTMaxSamples"].toLongLong(), 7LL);
    QCOMPARE(saved["DTGTResetBufferLevel"].toBool(), false);
    QCOMPARE(saved["DTGTTimestampOrigin"].toInt(), 1);
    QCOMPARE(saved["DTGTExportType"].toInt(), 2);
    QCOMPARE(saved["DTGTMeasMode"].toInt(), 0);
    QCOMPARE(saved["DTGTLiveGraph"].toInt(), 1);
}

void FormSettingsTest::liveGraph_data()
{
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<bool>("checked");
    QTest::newRow("0") << QVariant(0) << false;
    QTest::newRow("1") << QVariant(1) << true;
    QTest::newRow("-1") << QVariant(-1) << true;
    QTest::newRow("text 1") << QVariant("1") << true;
    QTest::newRow("text of a bool") << QVariant("true") << false; // no number
    QTest::newRow("no number") << QVariant("x") << false;
}

void FormSettingsTest::liveGraph()
{
    QFETCH(QVariant, stored);
    QFETCH(bool, checked);
    liveBox()->setChecked(!checked);
    m_rig->loadSettings({{"DTGTLiveGraph", stored}});
    QCOMPARE(liveBox()->isChecked(), checked);
    QCOMPARE(m_rig->savedSettings()["DTGTLiveGraph"], QVariant(int(checked)));
}

void FormSettingsTest::valuesAreTakenAsTheyStand_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<QVariant>("value");
    const auto row = [](const char *key, const char *stored, const QVariant &value) {
        QTest::addRow("%s=%s", key, stored) << QString(key) << QByteArray(stored) << value;
    };
    row("DTGTSamplePeriod", "1024", 1024);
    row("DTGTSamplePeriod", "100", 100);
    row("DTGTSamplePeriod", "0", 0);
    row("DTGTSamplePeriod", "-8", -8);
    row("DTGTSamplePeriod", "2147483647", 2147483647);
    row("DTGTSamplePeriod", "2147483648", -2147483647 - 1); // as variants convert
    row("DTGTSamplePeriod", "none", 0);
    row("DTGTMaxSamples", "-1", -1LL);
    row("DTGTMaxSamples", "9223372036854775807", 9223372036854775807LL);
    row("DTGTMaxSamples", "9223372036854775808", 0LL);
    row("DTGTMaxSamples", "many", 0LL);
    row("DTGTResetBufferLevel", "false", false);
    row("DTGTResetBufferLevel", "0", false);
    row("DTGTResetBufferLevel", "1", true);
    row("DTGTResetBufferLevel", "yes", true); // as texts convert: all but "", "0" and "false"
    row("DTGTResetBufferLevel", "", false);
    row("DTGTTimestampOrigin", "9", 9);
    row("DTGTTimestampOrigin", "-1", -1);
}

void FormSettingsTest::valuesAreTakenAsTheyStand()
{
    QFETCH(QString, key);
    QFETCH(QByteArray, stored);
    QFETCH(QVariant, value);
    loadText(key.toLatin1() + "=" + stored);
    QCOMPARE(m_rig->savedSettings()[key], value);
}

void FormSettingsTest::settingsReachOpenCameras()
{
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    QCOMPARE(rig::measure(*m_rig, camera).sampleInterval, "1024");
    m_rig->loadSettings({{"DTGTSamplePeriod", 12345}});
    QCOMPARE(m_rig->row(camera), 0);
    QCOMPARE(rig::measure(*m_rig, camera).sampleInterval, "12345");
}

void FormSettingsTest::settingsReachLaterCameras()
{
    m_rig->loadSettings({{"DTGTSamplePeriod", 8192}});
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    QCOMPARE(rig::measure(*m_rig, camera).sampleInterval, "8192");
}

void FormSettingsTest::loadingRebuildsTheTable()
{
    ZUCORE_HANDLE camera = m_host.addCamera({"Model", "1", {}}); // without a signal
    QCOMPARE(m_rig->row(camera), -1);
    m_rig->loadSettings({});
    QCOMPARE(m_rig->row(camera), 0);
    m_host.clearCalls();
    m_rig->savedSettings();
    QVERIFY(m_host.calls().empty());
}

void FormSettingsTest::unsupportedExportType()
{
    m_rig->loadSettings({{"DTGTExportType", 2}});
    for (int type : {0, 3, -1}) {
        m_rig->loadSettings({{"DTGTExportType", type}}); // the button does not take it
        QCOMPARE(m_rig->savedSettings()["DTGTExportType"].toInt(), 2);
    }
}

void FormSettingsTest::garbage_data()
{
    QTest::addColumn<bool>("shapesMeasurement");
    QTest::newRow("DTGTSamplePeriod") << true;
    QTest::newRow("DTGTMaxSamples") << true;
    QTest::newRow("DTGTResetBufferLevel") << false;
    QTest::newRow("DTGTTimestampOrigin") << false;
    QTest::newRow("DTGTExportType") << false;
    QTest::newRow("DTGTMeasMode") << false;
    QTest::newRow("DTGTLiveGraph") << false;
}

void FormSettingsTest::garbage()
{
    QFETCH(bool, shapesMeasurement);
    const char *const values[] = {"",
                                  "abc",
                                  "-1",
                                  "0",
                                  "1",
                                  "7",
                                  "2147483647",
                                  "-2147483648",
                                  "99999999999999999999999",
                                  "1.5",
                                  "nan",
                                  "true",
                                  "a, b, c",
                                  "@Invalid()",
                                  "@ByteArray(\\0\\xff)",
                                  "@Rect(1 2 3 4)",
                                  "@Variant(\\0\\0\\0\\x7f\\0\\0\\0)",
                                  "@Variant(",
                                  "\"unfinished",
                                  "\\x"};
    const LogCapture log; // unknown modes and broken files are complained of there
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    rig::measure(*m_rig, camera, 2); // something to compute from
    for (const char *value : values) {
        loadText(QByteArray(QTest::currentDataTag()) + "=" + value);
        if (shapesMeasurement)
            QVERIFY(!rig::measure(*m_rig, camera, 2).sampleInterval.isEmpty());
        m_rig->call("timerSignal");
        m_host.setHostAcquisition(camera, true);
        m_host.setHostAcquisition(camera, false);
        QCOMPARE(m_rig->savedSettings().size(), 7);
    }
    m_host.closeCamera(rig::openCamera("Another", "2"));
    m_rig->loadSettings({});
    QCOMPARE(m_rig->savedSettings()["DTGTMeasMode"].toInt(), 0);
    QVERIFY(liveBox()->isChecked());
    QCOMPARE(m_rig->row(camera), 0);
}

void FormSettingsTest::exportedImage_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QSize>("windowSize");
    QTest::newRow("1") << 1 << QSize(878, 396);
    QTest::newRow("2") << 2 << QSize(878, 396);
    QTest::newRow("large") << 1 << QSize(1600, 1000);
}

void FormSettingsTest::exportedImage()
{
    QFETCH(int, type);
    QFETCH(QSize, windowSize);
    rig::openCamera("Model", "1");
    m_rig->form()->resize(windowSize);
    QCoreApplication::processEvents();
    requestExport(type);
    const QList<scripted::ExportedImage> images = Gui::instance().exportedImages();
    QCOMPARE(images.size(), 1);
    QCOMPARE(int(images[0].type), type);
    QCOMPARE(images[0].parent, m_rig->form());
    QCOMPARE(images[0].fileFilter, "PNG (*.png);;JPEG (*.jpg);;BMP Bitmaps (*.bmp)");
    QCOMPARE(images[0].image.size(), m_rig->plot()->size());
    QCOMPARE(images[0].image, m_rig->plot()->toPixmap(0, 0, 1.0).toImage());
}

void FormSettingsTest::ignoredExportTypes_data()
{
    QTest::addColumn<int>("type");
    for (int type : {0, 3, -1, 100, 2147483647, -2147483647 - 1})
        QTest::addRow("%d", type) << type;
}

void FormSettingsTest::ignoredExportTypes()
{
    QFETCH(int, type);
    m_host.clearCalls();
    requestExport(type);
    QVERIFY(Gui::instance().exportedImages().isEmpty());
    QVERIFY(m_host.calls().empty());
}

QTEST_MAIN(FormSettingsTest)
#include "FormSettingsTest.moc"

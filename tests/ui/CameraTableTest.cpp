#include "tests/ui/PluginRig.h"

#include "tests/measurement/LogCapture.h"
#include "tests/ui/StartReport.h"

#include <QHeaderView>
#include <QStyle>
#include <QtTest>

using rig::PluginRig;
using scripted::CounterFrames;
using scripted::Function;
using scripted::Host;

/// The rows of the table: which cameras they show, in what state and with what
/// statistics.
class CameraTableTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void names_data();
    void names();
    void orderOfRows();
    void cameraWithoutParameterSet();
    void height();
    void statusTexts();
    void statusOfOtherRows();
    void statistics_data();
    void statistics();
    void statisticsBeforeAnyData();
    void unknownCameraIsIgnored();
    void tableItemText();

private:
    /// Whether any row asked the host for its camera's state.
    bool isRowRefreshed() const;

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
};

void CameraTableTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
}

void CameraTableTest::cleanup()
{
    m_rig.reset();
}

void CameraTableTest::names_data()
{
    QTest::addColumn<QString>("model");
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("userId");
    QTest::addColumn<QString>("name");
    QTest::newRow("user id") << "Model"
                             << "12345"
                             << "Left"
                             << "Model (Left)";
    QTest::newRow("serial") << "Model"
                            << "12345"
                            << ""
                            << "Model (12345)";
    QTest::newRow("blank user id") << "Model"
                                   << "12345"
                                   << " "
                                   << "Model ( )";
    QTest::newRow("nothing") << ""
                             << ""
                             << ""
                             << " ()";
    QTest::newRow("not rich text") << "<b>M</b>"
                                   << "%1"
                                   << ""
                                   << "<b>M</b> (%1)";
    QTest::newRow("place marks") << "%1 %2"
                                 << "3"
                                 << ""
                                 << "%1 %2 (3)";
    QTest::newRow("letters") << QString::fromUtf8("Kämera") << "1" << QString::fromUtf8("Süd→Ost")
                             << QString::fromUtf8("Kämera (Süd→Ost)");
}

void CameraTableTest::names()
{
    QFETCH(QString, model);
    QFETCH(QString, serial);
    QFETCH(QString, userId);
    QFETCH(QString, name);
    rig::openCamera(model, serial, userId);
    QCOMPARE(m_rig->cell(0, 0), name);
}

void CameraTableTest::orderOfRows()
{
    QList<ZUCORE_HANDLE> cameras;
    for (const char *model : {"Zeta", "Alpha", "Mid"})
        cameras.append(rig::openCamera(model, "1"));
    QCOMPARE(m_rig->table()->rowCount(), 3);
    for (int row = 0; row < 3; ++row)
        QCOMPARE(m_rig->row(cameras[row]), row);
    QCOMPARE(m_rig->cell(1, 0), "Alpha (1)");
}

void CameraTableTest::cameraWithoutParameterSet()
{
    ZUCORE_HANDLE without = m_host.addCamera({"Without", "1", {}});
    m_host.removeParameterSet(without);
    ZUCORE_HANDLE with = rig::openCamera("With", "2");
    QCOMPARE(m_rig->row(without), -1);
    QCOMPARE(m_rig->row(with), 0);
    QVERIFY(!m_rig->axisRect(without));
    QVERIFY(m_rig->axisRect(with));
    QVERIFY(m_host.cameraCalls(without).empty());
    QVERIFY(m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    m_rig->call("updateCameraListRow", without);
    m_host.closeCamera(without);
    QCOMPARE(m_rig->row(with), 0);
}

void CameraTableTest::height()
{
    const QTableWidget *table = m_rig->table();
    for (int cameras = 0; cameras < 4; ++cameras) {
        m_rig->call("updateCameraList"); // by now the header has the height of its texts
        QCOMPARE(table->rowCount(), cameras);
        int expected =
            table->style()->pixelMetric(QStyle::PM_ScrollBarExtent) + table->horizontalHeader()->height() + 3;
        for (int row = 0; row < cameras; ++row)
            expected += table->rowHeight(row);
        QCOMPARE(table->minimumHeight(), expected);
        QCOMPARE(table->maximumHeight(), expected);
        rig::openCamera("Model", QString::number(cameras));
        QCoreApplication::processEvents();
    }
}

void CameraTableTest::statusTexts()
{
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    const rig::BoxWatcher boxes;
    const LogCapture log;
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    QVERIFY(m_rig->measureButton(0)->isEnabled());

    m_host.setHostAcquisition(camera, true);
    QCOMPARE(m_rig->cell(0, 1), "Acq");
    QVERIFY(!m_rig->measureButton(0)->isEnabled());
    m_host.setHostAcquisition(camera, false);
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    QVERIFY(m_rig->measureButton(0)->isEnabled());

    PluginRig::click(m_rig->measureButton(0));
    QCOMPARE(m_rig->cell(0, 1), "Testing");
    QVERIFY(m_rig->measureButton(0)->isEnabled());
    m_host.setHostAcquisition(camera, true); // goes before the measurement
    QCOMPARE(m_rig->cell(0, 1), "Acq");
    QVERIFY(!m_rig->measureButton(0)->isEnabled());
    m_host.setHostAcquisition(camera, false);
    QCOMPARE(m_rig->cell(0, 1), "Testing");
    PluginRig::click(m_rig->measureButton(0));
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
}

void CameraTableTest::statusOfOtherRows()
{
    rig::openCamera("One", "1");
    ZUCORE_HANDLE second = rig::openCamera("Two", "2");
    m_host.setHostAcquisition(second, true);
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    QCOMPARE(m_rig->cell(1, 1), "Acq");
    QVERIFY(m_rig->measureButton(0)->isEnabled());
    // A row that is built while the host acquires shows it, too.
    rig::openCamera("Three", "3");
    QCOMPARE(m_rig->cell(1, 1), "Acq");
    QVERIFY(!m_rig->measureButton(1)->isEnabled());
}

void CameraTableTest::statistics_data()
{
    QTest::addColumn<int>("samplePeriod");
    QTest::addColumn<quint64>("ticksPerWord");
    QTest::addColumn<int>("requiredSpeed");
    QTest::addColumn<int>("bufferSize");
    QTest::addColumn<QStringList>("texts");
    // 1024 bytes every 2.56 µs: 400 MB/s; eight stamps over seven such intervals
    // make a mean of 457.14. Twice that speed fills the buffer by 1024 bytes an
    // interval, 7168 in all.
    QTest::newRow("keeps up") << 1024 << quint64(5) << 380 << 10000
                              << QStringList({"457", "400", "0 %", "0"});
    QTest::newRow("fills up") << 1024 << quint64(5) << 800 << 10000
                              << QStringList({"457", "400", "71 %", "0"});
    QTest::newRow("overflows") << 1024 << quint64(5) << 800 << 2000
                               << QStringList({"457", "400", "100 %", "3"});
    QTest::newRow("no interval") << 51200 << quint64(5) << 800 << 2000
                                 << QStringList({"0", "2147483647", "0 %", "0"});
    QTest::newRow("all stamps equal")
        << 1024 << quint64(0) << 800 << 2000 << QStringList({"2147483647", "2147483647", "0 %", "0"});
}

void CameraTableTest::statistics()
{
    QFETCH(int, samplePeriod);
    QFETCH(quint64, ticksPerWord);
    QFETCH(int, requiredSpeed);
    QFETCH(int, bufferSize);
    QFETCH(QStringList, texts);
    ZUCORE_HANDLE camera = m_host.addCamera({"Model", "1", {}});
    m_host.setValue(camera, "device_unit_register_value[8,4096]", requiredSpeed);
    m_host.setValue(camera, "dp_param_value[1,5,7]", bufferSize);
    CounterFrames frames;
    frames.ticksPerWord = ticksPerWord;
    m_host.setImageSource(camera, frames);
    m_rig->loadSettings({{"DTGTSamplePeriod", samplePeriod}});

    const rig::StartReport report = rig::measure(*m_rig, camera, 3);
    QCOMPARE(report.sampleInterval, QString::number(samplePeriod));
    QStringList shown;
    for (int column = 3; column <= 6; ++column)
        shown.append(m_rig->cell(0, column));
    QCOMPARE(shown, texts);
}

void CameraTableTest::statisticsBeforeAnyData()
{
    rig::openCamera("Model", "1");
    QCOMPARE(m_rig->cell(0, 3), "0");
    QCOMPARE(m_rig->cell(0, 4), "0");
    QCOMPARE(m_rig->cell(0, 5), "0 %");
    QCOMPARE(m_rig->cell(0, 6), "0");
}

void CameraTableTest::unknownCameraIsIgnored()
{
    rig::openCamera("Model", "1");
    m_host.clearCalls();
    auto *stranger = reinterpret_cast<ZUCORE_HANDLE>(quintptr(0x42));
    m_rig->call("updateCameraListRow", stranger);
    m_rig->call("removeCameraListRow", stranger);
    m_rig->call("updateCameraListRow", nullptr);
    m_rig->call("removeCameraListRow", nullptr);
    QVERIFY(m_host.cameraCalls().empty());
    QVERIFY(!isRowRefreshed());
    QCOMPARE(m_rig->table()->rowCount(), 1);
}

void CameraTableTest::tableItemText()
{
    rig::openCamera("Model", "1");
    const auto set = [this](int row, int column) {
        return QMetaObject::invokeMethod(m_rig->form(), "updateTableItem", Q_ARG(int, row),
                                         Q_ARG(int, column), Q_ARG(QString, "text"));
    };
    QVERIFY(set(0, 3));
    QCOMPARE(m_rig->cell(0, 3), "text");
    QVERIFY(set(0, 2)); // a button, no item
    QVERIFY(!m_rig->table()->item(0, 2));
    QVERIFY(set(7, 3));
    QVERIFY(set(-1, -1));
    QCOMPARE(m_rig->table()->rowCount(), 1);
}

bool CameraTableTest::isRowRefreshed() const
{
    const std::vector<scripted::Call> calls = m_host.calls();
    return std::any_of(calls.begin(), calls.end(),
                       [](const scripted::Call &call) { return call.function == Function::IsCameraRunning; });
}

QTEST_MAIN(CameraTableTest)
#include "CameraTableTest.moc"

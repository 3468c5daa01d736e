#include "tests/ui/PluginRig.h"

#include "tests/measurement/LogCapture.h"
#include "tests/scriptedhost/ScriptedHostPrivate.h"
#include "tests/ui/StartReport.h"
#include "zuCore/CxCameraManager.h"

#include <QSignalBlocker>
#include <QtTest>

using rig::PluginRig;
using scripted::Function;
using scripted::Host;

/// The table as cameras close and as it is built anew.
class CameraTableChangesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void closedCamera();
    void closedCameraThatMeasures();
    void lastCameraCloses();
    void lastCameraHasNoRow();
    void cameraMissedClosing();
    void rebuildKeepsSettings();
    void rebuildShowsAWrappedSize();
    void rebuildKeepsNames();
    void rebuildKeepsMeasuring();
    void rebuildResetsTheTimeAxis();
    void unknownMode();

private:
    /// Whether any row asked the host for its camera's state.
    bool isRowRefreshed() const;
    static bool isLogged(const LogCapture &log, const QString &method);

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
};

void CameraTableChangesTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
}

void CameraTableChangesTest::cleanup()
{
    m_rig.reset();
}

bool CameraTableChangesTest::isRowRefreshed() const
{
    const std::vector<scripted::Call> calls = m_host.calls();
    return std::any_of(calls.begin(), calls.end(),
                       [](const scripted::Call &call) { return call.function == Function::IsCameraRunning; });
}

void CameraTableChangesTest::closedCamera()
{
    ZUCORE_HANDLE first = rig::openCamera("One", "1");
    ZUCORE_HANDLE second = rig::openCamera("Two", "2");
    ZUCORE_HANDLE third = rig::openCamera("Three", "3");
    m_host.closeCamera(first);
    QCOMPARE(m_rig->table()->rowCount(), 2);
    QCOMPARE(m_rig->row(first), -1);
    QCOMPARE(m_rig->row(second), 0);
    QCOMPARE(m_rig->row(third), 1);
    QVERIFY(m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    // What belongs to a row has moved along with it.
    QCOMPARE(rig::handleOf(m_rig->measureButton(0)), second);
    m_host.setHostAcquisition(third, true);
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    QCOMPARE(m_rig->cell(1, 1), "Acq");
    m_host.closeCamera(third);
    QCOMPARE(m_rig->table()->rowCount(), 1);
    QCOMPARE(m_rig->row(second), 0);
}

void CameraTableChangesTest::closedCameraThatMeasures()
{
    ZUCORE_HANDLE camera = rig::openCamera("One", "1");
    ZUCORE_HANDLE other = rig::openCamera("Two", "2");
    const rig::BoxWatcher boxes;
    const LogCapture log;
    for (int row : {0, 1})
        PluginRig::click(m_rig->measureButton(row));
    QVERIFY(m_host.waitUntilStarved(camera));
    m_host.clearCalls();
    m_host.closeCamera(camera);
    const std::vector<std::string> calls = m_host.cameraCalls(camera);
    QVERIFY(std::find(calls.begin(), calls.end(), "stop") != calls.end());
    QVERIFY(std::find(calls.begin(), calls.end(), "set imgdataformat 2") != calls.end());
    QVERIFY(!m_host.isStreaming(camera));
    QVERIFY(m_host.isStreaming(other));
    QCOMPARE(m_rig->row(other), 0);
    QCOMPARE(m_rig->cell(0, 1), "Testing");
    m_rig->call("timerSignal"); // nothing refers to the closed camera any more
}

void CameraTableChangesTest::lastCameraCloses()
{
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    m_host.closeCamera(camera);
    QCOMPARE(m_rig->table()->rowCount(), 0);
    QVERIFY(!m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    rig::openCamera("Model", "1");
    QVERIFY(m_rig->find<QPushButton>("btnStartAll")->isEnabled());
}

void CameraTableChangesTest::lastCameraHasNoRow()
{
    ZUCORE_HANDLE camera = m_host.addCamera({"Without", "1", {}});
    m_host.removeParameterSet(camera);
    m_rig->call("updateCameraList");
    QCOMPARE(m_rig->table()->rowCount(), 0);
    QVERIFY(m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    m_host.closeCamera(camera);
    QVERIFY(!m_rig->find<QPushButton>("btnStartAll")->isEnabled());
}

void CameraTableChangesTest::cameraMissedClosing()
{
    ZUCORE_HANDLE camera = rig::openCamera("One", "1");
    ZUCORE_HANDLE other = rig::openCamera("Two", "2");
    const rig::BoxWatcher boxes;
    const LogCapture log;
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(m_host.waitUntilStarved(camera));
    {
        const QSignalBlocker silence(CxCameraManager::instance());
        m_host.closeCamera(camera);
    }
    m_host.clearCalls();
    m_rig->call("updateCameraList");
    const std::vector<std::string> calls = m_host.cameraCalls(camera);
    QVERIFY(std::find(calls.begin(), calls.end(), "stop failed") != calls.end());
    QCOMPARE(m_rig->table()->rowCount(), 1);
    QCOMPARE(m_rig->row(other), 0);
    m_host.clearCalls();
    m_rig->call("updateCameraListRow", camera);
    QVERIFY(!isRowRefreshed()); // the engine is gone
}

void CameraTableChangesTest::rebuildKeepsSettings()
{
    ZUCORE_HANDLE camera = rig::openCamera("One", "1");
    PluginRig::click(m_rig->cellWidget<QCheckBox>(0, 8));
    m_rig->cellWidget<QLineEdit>(0, 8)->setText("250");
    PluginRig::click(m_rig->cellWidget<QCheckBox>(0, 9));
    m_rig->cellWidget<QLineEdit>(0, 9)->setText("3000");
    m_host.clearCalls();
    rig::openCamera("Two", "2");
    QCOMPARE(m_rig->cellWidget<QLineEdit>(0, 8)->text(), "250");
    QCOMPARE(m_rig->cellWidget<QLineEdit>(0, 9)->text(), "3000");
    for (int column : {8, 9}) {
        QVERIFY(!m_rig->cellWidget<QCheckBox>(0, column)->isChecked());
        QVERIFY(m_rig->cellWidget<QLineEdit>(0, column)->isEnabled());
        QVERIFY(m_rig->cellWidget<QCheckBox>(1, column)->isChecked());
    }
    QVERIFY(m_host.cameraCalls(camera).empty()); // nothing is read for a value set by hand
    const rig::StartReport report = rig::measure(*m_rig, camera);
    QCOMPARE(report.requiredSpeed, "250");
    QCOMPARE(report.bufferSize, "3000000");
}

/// The size of an engine is more than the edit takes.
void CameraTableChangesTest::rebuildShowsAWrappedSize()
{
    rig::openCamera("One", "1");
    PluginRig::click(m_rig->cellWidget<QCheckBox>(0, 9));
    auto *edit = m_rig->cellWidget<QLineEdit>(0, 9);
    edit->selectAll();
    QTest::keyClicks(edit, "2147484");
    QCOMPARE(edit->text(), "2147484");
    m_rig->call("updateCameraList");
    QCOMPARE(m_rig->cellWidget<QLineEdit>(0, 9)->text(), "18446744071562068");
}

void CameraTableChangesTest::rebuildKeepsNames()
{
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1", "Left");
    {
        scripted::Host::Private &host = m_host.priv();
        const std::lock_guard lock(host.mutex);
        host.cameras.at(camera)->info.userId = "Right";
    }
    m_rig->call("updateCameraList");
    QCOMPARE(m_rig->cell(m_rig->row(camera), 0), "Model (Left)");
}

void CameraTableChangesTest::rebuildKeepsMeasuring()
{
    ZUCORE_HANDLE camera = rig::openCamera("One", "1");
    const rig::BoxWatcher boxes;
    const LogCapture log;
    m_host.deliver(camera, 2);
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(m_host.waitUntilStarved(camera));
    m_rig->call("timerSignal");
    QCOMPARE(m_rig->cell(0, 3), "457");
    rig::openCamera("Two", "2");
    QVERIFY(m_host.isStreaming(camera));
    QCOMPARE(m_rig->cell(0, 1), "Testing");
    QCOMPARE(m_rig->cell(0, 3), "457");
    QCOMPARE(m_rig->cell(1, 1), "Stopped");
    QCOMPARE(m_rig->measureButton(0)->text(), "Stop");
    QCOMPARE(m_rig->measureButton(1)->text(), "Start");
    QVERIFY(!m_rig->cellWidget<QPushButton>(0, 7)->isEnabled());
    QVERIFY(m_rig->cellWidget<QPushButton>(1, 7)->isEnabled());
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(!m_host.isStreaming(camera));
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    QCOMPARE(m_rig->measureButton(0)->text(), "Start");
    QVERIFY(m_rig->cellWidget<QPushButton>(0, 7)->isEnabled());
}

void CameraTableChangesTest::rebuildResetsTheTimeAxis()
{
    ZUCORE_HANDLE camera = rig::openCamera("One", "1");
    m_rig->axisRect(camera)->axis(QCPAxis::atBottom)->setRange(-9, -4);
    QCOMPARE(m_rig->axisRect(camera)->axis(QCPAxis::atBottom)->range(), QCPRange(-9, -4));
    ZUCORE_HANDLE second = rig::openCamera("Two", "2");
    for (ZUCORE_HANDLE shown : {camera, second})
        QCOMPARE(m_rig->axisRect(shown)->axis(QCPAxis::atBottom)->range(), QCPRange(-20, 0));
}

bool CameraTableChangesTest::isLogged(const LogCapture &log, const QString &method)
{
    return log.messages().contains(
        QString("CxDataGraphForm::%1(): Unknown measurement mode is selected").arg(method));
}

void CameraTableChangesTest::unknownMode()
{
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    LogCapture log;
    m_rig->loadSettings({{"DTGTMeasMode", 7}});
    QVERIFY(isLogged(log, "updateCameraList"));
    QCOMPARE(m_rig->row(camera), -1);
    QVERIFY(!m_rig->table()->cellWidget(0, 2));
    QVERIFY(m_rig->table()->horizontalHeaderItem(0)); // only the cells are gone
    QCOMPARE(m_rig->table()->horizontalHeaderItem(3)->text(), "Average\nthroughput [MB/s]");
    for (const char *method : {"updateCameraListRow", "updateGraph", "timerSignal"}) {
        log.clear();
        if (QByteArray(method) == "updateCameraListRow")
            m_rig->call(method, camera);
        else
            m_rig->call(method);
        QVERIFY2(isLogged(log, method), method);
    }
    m_host.setHostAcquisition(camera, true);
    ZUCORE_HANDLE second = rig::openCamera("Model", "2");
    m_host.closeCamera(second);

    log.clear();
    m_rig->loadSettings({});
    QVERIFY(log.messages().isEmpty());
    QCOMPARE(m_rig->row(camera), 0);
    QCOMPARE(m_rig->cell(0, 1), "Acq");
}

QTEST_MAIN(CameraTableChangesTest)
#include "CameraTableChangesTest.moc"

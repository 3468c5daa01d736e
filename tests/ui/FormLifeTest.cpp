#include "tests/ui/PluginRig.h"

#include "tests/measurement/LogCapture.h"
#include "tests/ui/StartReport.h"
#include "zuCore/CxCameraManager.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QTimer>
#include <QtTest>

#include <functional>

using rig::PluginRig;
using scripted::Function;
using scripted::Gui;
using scripted::Host;

/// How the window comes to life, follows the host's signals and ends.
class FormLifeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void construction();
    void constructionWithOpenCameras();
    void hostSignals();
    void exportButtonIsConnected();
    void buttonsAreConnectedByName();
    void timerTicks();
    void destructionStopsMeasurements();
    void destructionAfterACameraWasLost();
    void noSlotRunsAfterDestruction();

private:
    int count(Function function) const;

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
};

namespace {

/// What a measurement changes on a camera.
const char *const changedParameters[] = {
    "imgdataformat",         "output_bit_depth",     "output_bit_packing", "buffer_policy",
    "column_fpn_correction", "row_fpn_correction",   "LUTEnable",          "test_pattern_generator_selector",
    "test_pattern",          "dp_param_value[1,5,6]"};

QList<long long> settingsOf(ZUCORE_HANDLE camera)
{
    QList<long long> values;
    for (const char *name : changedParameters)
        values.append(Host::instance().value(camera, name));
    return values;
}

/// Watches what timers do: the first after whose event a row was looked at is
/// the window's own.
class TickWatch : public QObject
{
public:
    explicit TickWatch(std::function<int()> count)
        : m_count(std::move(count))
    {
        qApp->installEventFilter(this);
    }

    QPointer<QTimer> timer;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *fired = qobject_cast<QTimer *>(object);
        if (!fired || timer || event->type() != QEvent::Timer)
            return false;
        const QPointer<QTimer> alive(fired);
        const int before = m_count();
        fired->event(event);
        if (m_count() > before)
            timer = alive;
        return true;
    }

private:
    std::function<int()> m_count;
};

} // namespace

void FormLifeTest::init()
{
    m_rig = std::make_unique<PluginRig>();
}

void FormLifeTest::cleanup()
{
    m_rig.reset();
}

int FormLifeTest::count(Function function) const
{
    int number = 0;
    for (const scripted::Call &call : m_host.calls())
        number += call.function == function;
    return number;
}

void FormLifeTest::construction()
{
    m_rig->createForm();
    QCOMPARE(count(Function::RegisterPlotWidget), 1);
    QCOMPARE(m_host.calls().front().function, Function::RegisterPlotWidget); // the first of all calls
    QCOMPARE(m_rig->table()->rowCount(), 0);
    QVERIFY(!m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    QVERIFY(m_host.cameraCalls().empty());
}

void FormLifeTest::constructionWithOpenCameras()
{
    ZUCORE_HANDLE first = m_host.addCamera({"One", "1", {}});
    ZUCORE_HANDLE second = m_host.addCamera({"Two", "2", {}});
    m_rig->createForm();
    QCOMPARE(m_rig->row(first), 0);
    QCOMPARE(m_rig->row(second), 1);
    QVERIFY(m_rig->find<QPushButton>("btnStartAll")->isEnabled());
    for (ZUCORE_HANDLE camera : {first, second}) {
        QCPAxisRect *rect = m_rig->axisRect(camera);
        QVERIFY(rect);
        QCOMPARE(rect->axis(QCPAxis::atBottom)->range().lower, -20.0);
        QCOMPARE(rect->axis(QCPAxis::atBottom)->range().upper, 0.0);
    }
}

void FormLifeTest::hostSignals()
{
    m_rig->createForm();
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    QCOMPARE(m_rig->row(camera), 0);
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    m_host.setHostAcquisition(camera, true);
    QCOMPARE(m_rig->cell(0, 1), "Acq");
    m_host.setHostAcquisition(camera, false);
    QCOMPARE(m_rig->cell(0, 1), "Stopped");
    m_host.clearCalls();
    m_host.emitImageFormatChanged(camera);
    QVERIFY(m_host.cameraCalls().empty()); // a matter of the other mode
    QCOMPARE(count(Function::SetParamValue), 0);
    m_host.closeCamera(camera);
    QCOMPARE(m_rig->table()->rowCount(), 0);
}

void FormLifeTest::exportButtonIsConnected()
{
    m_rig->createForm();
    PluginRig::click(m_rig->find<CxExportToolButton>("btnExport"));
    QCOMPARE(Gui::instance().exportedImages().size(), 1);
    QCOMPARE(int(Gui::instance().exportedImages()[0].type), 1);
}

void FormLifeTest::buttonsAreConnectedByName()
{
    m_rig->createForm();
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    QCPAxis *time = m_rig->axisRect(camera)->axis(QCPAxis::atBottom);
    time->setRange(-30, -25);
    PluginRig::click(m_rig->find<QPushButton>("resetPan"));
    QCOMPARE(time->range(), QCPRange(-5, 0));
    PluginRig::click(m_rig->find<QPushButton>("btnResetZoom"));
    QCOMPARE(time->range(), QCPRange(-20, 0));
    m_host.clearCalls();
    PluginRig::click(m_rig->find<QPushButton>("refreshGraph"));
    QVERIFY(count(Function::InterfaceLevel) > 0); // asked for by every full refresh
    const rig::BoxWatcher boxes;
    const LogCapture log;
    PluginRig::click(m_rig->find<QPushButton>("btnStartAll"));
    QVERIFY(m_host.isStreaming(camera));
    PluginRig::click(m_rig->find<QPushButton>("btnStartAll"));
    QVERIFY(!m_host.isStreaming(camera));
}

void FormLifeTest::timerTicks()
{
    ZUCORE_HANDLE camera = m_host.addCamera({"Model", "1", {}});
    QElapsedTimer time;
    time.start();
    m_rig->createForm();
    const rig::BoxWatcher boxes;
    const LogCapture log;
    m_rig->find<QCheckBox>("checkBoxLiveGraph")->setChecked(false);
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(m_host.isStreaming(camera));
    // Every tick looks at the row of a camera that measures.
    const TickWatch ticks([this] { return count(Function::IsCameraRunning); });
    QTRY_VERIFY_WITH_TIMEOUT(ticks.timer, 5000);
    QVERIFY2(time.elapsed() >= 900, qPrintable(QString::number(time.elapsed())));
    // Its own idea of the period: a busy machine delays ticks at will.
    QCOMPARE(ticks.timer->interval(), 1000);
    QVERIFY(!ticks.timer->isSingleShot());
    QVERIFY(ticks.timer->isActive());
}

void FormLifeTest::destructionStopsMeasurements()
{
    ZUCORE_HANDLE first = m_host.addCamera({"One", "1", {}});
    ZUCORE_HANDLE idle = m_host.addCamera({"Two", "2", {}});
    ZUCORE_HANDLE last = m_host.addCamera({"Three", "3", {}});
    m_rig->createForm();
    const QList<long long> before = settingsOf(first);
    const rig::BoxWatcher boxes;
    const LogCapture log;
    for (ZUCORE_HANDLE camera : {last, first}) {
        m_host.deliver(camera, 3);
        PluginRig::click(m_rig->measureButton(m_rig->row(camera)));
        QVERIFY(m_host.waitUntilStarved(camera));
        QVERIFY(settingsOf(camera) != before);
    }
    m_host.clearCalls();
    m_rig->destroyForm();

    QList<ZUCORE_HANDLE> stopped;
    QList<ZUCORE_HANDLE> restored; // each camera once, as its first value goes back
    for (const scripted::Call &call : m_host.calls()) {
        QVERIFY(call.handle != idle);
        if (call.function == Function::StopAcquisition)
            stopped.append(call.handle);
        if (call.function == Function::SetParamInt && !restored.contains(call.handle))
            restored.append(call.handle);
        if (call.function == Function::SetParamInt)
            QCOMPARE(call.handle, stopped.last()); // one camera is done with before the next
    }
    QCOMPARE(stopped, QList<ZUCORE_HANDLE>({first, last}));
    QCOMPARE(restored, stopped);
    for (ZUCORE_HANDLE camera : {first, last}) {
        QVERIFY(!m_host.isStreaming(camera));
        QCOMPARE(settingsOf(camera), before);
    }
}

void FormLifeTest::destructionAfterACameraWasLost()
{
    ZUCORE_HANDLE camera = m_host.addCamera({"Model", "1", {}});
    m_rig->createForm();
    const rig::BoxWatcher boxes;
    const LogCapture log;
    PluginRig::click(m_rig->measureButton(0));
    QVERIFY(m_host.waitUntilStarved(camera));
    m_host.setLost(camera, true);
    m_rig->destroyForm();
    QVERIFY(log.messages().contains("CxCameraLineData::stopMeasurement(): zuApi_StopAcquisition failed"));
}

void FormLifeTest::noSlotRunsAfterDestruction()
{
    ZUCORE_HANDLE camera = m_host.addCamera({"Model", "1", {}});
    m_rig->createForm();
    m_rig->destroyForm();
    m_host.clearCalls();
    rig::openCamera("Another", "2");
    m_host.setHostAcquisition(camera, true);
    m_host.emitImageFormatChanged(camera);
    m_host.closeCamera(camera);
    QVERIFY(m_host.calls().empty());
}

QTEST_MAIN(FormLifeTest)
#include "FormLifeTest.moc"

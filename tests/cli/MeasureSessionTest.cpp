#include "cli/MeasureSession.h"
#include "host/program/StopSignals.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "zuCore/CxCameraManager.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTimer>
#include <QtTest>

#include <csignal>

using cli::CameraResult;
using cli::CameraState;
using cli::MeasureSession;
using cli::Options;
using scripted::Failure;
using scripted::Host;

class MeasureSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void measuresAllOpenCameras();
    void namesPreferTheUsersOwn();
    void refusingCameraStaysInTheReport();
    void lostCameraKeepsItsResults();
    void acquisitionModeReportsCounters();
    void destructionRestoresCameras();
    void signalEndsTheRunAndRestores_data();
    void signalEndsTheRunAndRestores();

private:
    Host &m_host = Host::instance();
};

namespace {

/// Whether the camera is back in the state before the measurement.
bool isRestored(ZUCORE_HANDLE camera)
{
    Host &host = Host::instance();
    return !host.isStreaming(camera) &&
           host.value(camera, ZU_PRM_IMAGE_DATA_FORMAT) != ZU_FRM_TRANSPORT_DATA &&
           host.value(camera, ZU_PRM_TEST_PATTERN) != ZU_TESTPAT_DEVICE_SPEC_COUNTER &&
           host.value(camera, "dp_param_value[1,5,6]") == ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED;
}

Options throughputOptions()
{
    Options options;
    options.samplePeriod = 512;
    return options;
}

} // namespace

void MeasureSessionTest::init()
{
    m_host.reset();
}

void MeasureSessionTest::measuresAllOpenCameras()
{
    const ZUCORE_HANDLE first = m_host.addCamera({QStringLiteral("Model"), QStringLiteral("1"), {}});
    const ZUCORE_HANDLE second = m_host.addCamera({QStringLiteral("Model"), QStringLiteral("2"), {}});

    MeasureSession session(throughputOptions());
    QCOMPARE(session.start(), 2);
    QVERIFY(session.isMeasuring());
    for (ZUCORE_HANDLE camera : {first, second}) {
        m_host.deliver(camera, 5);
        QVERIFY(m_host.waitUntilStarved(camera));
    }
    session.stop();

    const std::vector<CameraResult> results = session.results();
    QCOMPARE(results.size(), std::size_t(2));
    for (const CameraResult &result : results) {
        QCOMPARE(result.state, CameraState::Stopped);
        QCOMPARE(result.frames, 5ULL);
        QVERIFY(result.throughput.has_value());
        // 8 bytes every 5 ticks of 4 ns; the mean rate counts stamps, not intervals.
        QCOMPARE(result.throughput->minMBps, 400.0);
        QCOMPARE(result.throughput->avgMBps, 400.0 * 16 / 15);
    }
    QVERIFY(!session.isMeasuring());
    QVERIFY(isRestored(first));
    QVERIFY(isRestored(second));
}

void MeasureSessionTest::namesPreferTheUsersOwn()
{
    m_host.addCamera({QStringLiteral("Model"), QStringLiteral("123"), {}});
    m_host.addCamera({QStringLiteral("Model"), QStringLiteral("456"), QStringLiteral("left")});
    MeasureSession session(throughputOptions());
    session.start();
    const std::vector<CameraResult> results = session.results();
    QCOMPARE(results.at(0).name, std::string("Model (123)"));
    QCOMPARE(results.at(1).name, std::string("Model (left)"));
}

void MeasureSessionTest::refusingCameraStaysInTheReport()
{
    const ZUCORE_HANDLE refusing = m_host.addCamera();
    const ZUCORE_HANDLE good = m_host.addCamera();
    Failure failure = Failure::write(ZU_PRM_TEST_PATTERN, ZU_TESTPAT_DEVICE_SPEC_COUNTER);
    failure.handle = refusing;
    m_host.fail(failure);

    MeasureSession session(throughputOptions());
    QCOMPARE(session.start(), 1);
    session.stop();
    const std::vector<CameraResult> results = session.results();
    QCOMPARE(results.at(0).state, CameraState::NotStarted);
    QVERIFY(!results.at(0).throughput);
    QCOMPARE(results.at(1).state, CameraState::Stopped);
    QVERIFY(isRestored(refusing));
    QVERIFY(isRestored(good));
}

void MeasureSessionTest::lostCameraKeepsItsResults()
{
    const ZUCORE_HANDLE first = m_host.openCamera();
    const ZUCORE_HANDLE second = m_host.openCamera();
    MeasureSession session(throughputOptions());
    QSignalSpy allLost(&session, &MeasureSession::allCamerasLost);
    QCOMPARE(session.start(), 2);
    m_host.deliver(first, 3);
    QVERIFY(m_host.waitUntilStarved(first));

    m_host.closeCamera(first);
    QCOMPARE(allLost.count(), 0);
    QVERIFY(session.isMeasuring());
    m_host.closeCamera(second);
    QCOMPARE(allLost.count(), 1);
    QVERIFY(!session.isMeasuring());

    session.stop();
    const std::vector<CameraResult> results = session.results();
    QCOMPARE(results.at(0).state, CameraState::Lost);
    QCOMPARE(results.at(0).frames, 3ULL);
    QVERIFY(results.at(0).throughput.has_value());
}

void MeasureSessionTest::acquisitionModeReportsCounters()
{
    const ZUCORE_HANDLE camera = m_host.addCamera();
    m_host.setValue(camera, "counter_value[0]", 11);
    m_host.setValue(camera, "counter_value[2]", 22);
    m_host.fail(Failure::write("counter_selector:settable", ZU_CNT_SEL_MISSED_TRG_OVERLAP));

    Options options;
    options.mode = MeasureModeAcquisition;
    MeasureSession session(options);
    QCOMPARE(session.start(), 1);
    m_host.deliver(camera, 11);
    QVERIFY(m_host.waitUntilStarved(camera));
    session.stop();

    const CameraResult result = session.results().front();
    QCOMPARE(result.frames, 11ULL);
    QVERIFY(result.framesPerSecond.has_value());
    QCOMPARE(*result.framesPerSecond, 100.0); // a frame every 10 ms
    QCOMPARE(result.counters.at(ZU_CNT_SEL_TRANSPORT_SKIP).value_or(-1), 11);
    QCOMPARE(result.counters.at(ZU_CNT_SEL_TRANSFERRED).value_or(-1), 22);
    QVERIFY(!result.counters.at(ZU_CNT_SEL_MISSED_TRG_OVERLAP));
    QVERIFY(!result.throughput);
}

void MeasureSessionTest::destructionRestoresCameras()
{
    const ZUCORE_HANDLE camera = m_host.addCamera();
    {
        MeasureSession session(throughputOptions());
        QCOMPARE(session.start(), 1);
        QVERIFY(m_host.isStreaming(camera));
        QVERIFY(!isRestored(camera));
    }
    QVERIFY(isRestored(camera));
}

void MeasureSessionTest::signalEndsTheRunAndRestores_data()
{
    QTest::addColumn<int>("signalNumber");
    QTest::newRow("SIGINT") << SIGINT;
    QTest::newRow("SIGTERM") << SIGTERM;
}

void MeasureSessionTest::signalEndsTheRunAndRestores()
{
    QFETCH(int, signalNumber);
    const ZUCORE_HANDLE camera = m_host.addCamera();
    {
        host::StopSignals stopSignals;
        QEventLoop loop;
        connect(&stopSignals, &host::StopSignals::stopRequested, &loop, &QEventLoop::quit);
        MeasureSession session(throughputOptions());
        QCOMPARE(session.start(), 1);
        QTimer::singleShot(0, &loop, [signalNumber] { std::raise(signalNumber); });
        loop.exec();
        QCOMPARE(stopSignals.received(), signalNumber);
        session.stop();
    }
    QVERIFY(isRestored(camera));
}

QTEST_GUILESS_MAIN(MeasureSessionTest)
#include "MeasureSessionTest.moc"

#include "tests/host/core/CameraEvents.h"
#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulationBackend.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <QtTest>

using host::HostCore;

/// Cameras that come, go and come back.
class HotPlugTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void closesALostCamera_data();
    void closesALostCamera();
    void aCameraThatReturnsOpensAnew();
    void aCameraThatWentAndCameBackBetweenTwoPollsIsLost();
    void aSimulatedCameraThatWentAndCameBackBetweenTwoPollsIsLost();
    void lossIsReportedOnceFromNestedPolls();
    void aSlotMayCloseTheLostCameraItself();
    void announcesListChangesOnly();
    void pollsFourTimesASecond();

private:
    QStringList takeEvents() { return m_events->take(); }

    HostCore &m_core = HostCore::instance();
    CxCameraManager *m_manager = CxCameraManager::instance();
    std::shared_ptr<FakeCamera> m_a;
    std::shared_ptr<FakeCamera> m_b;
    std::shared_ptr<FakeBackend::Cameras> m_list;
    std::unique_ptr<CameraEvents> m_events;
};

void HotPlugTest::init()
{
    m_a = std::make_shared<FakeCamera>("A");
    m_b = std::make_shared<FakeCamera>("B");
    m_a->setValue("gain", 1);
    m_list = plugIn({m_a, m_b});
    m_events = std::make_unique<CameraEvents>();
}

void HotPlugTest::cleanup()
{
    disconnect(m_manager, nullptr, this, nullptr);
    disconnect(&m_core, nullptr, this, nullptr);
    m_core.shutDown();
}

void HotPlugTest::closesALostCamera_data()
{
    QTest::addColumn<bool>("disconnected");
    QTest::addColumn<bool>("unlisted");
    QTest::newRow("disconnected") << true << false;
    QTest::newRow("no longer listed") << false << true;
}

void HotPlugTest::closesALostCamera()
{
    QFETCH(bool, disconnected);
    QFETCH(bool, unlisted);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.open("B"));
    QVERIFY(m_core.startAcquisition(a));
    takeEvents();
    if (disconnected)
        m_a->plug(false);
    if (unlisted)
        m_list->erase(m_list->begin());

    bool listedWhenLost = false;
    bool closedTakesCalls = false;
    connect(&m_core, &HostCore::cameraLost, this,
            [&](ZUCORE_HANDLE h) { listedWhenLost = m_manager->openedCameras().contains(h); });
    connect(m_manager, &CxCameraManager::cameraClosed, this, [&](ZUCORE_HANDLE h) {
        const auto before = m_a->log().size();
        zuApi_SetParamInt(h, "gain", 9, nullptr);
        closedTakesCalls = m_a->log().size() == before + 1; // it reached the device
    });
    m_core.pollDevices();
    QVERIFY(listedWhenLost);
    QVERIFY(closedTakesCalls);
    QCOMPARE(takeEvents(), (QStringList{QStringLiteral("lost A"), QStringLiteral("finished A"),
                                        QStringLiteral("closed A"), QStringLiteral("changed")}));
    QCOMPARE(m_manager->openedCameras().size(), 1);
    QCOMPARE(int(m_core.cameras().size()), 1);
    QCOMPARE(m_core.cameras()[0].info.id, std::string("B"));
    int gain = 0;
    QVERIFY(!zuApi_GetParamInt(a, "gain", gain, nullptr));
    m_core.pollDevices();
    QVERIFY(takeEvents().isEmpty());
}

void HotPlugTest::aCameraThatReturnsOpensAnew()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    m_a->plug(false);
    m_core.pollDevices();
    QVERIFY(!m_core.open("A"));
    takeEvents();
    m_a->plug(true);
    m_core.pollDevices();
    QCOMPARE(takeEvents(), QStringList{QStringLiteral("changed")});
    QCOMPARE(int(m_core.cameras().size()), 2);
    const ZUCORE_HANDLE again = m_core.open("A");
    QVERIFY(again);
    QVERIFY(again != a);
    int gain = 0;
    QVERIFY(zuApi_GetParamInt(again, "gain", gain, nullptr));
    QVERIFY(!zuApi_GetParamInt(a, "gain", gain, nullptr));
}

void HotPlugTest::aCameraThatWentAndCameBackBetweenTwoPollsIsLost()
{
    QVERIFY(m_core.open("A"));
    takeEvents();
    m_a->plug(false);
    m_a->plug(true);
    m_core.pollDevices();
    QCOMPARE(takeEvents(),
             (QStringList{QStringLiteral("lost A"), QStringLiteral("closed A"), QStringLiteral("changed")}));
    QVERIFY(m_core.open("A"));
    takeEvents();
    m_core.pollDevices();
    QVERIFY(takeEvents().isEmpty());
}

void HotPlugTest::aSimulatedCameraThatWentAndCameBackBetweenTwoPollsIsLost()
{
    host::Scenario scenario;
    scenario.cameras.resize(1);
    scenario.cameras[0].serial = "SN-S";
    scenario.cameras[0].faults.unplug = host::UnplugSettings{1000, 2000};
    const auto clock = std::make_shared<host::FreeRunningClock>();
    m_core.addBackend(std::make_unique<host::SimulationBackend>(scenario, clock));
    const ZUCORE_HANDLE first = m_core.open("simulated:SN-S");
    QVERIFY(first);
    m_core.pollDevices();
    takeEvents();

    clock->advance(3000);
    m_core.pollDevices();
    QCOMPARE(takeEvents(),
             (QStringList{QStringLiteral("lost S"), QStringLiteral("closed S"), QStringLiteral("changed")}));
    const ZUCORE_HANDLE again = m_core.open("simulated:SN-S");
    QVERIFY(again);
    QVERIFY(again != first);
    takeEvents();
    m_core.pollDevices();
    QVERIFY(takeEvents().isEmpty());
}

void HotPlugTest::lossIsReportedOnceFromNestedPolls()
{
    QVERIFY(m_core.open("A"));
    m_a->plug(false);
    takeEvents();
    connect(&m_core, &HostCore::cameraLost, this, [&] { m_core.pollDevices(); });
    connect(m_manager, &CxCameraManager::cameraClosed, this, [&] { m_core.pollDevices(); });
    m_core.pollDevices();
    const QStringList events = takeEvents();
    QCOMPARE(events.count(QStringLiteral("lost A")), 1);
    QCOMPARE(events.count(QStringLiteral("closed A")), 1);
    QVERIFY(m_manager->openedCameras().isEmpty());
}

void HotPlugTest::aSlotMayCloseTheLostCameraItself()
{
    QVERIFY(m_core.open("A"));
    QVERIFY(m_core.open("B"));
    m_a->plug(false);
    m_b->plug(false);
    takeEvents();
    // One slot closes everything: the second camera goes before its turn.
    connect(&m_core, &HostCore::cameraLost, this, [&] {
        for (ZUCORE_HANDLE handle : m_manager->openedCameras())
            m_core.close(handle);
    });
    m_core.pollDevices();
    const QStringList events = takeEvents();
    QCOMPARE(events.count(QStringLiteral("lost A")), 1);
    QCOMPARE(events.count(QStringLiteral("lost B")), 0);
    QCOMPARE(events.count(QStringLiteral("closed A")), 1);
    QCOMPARE(events.count(QStringLiteral("closed B")), 1);
}

void HotPlugTest::announcesListChangesOnly()
{
    m_core.pollDevices();
    QVERIFY(takeEvents().isEmpty());
    m_list->push_back(std::make_shared<FakeCamera>("C"));
    m_core.pollDevices();
    QCOMPARE(takeEvents(), QStringList{QStringLiteral("changed")});
    m_b->plug(false);
    m_core.pollDevices();
    QCOMPARE(takeEvents(), QStringList{QStringLiteral("changed")});
    m_a->setInfo({"A", "Model A", "SN-A", "renamed"});
    m_core.pollDevices();
    QCOMPARE(takeEvents(), QStringList{QStringLiteral("changed")});
    m_core.pollDevices();
    QVERIFY(takeEvents().isEmpty());
    plugIn({std::make_shared<FakeCamera>("E")});
    QCOMPARE(takeEvents(), QStringList{QStringLiteral("changed")});
    plugIn({});
    QVERIFY(takeEvents().isEmpty());
}

void HotPlugTest::pollsFourTimesASecond()
{
    QVERIFY(m_core.open("A"));
    m_a->plug(false);
    takeEvents();
    auto *timer = m_core.findChild<QTimer *>();
    QVERIFY(timer && timer->isActive());
    QCOMPARE(timer->interval(), 250);
    // Its event comes by hand, so that nobody waits for it.
    QTimerEvent event(timer->timerId());
    QCoreApplication::sendEvent(timer, &event);
    QVERIFY(takeEvents().contains(QStringLiteral("lost A")));
}

QTEST_GUILESS_MAIN(HotPlugTest)
#include "HotPlugTest.moc"

#include "tests/host/core/CameraEvents.h"
#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <QtTest>

using host::HostCore;

/// Opening and closing cameras, the host's own acquisition, and what is announced
/// of it in which order.
class HostCoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void listsPluggedInCameras();
    void opensInOrder();
    void refusesToOpen_data();
    void refusesToOpen();
    void announcesTheOpeningOnceTheCameraCanBeUsed();
    void aCameraClosedWhileItsOpeningIsAnnounced();
    void closesInOrder();
    void closesOnce();
    void theHostsAcquisition();
    void refusesAcquisition_data();
    void refusesAcquisition();
    void anAcquisitionThatDoesNotStopCleanlyEnds();
    void aClientsStreamIsNotTheHosts();
    void shutsDown();
    void opensNothingWhileItShutsDown_data();
    void opensNothingWhileItShutsDown();
    void shutsDownWithTheApplication_data();
    void shutsDownWithTheApplication();
    void showsParameters();
    void unknownHandles();

private:
    QStringList takeEvents() { return m_events->take(); }

    HostCore &m_core = HostCore::instance();
    CxCameraManager *m_manager = CxCameraManager::instance();
    std::shared_ptr<FakeCamera> m_a;
    std::shared_ptr<FakeCamera> m_b;
    std::shared_ptr<FakeBackend::Cameras> m_list;
    std::unique_ptr<CameraEvents> m_events;
};

void HostCoreTest::init()
{
    m_a = std::make_shared<FakeCamera>("A");
    m_b = std::make_shared<FakeCamera>("B");
    m_a->setValue("gain", 1);
    m_list = plugIn({m_a, m_b});
    m_events = std::make_unique<CameraEvents>();
}

void HostCoreTest::cleanup()
{
    disconnect(m_manager, nullptr, this, nullptr);
    disconnect(&m_core, nullptr, this, nullptr);
    m_core.shutDown();
}

void HostCoreTest::listsPluggedInCameras()
{
    m_a->setInfo({"A", "Model", "123", "left"});
    const ZUCORE_HANDLE b = m_core.open("B");
    QVERIFY(m_core.startAcquisition(b));
    const auto cameras = m_core.cameras();
    QCOMPARE(int(cameras.size()), 2);
    QCOMPARE(cameras[0].info.id, std::string("A"));
    QCOMPARE(cameras[0].info.userId, std::string("left"));
    QVERIFY(!cameras[0].handle);
    QVERIFY(!cameras[0].acquiring);
    QCOMPARE(cameras[1].handle, b);
    QVERIFY(cameras[1].acquiring);
}

void HostCoreTest::opensInOrder()
{
    QVERIFY(m_manager->openedCameras().isEmpty());
    const ZUCORE_HANDLE b = m_core.open("B");
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(a && b && a != b);
    QVERIFY(m_a->isOpen() && m_b->isOpen());
    QCOMPARE(m_manager->openedCameras(), (QList<ZUCORE_HANDLE>{b, a}));
    QCOMPARE(takeEvents(), (QStringList{QStringLiteral("opened B"), QStringLiteral("changed"),
                                        QStringLiteral("opened A"), QStringLiteral("changed")}));
}

void HostCoreTest::refusesToOpen_data()
{
    QTest::addColumn<QByteArray>("id");
    QTest::newRow("unknown") << QByteArray("C");
    QTest::newRow("refusing") << QByteArray("B");
    QTest::newRow("open already") << QByteArray("A");
    QTest::newRow("unplugged") << QByteArray("D");
}

void HostCoreTest::refusesToOpen()
{
    QFETCH(QByteArray, id);
    QVERIFY(m_core.open("A"));
    m_b->failOpen(true);
    m_list->push_back(std::make_shared<FakeCamera>("D"));
    m_list->back()->plug(false);
    takeEvents();
    QVERIFY(!m_core.open(id.toStdString()));
    QVERIFY(takeEvents().isEmpty());
    QCOMPARE(m_manager->openedCameras().size(), 1);
}

void HostCoreTest::announcesTheOpeningOnceTheCameraCanBeUsed()
{
    bool listed = false;
    bool readable = false;
    connect(m_manager, &CxCameraManager::cameraOpened, this, [&](ZUCORE_HANDLE handle) {
        listed = m_manager->openedCameras().contains(handle) && m_manager->cameraParameters(handle);
        int gain = 0;
        readable = zuApi_GetParamInt(handle, "gain", gain, nullptr);
    });
    QVERIFY(m_core.open("A"));
    QVERIFY(listed);
    QVERIFY(readable);
}

void HostCoreTest::aCameraClosedWhileItsOpeningIsAnnounced()
{
    connect(m_manager, &CxCameraManager::cameraOpened, this,
            [&](ZUCORE_HANDLE handle) { m_core.close(handle); });
    QVERIFY(!m_core.open("A"));
    QVERIFY(m_manager->openedCameras().isEmpty());
    QVERIFY(!m_a->isOpen());
}

void HostCoreTest::closesInOrder()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    takeEvents();
    m_a->clearLog();

    QStringList seen;
    const auto look = [&](const char *where) {
        return [&, where](ZUCORE_HANDLE handle) {
            int gain = 0;
            seen << QStringLiteral("%1: %2%3%4%5%6")
                        .arg(QLatin1String(where),
                             QLatin1String(m_manager->openedCameras().contains(handle) ? "listed " : ""),
                             QLatin1String(m_manager->isCameraRunning(handle) ? "running " : ""),
                             QLatin1String(m_manager->cameraParameters(handle) ? "parameters " : ""),
                             QLatin1String(zuApi_GetParamInt(handle, "gain", gain, nullptr) ? "calls " : ""),
                             QLatin1String(m_a->isStreaming() ? "streams" : ""));
        };
    };
    connect(m_manager, &CxCameraManager::acquisitionFinished, this, look("finished"));
    connect(m_manager, &CxCameraManager::cameraClosed, this, look("closed"));
    QVERIFY(m_core.close(a));

    QCOMPARE(seen, (QStringList{QStringLiteral("finished: parameters calls "),
                                QStringLiteral("closed: parameters calls ")}));
    QCOMPARE(takeEvents(), (QStringList{QStringLiteral("finished A"), QStringLiteral("closed A"),
                                        QStringLiteral("changed")}));
    QCOMPARE(m_a->log(), (std::vector<std::string>{"stop", "close"}));
    QVERIFY(!m_manager->cameraParameters(a));
    int gain = 0;
    QVERIFY(!zuApi_GetParamInt(a, "gain", gain, nullptr));
    QVERIFY(!m_core.cameras()[0].handle);
}

void HostCoreTest::closesOnce()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    bool again = true;
    ZUCORE_HANDLE reopened = a;
    connect(m_manager, &CxCameraManager::cameraClosed, this, [&](ZUCORE_HANDLE handle) {
        again = m_core.close(handle);
        reopened = m_core.open("A"); // not before it is closed
    });
    QVERIFY(m_core.close(a));
    QVERIFY(!again);
    QVERIFY(!reopened);
    QVERIFY(!m_core.close(a));
    QCOMPARE(takeEvents().count(QStringLiteral("closed A")), 1);
}

void HostCoreTest::theHostsAcquisition()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    takeEvents();
    QVERIFY(!m_manager->isCameraRunning(a));
    QVERIFY(m_core.startAcquisition(a));
    QVERIFY(m_a->isStreaming());
    QVERIFY(m_manager->isCameraRunning(a));
    QVERIFY(!m_core.startAcquisition(a));
    QVERIFY(m_core.stopAcquisition(a));
    QVERIFY(!m_a->isStreaming());
    QVERIFY(!m_manager->isCameraRunning(a));
    QVERIFY(!m_core.stopAcquisition(a));
    QCOMPARE(takeEvents(), (QStringList{QStringLiteral("started A"), QStringLiteral("changed"),
                                        QStringLiteral("finished A"), QStringLiteral("changed")}));
}

void HostCoreTest::refusesAcquisition_data()
{
    QTest::addColumn<bool>("clientStreams");
    QTest::newRow("a client streams") << true;
    QTest::newRow("the camera fails") << false;
}

void HostCoreTest::refusesAcquisition()
{
    QFETCH(bool, clientStreams);
    const ZUCORE_HANDLE a = m_core.open("A");
    if (clientStreams)
        QVERIFY(zuApi_StartAcquisition(a));
    else
        m_a->failStart(true);
    takeEvents();
    QVERIFY(!m_core.startAcquisition(a));
    QVERIFY(!m_core.stopAcquisition(a));
    QVERIFY(!m_manager->isCameraRunning(a));
    QVERIFY(takeEvents().isEmpty());
    QCOMPARE(m_a->isStreaming(), clientStreams);
}

void HostCoreTest::anAcquisitionThatDoesNotStopCleanlyEnds()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    m_a->failStop(true);
    QVERIFY(!m_core.stopAcquisition(a));
    QVERIFY(!m_manager->isCameraRunning(a));
    QVERIFY(takeEvents().contains(QStringLiteral("finished A")));
    QVERIFY(m_core.startAcquisition(a));
}

void HostCoreTest::aClientsStreamIsNotTheHosts()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    takeEvents();
    QVERIFY(zuApi_StartAcquisition(a));
    QVERIFY(!m_manager->isCameraRunning(a));
    QVERIFY(!m_core.cameras()[0].acquiring);
    m_a->clearLog();
    QVERIFY(m_core.close(a));
    QCOMPARE(takeEvents(), (QStringList{QStringLiteral("closed A"), QStringLiteral("changed")}));
    QCOMPARE(m_a->log(), (std::vector<std::string>{"stop", "close"}));
}

void HostCoreTest::shutsDown()
{
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.open("B"));
    QVERIFY(m_core.startAcquisition(a));
    takeEvents();
    m_core.shutDown();
    QVERIFY(!m_a->isOpen() && !m_b->isOpen());
    QVERIFY(m_core.cameras().empty());
    QVERIFY(!m_core.findChild<QTimer *>()->isActive());
    QVERIFY(m_manager->openedCameras().isEmpty());
    const QStringList events = takeEvents();
    QCOMPARE(events.filter(QStringLiteral("closed")).size(), 2);
    QVERIFY(events.endsWith(QStringLiteral("changed")));
    QCOMPARE(m_a.use_count(), 2L); // the test's own pointer and its list
    m_core.shutDown();
    QVERIFY(takeEvents().isEmpty());
    plugIn({m_a});
    QVERIFY(m_core.open("A"));
}

void HostCoreTest::opensNothingWhileItShutsDown_data()
{
    QTest::addColumn<bool>("finished");
    QTest::newRow("in cameraClosed") << false;
    QTest::newRow("in acquisitionFinished") << true;
}

void HostCoreTest::opensNothingWhileItShutsDown()
{
    QFETCH(bool, finished);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    bool asked = false;
    connect(m_manager, finished ? &CxCameraManager::acquisitionFinished : &CxCameraManager::cameraClosed,
            this, [&] {
                asked = true;
                m_core.open("B");
                m_core.shutDown(); // nested: the outer one goes on
            });
    m_core.shutDown();
    QVERIFY(asked);
    QVERIFY(m_manager->openedCameras().isEmpty());
    QVERIFY(!m_a->isOpen());
    QCOMPARE(m_b->log(), std::vector<std::string>());

    disconnect(m_manager, nullptr, this, nullptr);
    plugIn({m_b});
    QVERIFY(m_core.open("B"));
}

void HostCoreTest::shutsDownWithTheApplication_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("idle") << QStringList();
    QTest::newRow("a capture outlasts the core") << QStringList{QStringLiteral("capture")};
}

void HostCoreTest::shutsDownWithTheApplication()
{
    QFETCH(QStringList, arguments);
    QProcess process;
    process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/HostCoreExit"), arguments);
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void HostCoreTest::showsParameters()
{
    host::ParameterDescription gain;
    gain.name = "gain";
    gain.maximum = 48;
    m_a->describe(gain);
    const ZUCORE_HANDLE a = m_core.open("A");
    const auto shown = m_core.parameters(a);
    QCOMPARE(int(shown.size()), 1);
    QCOMPARE(shown[0].maximum, std::int64_t(48));
    QVERIFY(m_core.close(a));
    QVERIFY(m_core.parameters(a).empty());
}

void HostCoreTest::unknownHandles()
{
    auto handle = reinterpret_cast<ZUCORE_HANDLE>(0x1);
    for (ZUCORE_HANDLE unknown : {handle, ZUCORE_HANDLE(nullptr)}) {
        QVERIFY(!m_core.close(unknown));
        QVERIFY(!m_core.startAcquisition(unknown));
        QVERIFY(!m_core.stopAcquisition(unknown));
        QVERIFY(m_core.parameters(unknown).empty());
        QVERIFY(!m_manager->isCameraRunning(unknown));
        QVERIFY(!m_manager->cameraParameters(unknown));
    }
    QVERIFY(takeEvents().isEmpty());
}

QTEST_GUILESS_MAIN(HostCoreTest)
#include "HostCoreTest.moc"

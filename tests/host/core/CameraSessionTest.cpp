#include "tests/host/core/FakeCamera.h"

#include "host/core/CameraRegistry.h"
#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"

#include <QtTest>

#include <functional>
#include <thread>

using host::CameraRegistry;
using host::CameraSession;
using host::HostCore;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;
using Operation = std::function<bool(CameraSession &)>;
using Owner = CameraSession::StreamOwner;

Q_DECLARE_METATYPE(Operation)

/// Calls that found their session before its handle was closed and reach it
/// after that.
class CameraSessionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void aClosedSessionLeavesTheDeviceAlone_data();
    void aClosedSessionLeavesTheDeviceAlone();
    void aClosedSessionsCaptureWaitsOutItsTimeout();
    void closesOnce();
    void closingWaitsForACallInProgress();
    void aSessionInUseOutlastsTheCore();

private:
    ZUCORE_HANDLE reopen();

    HostCore &m_core = HostCore::instance();
    std::shared_ptr<FakeCamera> m_camera;
    std::shared_ptr<FakeBackend::Cameras> m_list;
    CameraRegistry::Lease m_session; ///< of the first opening
};

void CameraSessionTest::init()
{
    m_camera = std::make_shared<FakeCamera>("A");
    m_camera->setValue("gain", 7);
    m_camera->setMaximum("gain", 48);
    m_camera->setValue(ZU_PRM_IMAGE_DATA_FORMAT, 1);
    m_list = plugIn({m_camera});
    m_session = CameraRegistry::instance().find(m_core.open("A"));
    QVERIFY(m_session);
}

void CameraSessionTest::cleanup()
{
    m_core.shutDown();
    QCoreApplication::processEvents();
    m_session = CameraRegistry::Lease();
}

/// Closes the session's handle. The answer is the camera's next opening.
ZUCORE_HANDLE CameraSessionTest::reopen()
{
    m_core.close(m_session->handle());
    const ZUCORE_HANDLE next = m_core.open("A");
    m_camera->clearLog();
    return next;
}

void CameraSessionTest::aClosedSessionLeavesTheDeviceAlone_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<bool>("streaming"); // when it was closed
    std::int64_t value = 0;
    const auto row = [](const char *name, const Operation &operation, bool streaming = false) {
        QTest::newRow(name) << operation << streaming;
    };
    row("read", [value](CameraSession &s) mutable { return s.read("gain", value); });
    row("read maximum", [value](CameraSession &s) mutable { return s.readMaximum("gain", value); });
    row("settable", [](CameraSession &s) { return s.isSettable("gain", 8); });
    row("write", [](CameraSession &s) { return s.write("gain", 8); });
    row("write image format", [](CameraSession &s) { return s.write("imgdataformat", 8); });
    row("start", [](CameraSession &s) { return s.startStreaming(Owner::Client); });
    row(
        "stop", [](CameraSession &s) { return s.stopStreaming(Owner::Client); }, true);
}

void CameraSessionTest::aClosedSessionLeavesTheDeviceAlone()
{
    QFETCH(Operation, operation);
    QFETCH(bool, streaming);
    if (streaming)
        QVERIFY(m_session->startStreaming(Owner::Client));
    QVERIFY(reopen());
    QSignalSpy formats(CxCameraManager::instance(), &CxCameraManager::imageFormatChanged);
    QVERIFY(!operation(*m_session));
    QCOMPARE(m_camera->log(), std::vector<std::string>());
    QCOMPARE(m_camera->value("gain"), std::int64_t(7));
    QCoreApplication::processEvents();
    QCOMPARE(formats.count(), 0);
}

void CameraSessionTest::aClosedSessionsCaptureWaitsOutItsTimeout()
{
    const ZUCORE_HANDLE next = reopen();
    QVERIFY(zuApi_StartAcquisition(next));
    m_camera->pushFrame(ZU_IMG{});
    ZU_IMG image{};
    image.size = sizeof image;
    const auto start = Clock::now();
    QVERIFY(!m_session->capture(milliseconds(5), image));
    QVERIFY(Clock::now() - start >= milliseconds(5));
    QVERIFY(zuApi_GetImage(next, 0, &image, nullptr, true));
}

void CameraSessionTest::closesOnce()
{
    QVERIFY(reopen());
    m_session->close();
    QVERIFY(m_camera->isOpen());
    QCOMPARE(m_camera->log(), std::vector<std::string>());
}

void CameraSessionTest::closingWaitsForACallInProgress()
{
    m_camera->clearLog();
    m_camera->hold("write");
    bool written = false;
    std::thread writing([&] { written = m_session->write("gain", 8); });
    m_camera->awaitHeld();
    std::thread closing([&] { m_session->close(); });
    // Gives a close that does not wait the time to overtake.
    for (int i = 0; i < 1000 && m_camera->isOpen(); ++i)
        std::this_thread::yield();
    m_camera->release();
    writing.join();
    closing.join();
    QVERIFY(written);
    QCOMPARE(m_camera->log(), (std::vector<std::string>{"write gain=8", "close"}));
}

void CameraSessionTest::aSessionInUseOutlastsTheCore()
{
    const std::weak_ptr<FakeCamera> camera = m_camera;
    m_core.shutDown();
    m_camera.reset();
    m_list.reset();
    QVERIFY(!camera.expired());
    ZU_IMG image{};
    QVERIFY(!m_session->capture(milliseconds(0), image));
    m_session = CameraRegistry::Lease();
    QVERIFY(camera.expired());
}

QTEST_GUILESS_MAIN(CameraSessionTest)
#include "CameraSessionTest.moc"

#include "tests/host/core/FakeCamera.h"

#include "host/core/ApiError.h"
#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"

#include <QtTest>

#include <thread>

using host::ApiError;
using host::HostCore;

/// Calls for one handle from several threads at once.
class ZuApiThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void twoThreadsUseOneHandle();
    void stoppingEndsAWaitingCapture();
    void closingEndsAWaitingCapture();
    void aCaptureInProgressOutlastsTheCore();
    void anOldHandlesCaptureTakesNoFrameOfTheNextOpening();
    void losingTheCameraEndsAWaitingCapture_data();
    void losingTheCameraEndsAWaitingCapture();
    void closingWhileAnotherThreadCalls();
    void signalsOfAnotherThreadComeOnTheGuiThread();
    void cameraClosedLetsAMeasurementEnd();

private:
    std::shared_ptr<FakeCamera> m_camera;
    ZUCORE_HANDLE m_handle = nullptr;
};

namespace {

struct Capture
{
    bool ok = true;
    int err = -1;

    void run(ZUCORE_HANDLE handle, unsigned int timeoutMs)
    {
        ZU_IMG image{};
        image.size = sizeof image;
        ok = zuApi_GetImage(handle, timeoutMs, &image, &err, true);
    }
};

constexpr unsigned int longTimeoutMs = 60000;

} // namespace

void ZuApiThreadsTest::init()
{
    m_camera = std::make_shared<FakeCamera>("A");
    m_camera->setValue("gain", 0);
    m_camera->setValue(ZU_PRM_IMAGE_DATA_FORMAT, 0);
    plugIn({m_camera});
    m_handle = HostCore::instance().open("A");
    QVERIFY(m_handle);
}

void ZuApiThreadsTest::cleanup()
{
    HostCore::instance().shutDown();
    QCoreApplication::processEvents();
}

void ZuApiThreadsTest::twoThreadsUseOneHandle()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    constexpr int rounds = 200;
    int captured = 0;
    std::thread capturing([&] {
        for (int i = 0; i < rounds; ++i) {
            ZU_IMG frame{};
            frame.frameNumber = std::uint32_t(i);
            m_camera->pushFrame(frame);
            ZU_IMG image{};
            image.size = sizeof image;
            if (zuApi_GetImage(m_handle, longTimeoutMs, &image, nullptr, true) &&
                image.frameNumber == std::uint32_t(i))
                ++captured;
            int gain = 0;
            zuApi_GetParamInt(m_handle, "gain", gain, nullptr);
        }
    });
    int written = 0;
    for (int i = 0; i < rounds; ++i) {
        written += zuApi_SetParamInt(m_handle, "gain", i, nullptr);
        written += zuApi_SetParamInt(m_handle, "imgdataformat", i % 3, nullptr);
    }
    capturing.join();
    QCOMPARE(captured, rounds);
    QCOMPARE(written, 2 * rounds);
    QCOMPARE(m_camera->value("gain"), std::int64_t(rounds - 1));
}

void ZuApiThreadsTest::stoppingEndsAWaitingCapture()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    Capture capture;
    QElapsedTimer timer;
    timer.start();
    std::thread capturing([&] { capture.run(m_handle, longTimeoutMs); });
    m_camera->awaitCapture();
    QVERIFY(zuApi_StopAcquisition(m_handle));
    capturing.join();
    QVERIFY(timer.elapsed() < longTimeoutMs / 2);
    QVERIFY(!capture.ok);
    QCOMPARE(capture.err, int(ApiError::NoImage));
}

void ZuApiThreadsTest::closingEndsAWaitingCapture()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    Capture capture;
    QElapsedTimer timer;
    timer.start();
    std::thread capturing([&] { capture.run(m_handle, longTimeoutMs); });
    m_camera->awaitCapture();
    QVERIFY(HostCore::instance().close(m_handle));
    capturing.join();
    QVERIFY(timer.elapsed() < longTimeoutMs / 2);
    QVERIFY(!capture.ok);
}

void ZuApiThreadsTest::aCaptureInProgressOutlastsTheCore()
{
    Capture capture;
    m_camera->hold("capture");
    std::thread capturing([&] { capture.run(m_handle, 1); });
    m_camera->awaitHeld();
    HostCore::instance().shutDown();
    // Only the capture in progress still holds the device, and nobody polls.
    const std::weak_ptr<FakeCamera> camera = m_camera;
    FakeCamera *held = m_camera.get();
    m_camera.reset();
    QVERIFY(!camera.expired());
    held->release();
    capturing.join();
    QVERIFY(!capture.ok);
    QVERIFY(camera.expired());
}

void ZuApiThreadsTest::anOldHandlesCaptureTakesNoFrameOfTheNextOpening()
{
    HostCore &core = HostCore::instance();
    QVERIFY(zuApi_StartAcquisition(m_handle));
    Capture old;
    m_camera->hold("capture");
    std::thread capturing([&] { old.run(m_handle, longTimeoutMs); });
    m_camera->awaitHeld();
    QVERIFY(core.close(m_handle));
    const ZUCORE_HANDLE again = core.open("A");
    QVERIFY(zuApi_StartAcquisition(again));
    m_camera->pushFrame(ZU_IMG{});
    m_camera->release();
    capturing.join();
    QVERIFY(!old.ok);
    Capture next;
    next.run(again, 0);
    QVERIFY(next.ok);
}

void ZuApiThreadsTest::losingTheCameraEndsAWaitingCapture_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<bool>("back");
    QTest::newRow("gone") << true << false;
    QTest::newRow("gone, not streaming") << false << false;
    QTest::newRow("back before the poll") << true << true;
}

void ZuApiThreadsTest::losingTheCameraEndsAWaitingCapture()
{
    QFETCH(bool, streaming);
    QFETCH(bool, back);
    QCOMPARE(!streaming || zuApi_StartAcquisition(m_handle), true);
    Capture capture;
    QElapsedTimer timer;
    timer.start();
    std::thread capturing([&] { capture.run(m_handle, longTimeoutMs); });
    m_camera->awaitCapture();
    m_camera->plug(false);
    m_camera->plug(back);
    HostCore::instance().pollDevices();
    capturing.join();
    QVERIFY(timer.elapsed() < longTimeoutMs / 2);
    QVERIFY(!capture.ok);
    QCOMPARE(capture.err, int(ApiError::NoImage));

    int gain = 0;
    int err = 0;
    QVERIFY(!zuApi_GetParamInt(m_handle, "gain", gain, &err));
    QCOMPARE(err, int(ApiError::UnknownHandle));
    QCOMPARE(HostCore::instance().open("A") != nullptr, back);
}

void ZuApiThreadsTest::closingWhileAnotherThreadCalls()
{
    for (int round = 0; round < 20; ++round) {
        const ZUCORE_HANDLE handle = m_handle;
        int succeeded = 0;
        std::thread calling([&] {
            int value = 0;
            while (zuApi_GetParamInt(handle, "gain", value, nullptr)) {
                zuApi_SetParamInt(handle, "gain", value + 1, nullptr);
                zuApi_StartAcquisition(handle);
                zuApi_StopAcquisition(handle);
                ++succeeded;
            }
        });
        while (m_camera->value("gain") < round + 1)
            std::this_thread::yield();
        QVERIFY(HostCore::instance().close(handle));
        calling.join();
        QVERIFY(succeeded > 0);
        QVERIFY(!m_camera->isOpen());
        m_handle = HostCore::instance().open("A");
        QVERIFY(m_handle);
        m_camera->setValue("gain", round + 1);
    }
}

void ZuApiThreadsTest::signalsOfAnotherThreadComeOnTheGuiThread()
{
    int delivered = 0;
    QThread *deliveringThread = nullptr;
    connect(
        CxCameraManager::instance(), &CxCameraManager::imageFormatChanged, this,
        [&](ZUCORE_HANDLE handle) {
            delivered += handle == m_handle;
            deliveringThread = QThread::currentThread();
        },
        Qt::DirectConnection);
    std::thread writing([&] {
        zuApi_SetParamInt(m_handle, "imgdataformat", 5, nullptr);
        zuApi_SetParamInt(m_handle, "imgdataformat", 5, nullptr);
        zuApi_SetParamInt(m_handle, "imgdataformat", 6, nullptr);
    });
    writing.join();
    QCOMPARE(delivered, 0);
    QCoreApplication::processEvents();
    QCOMPARE(delivered, 2);
    QCOMPARE(deliveringThread, thread());
    disconnect(CxCameraManager::instance(), nullptr, this, nullptr);
}

void ZuApiThreadsTest::cameraClosedLetsAMeasurementEnd()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    Capture capture;
    std::thread capturing([&] { capture.run(m_handle, longTimeoutMs); });
    m_camera->awaitCapture();

    bool stopped = false;
    bool restored = false;
    connect(CxCameraManager::instance(), &CxCameraManager::cameraClosed, this, [&](ZUCORE_HANDLE handle) {
        stopped = zuApi_StopAcquisition(handle);
        capturing.join();
        restored = zuApi_SetParamInt(handle, "gain", 55, nullptr);
    });
    QVERIFY(HostCore::instance().close(m_handle));
    disconnect(CxCameraManager::instance(), nullptr, this, nullptr);
    QVERIFY(stopped);
    QVERIFY(restored);
    QVERIFY(!capture.ok);
    QCOMPARE(m_camera->value("gain"), std::int64_t(55));
}

QTEST_GUILESS_MAIN(ZuApiThreadsTest)
#include "ZuApiThreadsTest.moc"

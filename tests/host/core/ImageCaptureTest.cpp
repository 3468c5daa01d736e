#include "tests/host/core/FakeCamera.h"

#include "host/core/ApiError.h"
#include "host/core/HostCore.h"

#include <QtTest>

#include <cstddef>
#include <cstring>

using host::ApiError;
using host::HostCore;
using std::chrono::milliseconds;
using Clock = std::chrono::steady_clock;

namespace {

ZU_IMG sampleFrame()
{
    static char data[16];
    ZU_IMG frame{};
    frame.size = sizeof frame;
    frame.filledSize = 16;
    frame.data = data;
    frame.width = 4;
    frame.height = 2;
    frame.frameNumber = 77;
    frame.timestampSeconds = 5;
    frame.timestampMicroseconds = 250000;
    frame.reserved[68] = 9;
    return frame;
}

} // namespace

/// zuApi_GetImage and its record.
class ImageCaptureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void fillsTheImageRecord();
    void writesNothingBeyondTheRecordsSize_data();
    void writesNothingBeyondTheRecordsSize();
    void refusesUnusableRecordsAtOnce_data();
    void refusesUnusableRecordsAtOnce();
    void waitsOutTheTimeoutWhenNoFrameCanCome_data();
    void waitsOutTheTimeoutWhenNoFrameCanCome();

private:
    std::shared_ptr<FakeCamera> m_camera;
    ZUCORE_HANDLE m_handle = nullptr;
};

void ImageCaptureTest::init()
{
    m_camera = std::make_shared<FakeCamera>("A");
    plugIn({m_camera});
    m_handle = HostCore::instance().open("A");
    QVERIFY(m_handle);
}

void ImageCaptureTest::cleanup()
{
    HostCore::instance().shutDown();
}

void ImageCaptureTest::fillsTheImageRecord()
{
    QVERIFY(zuApi_StartAcquisition(m_handle));
    const ZU_IMG frame = sampleFrame();
    m_camera->pushFrame(frame);
    ZU_IMG image{};
    image.size = sizeof image;
    int err = -1;
    QVERIFY(zuApi_GetImage(m_handle, 1000, &image, &err, true));
    QCOMPARE(err, 0);
    QVERIFY(std::memcmp(&image, &frame, sizeof frame) == 0);
}

void ImageCaptureTest::writesNothingBeyondTheRecordsSize_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("written");
    QTest::newRow("older record") << 40 << 40;
    QTest::newRow("smallest record") << 36 << 36;
    QTest::newRow("this record") << 312 << 312;
    QTest::newRow("later record") << 400 << 312;
}

void ImageCaptureTest::writesNothingBeyondTheRecordsSize()
{
    QFETCH(int, size);
    QFETCH(int, written);
    QVERIFY(zuApi_StartAcquisition(m_handle));
    ZU_IMG frame = sampleFrame();
    std::memset(frame.reserved, 0x11, sizeof frame.reserved);
    m_camera->pushFrame(frame);

    alignas(ZU_IMG) unsigned char memory[512];
    std::memset(memory, 0xee, sizeof memory);
    auto *image = reinterpret_cast<ZU_IMG *>(memory);
    image->size = std::uint32_t(size);
    QVERIFY(zuApi_GetImage(m_handle, 1000, image, nullptr, true));
    QCOMPARE(image->size, std::uint32_t(size));
    QCOMPARE(image->frameNumber, 77U);
    const std::size_t reserve = offsetof(ZU_IMG, reserved);
    for (std::size_t i = reserve; i < sizeof memory; ++i)
        QCOMPARE(int(memory[i]), i < std::size_t(written) ? 0x11 : 0xee);
}

void ImageCaptureTest::refusesUnusableRecordsAtOnce_data()
{
    QTest::addColumn<int>("size"); // -1: no record
    QTest::newRow("none") << -1;
    QTest::newRow("size not set") << 0;
    QTest::newRow("too small") << 35;
}

void ImageCaptureTest::refusesUnusableRecordsAtOnce()
{
    QFETCH(int, size);
    QVERIFY(zuApi_StartAcquisition(m_handle));
    m_camera->pushFrame(sampleFrame());
    ZU_IMG image{};
    image.size = std::uint32_t(size);
    int err = -1;
    QElapsedTimer timer;
    timer.start();
    QVERIFY(!zuApi_GetImage(m_handle, 60000, size < 0 ? nullptr : &image, &err, true));
    QVERIFY(timer.elapsed() < 30000);
    QCOMPARE(err, int(ApiError::InvalidArgument));
    QCOMPARE(image.frameNumber, 0U);

    // The frame was not taken.
    image.size = sizeof image;
    QVERIFY(zuApi_GetImage(m_handle, 1000, &image, nullptr, true));
}

void ImageCaptureTest::waitsOutTheTimeoutWhenNoFrameCanCome_data()
{
    QTest::addColumn<bool>("streaming");
    QTest::addColumn<bool>("plugged");
    QTest::newRow("no frame") << true << true;
    QTest::newRow("not streaming") << false << true;
    QTest::newRow("lost") << true << false;
}

void ImageCaptureTest::waitsOutTheTimeoutWhenNoFrameCanCome()
{
    QFETCH(bool, streaming);
    QFETCH(bool, plugged);
    if (streaming)
        QVERIFY(zuApi_StartAcquisition(m_handle));
    m_camera->plug(plugged);
    ZU_IMG image{};
    image.size = sizeof image;
    const ZU_IMG before = image;
    int err = -1;
    const auto start = Clock::now();
    QVERIFY(!zuApi_GetImage(m_handle, 5, &image, &err, true));
    QVERIFY(Clock::now() - start >= milliseconds(5));
    QCOMPARE(err, int(ApiError::NoImage));
    QVERIFY(std::memcmp(&image, &before, sizeof image) == 0);
}

QTEST_GUILESS_MAIN(ImageCaptureTest)
#include "ImageCaptureTest.moc"

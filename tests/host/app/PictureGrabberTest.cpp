#include "host/app/PictureGrabber.h"

#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulationBackend.h"
#include "tests/host/app/WatchedCamera.h"

#include <QSignalSpy>
#include <QtTest>

using host::FreeRunningClock;
using host::HostCore;
using host::Picture;
using host::PictureGrabber;
using host::TicksPerMillisecond;

namespace {

ZU_IMG frameOf(QByteArray &bytes, unsigned int width)
{
    ZU_IMG frame{};
    frame.size = sizeof frame;
    frame.filledSize = static_cast<std::uint32_t>(bytes.size());
    frame.data = bytes.data();
    frame.width = width;
    frame.height = 1;
    return frame;
}

} // namespace

/// A simulated camera of 100 frames a second in a time that the test steers, and
/// fake ones that fail in the time of the computer.
class PictureGrabberTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void handsOverTheNewestPictureOnce();
    void countsFramesThatItDoesNotShow();
    void countsDamagedFrames();
    void reducesToTheShownSize();
    void readsAChangedFormat();
    void dropsPicturesOfTheCameraBefore();
    void dropsWhatIsCapturedTooLate();
    void changesTheCameraWithoutWaiting();
    void releaseWaitsForTheCapture();
    void leavesTheFrameAloneOnceReleased();
    void saysThatNoFrameComes();
    void goesOnAfterAFailure();
    void endsWhileItCaptures();

private:
    ZUCORE_HANDLE openFake();
    ZUCORE_HANDLE openSimulated(const host::FaultSettings &faults = {});
    std::optional<Picture> awaitPicture(PictureGrabber &grabber);

    HostCore &m_core = HostCore::instance();
    std::shared_ptr<FreeRunningClock> m_clock;
    std::shared_ptr<WatchedCamera> m_fake;
};

void PictureGrabberTest::init()
{
    m_clock = std::make_shared<FreeRunningClock>(0);
    m_fake = std::make_shared<WatchedCamera>("A");
    m_fake->setValue("imgdataformat", 2);
}

void PictureGrabberTest::cleanup()
{
    m_core.shutDown();
}

ZUCORE_HANDLE PictureGrabberTest::openFake()
{
    plugIn({m_fake});
    const ZUCORE_HANDLE camera = m_core.open("A");
    return m_core.startAcquisition(camera) ? camera : nullptr;
}

ZUCORE_HANDLE PictureGrabberTest::openSimulated(const host::FaultSettings &faults)
{
    host::Scenario scenario;
    scenario.cameras.resize(1);
    host::CameraSettings &settings = scenario.cameras[0];
    settings.serial = "SIM-1";
    settings.width = 64;
    settings.height = 32;
    settings.frameRate = 100;
    settings.faults = faults;
    m_core.addBackend(std::make_unique<host::SimulationBackend>(scenario, m_clock));
    const ZUCORE_HANDLE camera = m_core.open("simulated:SIM-1");
    return m_core.startAcquisition(camera) ? camera : nullptr;
}

std::optional<Picture> PictureGrabberTest::awaitPicture(PictureGrabber &grabber)
{
    std::optional<Picture> picture = grabber.takePicture();
    while (!picture) {
        QSignalSpy spy(&grabber, &PictureGrabber::pictureReady);
        if (!spy.wait())
            return {};
        picture = grabber.takePicture();
    }
    return picture;
}

void PictureGrabberTest::handsOverTheNewestPictureOnce()
{
    const ZUCORE_HANDLE camera = openSimulated();
    QVERIFY(camera);
    PictureGrabber grabber;
    QSignalSpy spy(&grabber, &PictureGrabber::pictureReady);
    grabber.grab(camera);
    // Frames 0 and 1: the pace lets two pass at the beginning.
    QVERIFY(m_clock->runUntil(19 * TicksPerMillisecond));
    QCOMPARE(spy.size(), 0);
    QCoreApplication::processEvents();
    QCOMPARE(spy.size(), 1);
    const std::optional<Picture> picture = grabber.takePicture();
    QVERIFY(picture);
    QCOMPARE(picture->frameNumber, 1U);
    QCOMPARE(picture->image.size(), QSize(64, 32));
    QVERIFY(!grabber.takePicture());
    QCoreApplication::processEvents();
    QCOMPARE(spy.size(), 1);
    m_core.stopAcquisition(camera);
    m_clock->release();
}

void PictureGrabberTest::countsFramesThatItDoesNotShow()
{
    const ZUCORE_HANDLE camera = openSimulated();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    QCOMPARE(grabber.frameRate(), 0.0);
    QVERIFY(m_clock->runUntil(5000 * TicksPerMillisecond));
    // 500 frames in much less than the second over which they are counted.
    QVERIFY2(grabber.frameRate() > 3 * host::PicturePace::PicturesPerSecond,
             qPrintable(QString::number(grabber.frameRate())));
    m_core.stopAcquisition(camera);
    m_clock->release();
}

void PictureGrabberTest::countsDamagedFrames()
{
    host::FaultSettings faults;
    faults.captureFailureEvery = 2;
    const ZUCORE_HANDLE camera = openSimulated(faults);
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    QVERIFY(m_clock->runUntil(59 * TicksPerMillisecond));
    QVERIFY(grabber.damagedFrames() > 0);
    const std::optional<Picture> picture = grabber.takePicture();
    QVERIFY(picture && !picture->image.isNull()); // not the failure's text
    grabber.grab(nullptr);
    QCOMPARE(grabber.damagedFrames(), 0);
    m_core.stopAcquisition(camera);
    m_clock->release();
}

void PictureGrabberTest::reducesToTheShownSize()
{
    const ZUCORE_HANDLE camera = openSimulated();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.setShownSize({16, 16});
    grabber.grab(camera);
    QVERIFY(m_clock->runUntil(19 * TicksPerMillisecond));
    const std::optional<Picture> picture = grabber.takePicture();
    QVERIFY(picture);
    QCOMPARE(picture->image.size(), QSize(16, 8));
    QCOMPARE(picture->size, QSize(64, 32));
    m_core.stopAcquisition(camera);
    m_clock->release();
}

void PictureGrabberTest::readsAChangedFormat()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    QByteArray bytes("\x11\x22\x33", 3);
    m_fake->pushFrame(frameOf(bytes, 1));
    std::optional<Picture> picture = awaitPicture(grabber);
    QVERIFY(picture && picture->image.isGrayscale());
    m_fake->setValue("imgdataformat", 4);
    grabber.forgetFormat();
    const auto isColour = [&] {
        m_fake->pushFrame(frameOf(bytes, 1));
        if (std::optional<Picture> next = grabber.takePicture())
            picture = std::move(next);
        return picture->image.format() == QImage::Format_RGB32;
    };
    QTRY_VERIFY(isColour());
    QCOMPARE(picture->image.pixel(0, 0), qRgb(0x11, 0x22, 0x33));
    m_core.stopAcquisition(camera);
    grabber.release(camera);
}

void PictureGrabberTest::dropsPicturesOfTheCameraBefore()
{
    const ZUCORE_HANDLE camera = openSimulated();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    QVERIFY(m_clock->runUntil(100 * TicksPerMillisecond));
    QVERIFY(grabber.frameRate() > 0);
    grabber.grab(nullptr);
    QCoreApplication::processEvents();
    QVERIFY(!grabber.takePicture());
    QCOMPARE(grabber.frameRate(), 0.0);
    m_core.stopAcquisition(camera);
    m_clock->release();
}

void PictureGrabberTest::dropsWhatIsCapturedTooLate()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    QByteArray bytes("\x11\x22\x33", 3);
    PictureGrabber grabber;
    m_fake->hold("capture");
    grabber.grab(camera);
    m_fake->awaitHeld();
    grabber.grab(nullptr);
    m_fake->pushFrame(frameOf(bytes, 3));
    m_fake->release();
    grabber.release(camera);
    QVERIFY(!grabber.takePicture());
    QCOMPARE(grabber.frameRate(), 0.0);
}

void PictureGrabberTest::changesTheCameraWithoutWaiting()
{
    const ZUCORE_HANDLE simulated = openSimulated();
    const ZUCORE_HANDLE fake = openFake();
    QVERIFY(simulated && fake);
    PictureGrabber grabber;
    grabber.grab(simulated);
    QVERIFY(m_clock->runUntil(45 * TicksPerMillisecond));
    // The capture goes on until the clock does. However soon after the last
    // one, the first picture of the next camera is shown.
    grabber.grab(fake);
    m_clock->release();
    QByteArray bytes("\x11\x22\x33", 3);
    m_fake->pushFrame(frameOf(bytes, 3));
    const std::optional<Picture> picture = awaitPicture(grabber);
    QVERIFY(picture);
    QCOMPARE(picture->size, QSize(3, 1));
    m_core.stopAcquisition(fake);
    grabber.release(fake);
}

void PictureGrabberTest::releaseWaitsForTheCapture()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    m_fake->awaitCapture();
    QVERIFY(m_fake->isInUse());
    grabber.release(camera); // nobody stopped it: after the time-out
    QVERIFY(!m_fake->isInUse());
    grabber.release(camera);
    grabber.release(nullptr);
}

void PictureGrabberTest::leavesTheFrameAloneOnceReleased()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    PictureGrabber grabber;
    for (int i = 0; i < 20; ++i) {
        auto bytes = std::make_unique<QByteArray>(20000, '\x11');
        m_fake->pushFrame(frameOf(*bytes, 20000));
        grabber.grab(camera);
        m_fake->awaitCapture();
        m_core.stopAcquisition(camera);
        grabber.release(camera);
        QVERIFY(!m_fake->isInUse());
        QVERIFY(m_core.startAcquisition(camera));
        ZU_IMG unused{};
        unused.size = sizeof unused;
        while (zuApi_GetImage(camera, 0, &unused, nullptr, true)) { // drops the frame if it is still there
        }
        bytes->fill('\x22'); // the checkers see a late reader
    }
}

void PictureGrabberTest::saysThatNoFrameComes()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    const std::optional<Picture> picture = awaitPicture(grabber);
    QVERIFY(picture);
    QVERIFY(picture->image.isNull());
    QVERIFY2(picture->problem.contains("No frame"), qPrintable(picture->problem));
    m_core.stopAcquisition(camera);
    grabber.release(camera);
}

void PictureGrabberTest::goesOnAfterAFailure()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    PictureGrabber grabber;
    grabber.grab(camera);
    std::optional<Picture> picture = awaitPicture(grabber);
    QVERIFY(picture && picture->image.isNull());
    QByteArray bytes("\x11\x22\x33", 3);
    m_fake->pushFrame(frameOf(bytes, 3));
    while (picture && picture->image.isNull())
        picture = awaitPicture(grabber);
    QVERIFY(picture);
    QCOMPARE(picture->problem, QString());
    m_core.stopAcquisition(camera);
    grabber.release(camera);
}

void PictureGrabberTest::endsWhileItCaptures()
{
    const ZUCORE_HANDLE camera = openFake();
    QVERIFY(camera);
    {
        PictureGrabber grabber;
        grabber.grab(camera);
        m_fake->awaitCapture();
    }
    QVERIFY(!m_fake->isInUse());
    const PictureGrabber unused;
}

QTEST_GUILESS_MAIN(PictureGrabberTest)
#include "PictureGrabberTest.moc"

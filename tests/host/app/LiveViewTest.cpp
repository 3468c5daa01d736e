#include "host/app/LiveView.h"

#include "host/app/CameraControl.h"
#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulationBackend.h"
#include "tests/host/app/WatchedCamera.h"
#include "zuCore/CxCameraManager.h"

#include <QtTest>

#include <algorithm>
#include <thread>

using host::CameraControl;
using host::HostCore;
using host::LiveView;

/// Fake cameras A and B, and a simulated one in a time that never waits.
class LiveViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void saysWhyThereIsNoPicture();
    void showsPictureSizeAndRate();
    void keepsTheAspectRatio_data();
    void keepsTheAspectRatio();
    void followsTheImageFormat();
    void showsAFailureUntilAFrameComes();
    void endsWithTheCamera_data();
    void endsWithTheCamera();
    void leavesAMeasuredCameraAlone_data();
    void leavesAMeasuredCameraAlone();
    void waitsUntilTheCameraIsOutOfUse_data();
    void waitsUntilTheCameraIsOutOfUse();
    void changesBetweenCameras();
    void fitsIntoASmallWindow();
    void textsAreReadable_data();
    void textsAreReadable();

private:
    ZUCORE_HANDLE openSimulated();
    void showWhite(LiveView &view, ZUCORE_HANDLE camera);

    HostCore &m_core = HostCore::instance();
    std::unique_ptr<CameraControl> m_control;
    std::shared_ptr<WatchedCamera> m_a;
    std::shared_ptr<FakeCamera> m_b;
    QByteArray m_bytes{"\x10\x20\x30\x40", 4};
    ZU_IMG m_frame{};
};

namespace {

bool isWhite(const QColor &colour)
{
    return colour.red() > 250 && colour.green() > 250 && colour.blue() > 250;
}

} // namespace

void LiveViewTest::init()
{
    m_control = std::make_unique<CameraControl>();
    m_a = std::make_shared<WatchedCamera>("A");
    m_b = std::make_shared<FakeCamera>("B");
    plugIn({m_a, m_b});
    m_frame.size = sizeof m_frame;
    m_frame.filledSize = 4;
    m_frame.data = m_bytes.data();
    m_frame.width = 2;
    m_frame.height = 2;
}

void LiveViewTest::cleanup()
{
    m_core.shutDown();
    m_control.reset();
}

ZUCORE_HANDLE LiveViewTest::openSimulated()
{
    host::Scenario scenario;
    scenario.cameras.resize(1);
    host::CameraSettings &settings = scenario.cameras[0];
    settings.serial = "SIM-1";
    settings.width = 200;
    settings.height = 100;
    m_core.addBackend(
        std::make_unique<host::SimulationBackend>(scenario, std::make_shared<host::FreeRunningClock>()));
    return m_core.open("simulated:SIM-1");
}

void LiveViewTest::showWhite(LiveView &view, ZUCORE_HANDLE camera)
{
    QVERIFY(zuApi_SetParamInt(camera, ZU_PRM_TEST_PATTERN, 2, nullptr));
    QVERIFY(m_core.startAcquisition(camera));
    view.setCamera(camera);
    QTRY_COMPARE(view.notice(), QString());
}

void LiveViewTest::saysWhyThereIsNoPicture()
{
    LiveView view(*m_control);
    QVERIFY(view.notice().contains("No open camera"));
    const ZUCORE_HANDLE a = m_core.open("A");
    view.setCamera(a);
    QVERIFY(view.notice().contains("does not acquire"));
    QVERIFY(m_core.startAcquisition(a));
    QVERIFY(view.notice().contains("Waiting"));
    m_control->setEnabled(a, false);
    QVERIFY(view.notice().contains("plug-in"));
    m_control->setEnabled(a, true);
    QVERIFY(view.notice().contains("Waiting"));
    view.setCamera(nullptr);
    QVERIFY(view.notice().contains("No open camera"));
    QCOMPARE(view.caption(), QString());
}

void LiveViewTest::showsPictureSizeAndRate()
{
    LiveView view(*m_control);
    const ZUCORE_HANDLE camera = openSimulated();
    showWhite(view, camera);
    QVERIFY2(view.caption().contains("200 × 100"), qPrintable(view.caption()));
    // The rate is looked at twice a second.
    QTRY_VERIFY2(!view.caption().contains(" 0.0 frames/s"), qPrintable(view.caption()));
    m_core.stopAcquisition(camera);
    QVERIFY(view.notice().contains("does not acquire"));
    QCOMPARE(view.caption(), QString());
}

void LiveViewTest::keepsTheAspectRatio_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("inside");
    QTest::addColumn<QPoint>("outside");
    QTest::newRow("wide") << QSize(800, 200) << QPoint(250, 90) << QPoint(150, 90);
    QTest::newRow("high") << QSize(300, 600) << QPoint(20, 280) << QPoint(150, 100);
    QTest::newRow("enlarged") << QSize(800, 430) << QPoint(30, 200) << QPoint(2, 200);
    QTest::newRow("reduced") << QSize(160, 120) << QPoint(10, 50) << QPoint(80, 5);
}

void LiveViewTest::keepsTheAspectRatio()
{
    QFETCH(QSize, size);
    QFETCH(QPoint, inside);
    QFETCH(QPoint, outside);
    LiveView view(*m_control);
    QPalette palette;
    palette.setColor(QPalette::Window, Qt::darkBlue);
    view.setPalette(palette);
    view.resize(size);
    showWhite(view, openSimulated());
    const QImage shot = view.grab().toImage();
    QVERIFY(isWhite(shot.pixelColor(size.width() / 2, size.height() / 2 - 10)));
    QVERIFY(isWhite(shot.pixelColor(inside)));
    QCOMPARE(shot.pixelColor(outside), QColor(Qt::darkBlue));
}

void LiveViewTest::followsTheImageFormat()
{
    LiveView view(*m_control);
    m_a->setValue("imgdataformat", 2);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    view.setCamera(a);
    m_a->pushFrame(m_frame);
    QTRY_COMPARE(view.notice(), QString());
    QVERIFY(zuApi_SetParamInt(a, "imgdataformat", 99, nullptr));
    const auto feed = [&] {
        m_a->pushFrame(m_frame);
        return view.caption();
    };
    QTRY_VERIFY(feed().contains("format 99 cannot be shown"));
    QVERIFY(zuApi_SetParamInt(a, "imgdataformat", 0, nullptr));
    QTRY_VERIFY(feed().contains("2 × 2"));
}

void LiveViewTest::showsAFailureUntilAFrameComes()
{
    LiveView view(*m_control);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    view.setCamera(a);
    QTRY_VERIFY(view.notice().contains("No frame"));
    m_a->pushFrame(m_frame);
    QTRY_COMPARE(view.notice(), QString());
    QVERIFY(view.caption().contains("2 × 2"));
}

void LiveViewTest::endsWithTheCamera_data()
{
    QTest::addColumn<QString>("end");
    QTest::addColumn<QString>("notice");
    QTest::newRow("stopped") << "stop"
                             << "does not acquire";
    QTest::newRow("closed") << "close"
                            << "No open camera";
    QTest::newRow("lost") << "lose"
                          << "No open camera";
    QTest::newRow("program ends") << "shut down"
                                  << "No open camera";
}

void LiveViewTest::endsWithTheCamera()
{
    QFETCH(QString, end);
    QFETCH(QString, notice);
    LiveView view(*m_control);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    view.setCamera(a);
    m_a->awaitCapture();
    if (end == "stop")
        QVERIFY(m_core.stopAcquisition(a));
    else if (end == "close")
        QVERIFY(m_core.close(a));
    else if (end == "shut down")
        m_core.shutDown();
    m_a->plug(end != "lose");
    m_core.pollDevices();
    QVERIFY2(view.notice().contains(notice), qPrintable(view.notice()));
}

void LiveViewTest::leavesAMeasuredCameraAlone_data()
{
    QTest::addColumn<bool>("hostAcquires");
    QTest::newRow("the plug-in acquires") << false;
    QTest::newRow("the host acquires") << true;
}

void LiveViewTest::leavesAMeasuredCameraAlone()
{
    QFETCH(bool, hostAcquires);
    LiveView view(*m_control);
    const ZUCORE_HANDLE a = m_core.open("A");
    view.setCamera(a);
    QVERIFY(hostAcquires ? m_core.startAcquisition(a) : zuApi_StartAcquisition(a));
    m_control->setEnabled(a, false);
    const int before = m_a->captures();
    ZU_IMG image{};
    image.size = sizeof image;
    QVERIFY(!zuApi_GetImage(a, 100, &image, nullptr, true)); // the plug-in's capture
    QCOMPARE(m_a->captures(), before + 1);
    QVERIFY(view.notice().contains("plug-in"));
}

void LiveViewTest::waitsUntilTheCameraIsOutOfUse_data()
{
    QTest::addColumn<bool>("close");
    QTest::newRow("stopped") << false;
    QTest::newRow("closed") << true;
}

void LiveViewTest::waitsUntilTheCameraIsOutOfUse()
{
    QFETCH(bool, close);
    LiveView view(*m_control);
    const ZUCORE_HANDLE a = m_core.open("A");
    QVERIFY(m_core.startAcquisition(a));
    m_a->hold("capture");
    view.setCamera(a);
    m_a->awaitHeld();
    std::thread releaser([this] {
        const auto isStopped = [this] {
            const std::vector<std::string> log = m_a->log();
            return std::count(log.begin(), log.end(), "stop") != 0;
        };
        while (!isStopped())
            std::this_thread::yield();
        m_a->release();
    });
    bool isInUse = true;
    connect(CxCameraManager::instance(), &CxCameraManager::acquisitionFinished, &view,
            [&] { isInUse = m_a->isInUse(); });
    close ? m_core.close(a) : m_core.stopAcquisition(a);
    releaser.join();
    QVERIFY(!isInUse);
}

void LiveViewTest::changesBetweenCameras()
{
    LiveView view(*m_control);
    const ZUCORE_HANDLE a = m_core.open("A");
    const ZUCORE_HANDLE b = m_core.open("B");
    QVERIFY(m_core.startAcquisition(a));
    QVERIFY(m_core.startAcquisition(b));
    view.setCamera(a);
    m_a->pushFrame(m_frame);
    QTRY_COMPARE(view.notice(), QString());
    view.setCamera(b);
    QVERIFY(view.notice().contains("Waiting")); // not the picture of A
    m_frame.width = 1;
    m_b->pushFrame(m_frame);
    QTRY_VERIFY(view.caption().contains("1 × 2"));
    // What another camera does is of no interest.
    m_core.close(a);
    QVERIFY(view.caption().contains("1 × 2"));
    // Away and back: one frame may go to the capture that was waiting.
    view.setCamera(nullptr);
    view.setCamera(b);
    m_b->pushFrame(m_frame);
    m_b->pushFrame(m_frame);
    QTRY_VERIFY(view.caption().contains("1 × 2"));
}

void LiveViewTest::fitsIntoASmallWindow()
{
    const LiveView view(*m_control);
    QVERIFY(view.minimumSizeHint().height() <= 200);
    QVERIFY(view.minimumSizeHint().width() <= 320);
    QVERIFY(view.sizeHint().width() <= 680);
}

void LiveViewTest::textsAreReadable_data()
{
    QTest::addColumn<QColor>("window");
    QTest::addColumn<QColor>("text");
    QTest::newRow("light") << QColor(Qt::white) << QColor(Qt::black);
    QTest::newRow("dark") << QColor(Qt::black) << QColor(Qt::white);
}

void LiveViewTest::textsAreReadable()
{
    QFETCH(QColor, window);
    QFETCH(QColor, text);
    LiveView view(*m_control);
    QPalette palette;
    palette.setColor(QPalette::Window, window);
    palette.setColor(QPalette::WindowText, text);
    view.setPalette(palette);
    view.resize(300, 200);
    const auto hasText = [&](const QRect &area) {
        const QImage shot = view.grab(area).toImage();
        for (int y = 0; y < shot.height(); ++y) {
            for (int x = 0; x < shot.width(); ++x) {
                if (qAbs(shot.pixelColor(x, y).lightness() - text.lightness()) < 30)
                    return true;
            }
        }
        return false;
    };
    QVERIFY(hasText(view.rect()));
    showWhite(view, openSimulated());
    QVERIFY(hasText(QRect(0, 185, 300, 15)));
}

QTEST_MAIN(LiveViewTest)
#include "LiveViewTest.moc"

#include "tests/scriptedhost/ScriptedHost.h"
#include "zuCore/CxCameraManager.h"

#include <QSignalSpy>
#include <QtTest>

#include <atomic>
#include <thread>

using scripted::Failure;
using scripted::Function;
using scripted::Host;

class ScriptedHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void valuesAreReadAndWritten();
    void unknownNamesFail();
    void selectorsDecideWhereAValueLies();
    void settableOnlyAsks();
    void wideValues();
    void failures_data();
    void failures();
    void streaming();
    void capturesWaitForTheirDelivery();
    void releasedCapturesFail();
    void unattendedCapturesEndByThemselves();
    void stoppingEndsACapture();
    void counterFrames();
    void recordOfACapture();
    void observerSeesTheCallFirst();
    void signalsOfACamera();
    void closingCameraStillTakesCalls();
    void lostCamera();
    void parameterSet();
    void missingParameters();
    void version();
    void resetForgetsEverything();

private:
    bool set(const char *name, int value) { return zuApi_SetParamInt(m_camera, name, value, nullptr); }
    int get(const char *name, int before = -99)
    {
        zuApi_GetParamInt(m_camera, name, before, nullptr);
        return before;
    }
    bool capture(unsigned int timeoutMs = 5000)
    {
        m_image = ZU_IMG{};
        m_image.size = sizeof m_image;
        return zuApi_GetImage(m_camera, timeoutMs, &m_image, nullptr, true);
    }

    Host &m_host = Host::instance();
    ZUCORE_HANDLE m_camera = nullptr;
    ZU_IMG m_image{};
};

void ScriptedHostTest::init()
{
    m_host.reset();
    m_camera = m_host.addCamera();
}

void ScriptedHostTest::valuesAreReadAndWritten()
{
    QCOMPARE(get("test_pattern"), 9);
    QVERIFY(set("test_pattern", 11));
    QCOMPARE(get("test_pattern"), 11);
    QCOMPARE(m_host.value(m_camera, "test_pattern"), 11LL);
    const std::vector<std::string> expected = {"get test_pattern 9", "set test_pattern 11",
                                               "get test_pattern 11"};
    QVERIFY(m_host.cameraCalls() == expected);
}

void ScriptedHostTest::unknownNamesFail()
{
    QCOMPARE(get("no_such_thing", 5), 5);
    QVERIFY(!set("no_such_thing", 1));
    QVERIFY(!set("no_such_thing:settable", 1));
    QVERIFY(!set("recent_frame:max", 1));
    int value = 5;
    QVERIFY(!zuApi_GetParamInt(reinterpret_cast<void *>(1), "test_pattern", value, nullptr));
    QCOMPARE(value, 5);
}

void ScriptedHostTest::selectorsDecideWhereAValueLies()
{
    QVERIFY(set("device_unit_selector", 8) && set("device_unit_register_selector", 4096));
    QCOMPARE(get("device_unit_register_value"), 380);
    QVERIFY(set("device_unit_selector", 1) && set("device_unit_register_selector", 55));
    QVERIFY(set("device_unit_register_value", 25000));
    QCOMPARE(m_host.value(m_camera, "device_unit_register_value[1,55]"), 25000LL);
    QCOMPARE(m_host.value(m_camera, "device_unit_register_value[8,4096]"), 380LL);
    QVERIFY(set("device_unit_register_selector", 56));
    QCOMPARE(get("device_unit_register_value", 5), 5);
    m_host.setValue(m_camera, "counter_value[4]", 44);
    QVERIFY(set("counter_selector", 4));
    QCOMPARE(get("counter_value"), 44);
}

void ScriptedHostTest::settableOnlyAsks()
{
    QVERIFY(set("counter_selector:settable", 4));
    QCOMPARE(m_host.value(m_camera, "counter_selector"), 2LL);
    m_host.fail(Failure::write("counter_selector:settable", 3));
    QVERIFY(!set("counter_selector:settable", 3));
    QVERIFY(set("counter_selector:settable", 4));
}

void ScriptedHostTest::wideValues()
{
    m_host.setValue(m_camera, "dp_param_value[1,5,7]", 0x123456789aLL);
    QVERIFY(set("dp_unit_selector", 1) && set("dp_proc_selector", 5) && set("dp_param_selector", 7));
    unsigned long long value = 0;
    QVERIFY(zuApi_GetParamInt64(m_camera, "dp_param_value", value, nullptr));
    QCOMPARE(value, 0x123456789aULL);
}

void ScriptedHostTest::failures_data()
{
    // Calls: get A, set A 1, set A 2, set B 1, get B
    QTest::addColumn<int>("rule");
    QTest::addColumn<QList<bool>>("results");
    QTest::newRow("reads") << 0 << QList<bool>{false, true, true, true, true};
    QTest::newRow("writes") << 1 << QList<bool>{true, false, false, true, true};
    QTest::newRow("writes of a value") << 2 << QList<bool>{true, true, false, true, true};
    QTest::newRow("everything") << 3 << QList<bool>{false, false, false, false, false};
    QTest::newRow("fourth call") << 4 << QList<bool>{true, true, true, false, true};
    QTest::newRow("second write") << 5 << QList<bool>{true, true, false, true, true};
    QTest::newRow("another camera") << 6 << QList<bool>{true, true, true, true, true};
}

void ScriptedHostTest::failures()
{
    QFETCH(int, rule);
    ZUCORE_HANDLE other = m_host.addCamera();
    const QList<Failure> rules = {Failure::read("recent_frame"),
                                  Failure::write("recent_frame"),
                                  Failure::write("recent_frame", 2),
                                  {},
                                  Failure::step(4),
                                  Failure::call(Function::SetParamInt, 2),
                                  {{}, {}, {}, other}};
    m_host.fail(rules[rule]);
    int value = 0;
    QList<bool> results;
    results << zuApi_GetParamInt(m_camera, "recent_frame", value, nullptr) << set("recent_frame", 1)
            << set("recent_frame", 2) << set("buffer_policy", 1)
            << zuApi_GetParamInt(m_camera, "buffer_policy", value, nullptr);
    QTEST(results, "results");
    m_host.clearFailures();
    QVERIFY(set("recent_frame", 2));
}

void ScriptedHostTest::streaming()
{
    QVERIFY(!m_host.isStreaming(m_camera));
    QVERIFY(zuApi_StartAcquisition(m_camera));
    QVERIFY(m_host.isStreaming(m_camera));
    QVERIFY(!zuApi_StartAcquisition(m_camera));
    QVERIFY(zuApi_StopAcquisition(m_camera));
    QVERIFY(!m_host.isStreaming(m_camera));
    QVERIFY(!capture(1));
}

void ScriptedHostTest::capturesWaitForTheirDelivery()
{
    std::atomic<bool> end{false};
    std::atomic<int> captured{0};
    m_host.endCapturesWhen(m_camera, [&end] { return end.load(); });
    QVERIFY(zuApi_StartAcquisition(m_camera));
    std::thread thread([&] {
        while (!end)
            captured += capture();
    });
    QVERIFY(m_host.waitUntilStarved(m_camera));
    QCOMPARE(captured.load(), 0);
    m_host.deliver(m_camera, 3);
    QVERIFY(m_host.waitUntilStarved(m_camera));
    QCOMPARE(captured.load(), 3);
    end = true;
    thread.join();
    QCOMPARE(captured.load(), 3);
}

void ScriptedHostTest::releasedCapturesFail()
{
    m_host.endCapturesWhen(m_camera, [] { return false; });
    QVERIFY(zuApi_StartAcquisition(m_camera));
    std::atomic<bool> result{true};
    std::thread thread([&] { result = capture(); });
    QVERIFY(m_host.waitUntilStarved(m_camera));
    m_host.releaseCaptures(m_camera);
    thread.join();
    QVERIFY(!result);
    QVERIFY(!capture()); // none waits any more
    m_host.deliver(m_camera, 1);
    QVERIFY(capture());
}

void ScriptedHostTest::unattendedCapturesEndByThemselves()
{
    QVERIFY(zuApi_StartAcquisition(m_camera));
    QVERIFY(!capture(5000)); // the test's time limit would tell
}

void ScriptedHostTest::stoppingEndsACapture()
{
    m_host.endCapturesWhen(m_camera, [] { return false; });
    QVERIFY(zuApi_StartAcquisition(m_camera));
    std::thread thread([&] { capture(); });
    QVERIFY(m_host.waitUntilStarved(m_camera));
    QVERIFY(zuApi_StopAcquisition(m_camera));
    thread.join();
}

void ScriptedHostTest::counterFrames()
{
    QVERIFY(zuApi_StartAcquisition(m_camera));
    m_host.deliver(m_camera, 2);
    for (unsigned int frame = 0; frame < 2; ++frame) {
        QVERIFY(capture());
        QCOMPARE(m_image.width, 64U);
        QCOMPARE(m_image.height, 64U);
        QCOMPARE(m_image.filledSize, 8192U);
        QCOMPARE(m_image.frameNumber, frame + 1);
        QCOMPARE(m_image.timestampSeconds, 1U);
        QCOMPARE(m_image.timestampMicroseconds, frame * 10000);
        const auto *words = static_cast<const unsigned long long *>(m_image.data);
        QCOMPARE(words[0], 1000ULL + frame * 2500000ULL);
        QCOMPARE(words[1023], words[0] + 1023ULL * 5);
    }
}

void ScriptedHostTest::recordOfACapture()
{
    QVERIFY(zuApi_StartAcquisition(m_camera));
    m_host.deliver(m_camera, 2);
    QVERIFY(capture(1234));
    scripted::Call call = m_host.calls().back();
    QCOMPARE(call.value, 1234LL);
    QVERIFY(call.result && call.cleanRecord && call.flag && !call.wantsError);
    QVERIFY(call.thread == std::this_thread::get_id());
    int error = 0;
    // The record still holds the frame before.
    QVERIFY(zuApi_GetImage(m_camera, 1, &m_image, &error, false));
    call = m_host.calls().back();
    QVERIFY(!call.cleanRecord && !call.flag && call.wantsError);
}

void ScriptedHostTest::observerSeesTheCallFirst()
{
    std::vector<std::string> seen;
    std::size_t recorded = 99;
    m_host.observe([&](const scripted::Call &call) {
        seen.push_back(call.text());
        recorded = m_host.calls().size(); // no lock is held
    });
    QVERIFY(set("recent_frame", 3));
    QVERIFY(seen == std::vector<std::string>{"set recent_frame 3"});
    QCOMPARE(recorded, std::size_t(0));
}

void ScriptedHostTest::signalsOfACamera()
{
    CxCameraManager *manager = CxCameraManager::instance();
    QSignalSpy opened(manager, &CxCameraManager::cameraOpened);
    QSignalSpy started(manager, &CxCameraManager::acquisitionStarted);
    QSignalSpy finished(manager, &CxCameraManager::acquisitionFinished);
    QSignalSpy format(manager, &CxCameraManager::imageFormatChanged);
    ZUCORE_HANDLE camera = m_host.openCamera();
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened.first().first().value<ZUCORE_HANDLE>(), camera);
    QCOMPARE(manager->openedCameras(), QList<ZUCORE_HANDLE>({m_camera, camera}));
    m_host.setHostAcquisition(camera, true);
    QVERIFY(manager->isCameraRunning(camera));
    QVERIFY(!manager->isCameraRunning(m_camera));
    m_host.setHostAcquisition(camera, false);
    QVERIFY(!manager->isCameraRunning(camera));
    m_host.emitImageFormatChanged(camera);
    QCOMPARE(started.size(), 1);
    QCOMPARE(finished.size(), 1);
    QCOMPARE(format.size(), 1);
}

void ScriptedHostTest::closingCameraStillTakesCalls()
{
    CxCameraManager *manager = CxCameraManager::instance();
    int signalCount = 0;
    const QMetaObject::Connection connection =
        connect(manager, &CxCameraManager::cameraClosed, this, [&](ZUCORE_HANDLE camera) {
            ++signalCount;
            QCOMPARE(camera, m_camera);
            QVERIFY(manager->openedCameras().isEmpty());
            QVERIFY(set("recent_frame", 1));
        });
    m_host.closeCamera(m_camera);
    disconnect(connection);
    QCOMPARE(signalCount, 1);
    QVERIFY(!set("recent_frame", 1));
    QVERIFY(!manager->cameraParameters(m_camera));
}

void ScriptedHostTest::lostCamera()
{
    m_host.setLost(m_camera, true);
    QVERIFY(!set("recent_frame", 1));
    QVERIFY(!zuApi_StartAcquisition(m_camera));
    QVERIFY(!capture());
    m_host.setLost(m_camera, false);
    QVERIFY(set("recent_frame", 1));
}

void ScriptedHostTest::parameterSet()
{
    ZUCORE_HANDLE camera =
        m_host.addCamera({QStringLiteral("Model"), QStringLiteral("Serial"), QStringLiteral("User")});
    CxCameraParameters *set = CxCameraManager::instance()->cameraParameters(camera);
    QVERIFY(set);
    QCOMPARE(set->cameraInfo().modelName, QStringLiteral("Model"));
    QCOMPARE(set->cameraInfo().serialNumber, QStringLiteral("Serial"));
    QCOMPARE(set->cameraInfo().userId, QStringLiteral("User"));
    const QString name = QStringLiteral("imgdataformat");
    CxCameraParam *param = set->findParam(name, false);
    QVERIFY(param);
    QCOMPARE(set->findParam(name, false), param);
    QCOMPARE(param->enumItems().size(), 5);
    QCOMPARE(param->enumItems()[4].value, 7);
    QCOMPARE(param->paramValue().toInt(), 2);
    param->setParamValue(CxValue(3));
    QCOMPARE(m_host.value(camera, "imgdataformat"), 2LL);
    set->endCommitBatch(CxCameraParameters::eCommitRefreshNone);
    QCOMPARE(m_host.value(camera, "imgdataformat"), 2LL);
    set->addParamCommitToBatch(name);
    m_host.clearCalls();
    set->endCommitBatch(CxCameraParameters::eCommitRefreshChanged);
    QCOMPARE(m_host.value(camera, "imgdataformat"), 3LL);
    QCOMPARE(m_host.calls().front().text(), std::string("endCommitBatch 1"));
}

void ScriptedHostTest::missingParameters()
{
    CxCameraManager *manager = CxCameraManager::instance();
    m_host.removeValue(m_camera, "imgdataformat");
    QVERIFY(!manager->cameraParameters(m_camera)->findParam(QStringLiteral("imgdataformat"), false));
    m_host.removeParameterSet(m_camera);
    QVERIFY(!manager->cameraParameters(m_camera));
    QVERIFY(!manager->cameraParameters(nullptr));
}

void ScriptedHostTest::version()
{
    int major = 0;
    int minor = 0;
    int build = 0;
    zuCoreVersion(major, minor, build);
    QVERIFY(major == 9 && minor == 8 && build == 7);
    m_host.setVersion(1, 2, 3);
    zuCoreVersion(major, minor, build);
    QVERIFY(major == 1 && minor == 2 && build == 3);
}

void ScriptedHostTest::resetForgetsEverything()
{
    m_host.fail({});
    m_host.observe([](const scripted::Call &) { QFAIL("observed after a reset"); });
    ZUCORE_HANDLE before = m_camera;
    m_host.reset();
    QVERIFY(m_host.calls().empty());
    QVERIFY(CxCameraManager::instance()->openedCameras().isEmpty());
    QVERIFY(!set("recent_frame", 1));
    m_camera = m_host.addCamera();
    QVERIFY(m_camera != before);
    QVERIFY(set("recent_frame", 1));
}

QTEST_GUILESS_MAIN(ScriptedHostTest)
#include "ScriptedHostTest.moc"

#include "SimulationTestHelpers.h"

#include <QTest>

using namespace host;

class SimulatedParameterFaultsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void missingParameter();
    void missingUnits();
    void missingRegister();
    void unsupportedCounter();
    void failingParameter_data();
    void failingParameter();
    void failingMaximum();
};

void SimulatedParameterFaultsTest::missingParameter()
{
    CameraSettings settings = smallCamera();
    settings.faults.missingParameters = {"buffers_queue_size"};
    CameraOnClock on(settings);
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("buffers_queue_size", value));
    QVERIFY(!on.camera.readMaximum("buffers_queue_size", value));
    QVERIFY(!on.camera.writeParameter("buffers_queue_size", 2));
    QVERIFY(!on.camera.isSettable("buffers_queue_size", 2));
    const auto descriptions = on.camera.parameters();
    QVERIFY(std::ranges::find(descriptions, "buffers_queue_size", &ParameterDescription::name) ==
            descriptions.end());
    QCOMPARE(on.read("width"), std::int64_t{100});
}

void SimulatedParameterFaultsTest::missingUnits()
{
    CameraSettings settings = smallCamera();
    settings.faults.missingUnits = {FaultSettings::Unit::FrameBuffer, FaultSettings::Unit::Speed};
    CameraOnClock on(settings);
    QVERIFY(!on.camera.writeParameter("dp_unit_selector", 1));
    QVERIFY(!on.camera.writeParameter("device_unit_selector", 8));
    QVERIFY(on.camera.writeParameter("device_unit_selector", 1));
    settings.faults.missingUnits = {FaultSettings::Unit::Transport};
    CameraOnClock other(settings);
    QVERIFY(!other.camera.writeParameter("device_unit_selector", 1));
    QVERIFY(other.camera.writeParameter("device_unit_selector", 8));
}

void SimulatedParameterFaultsTest::missingRegister()
{
    CameraSettings settings = smallCamera();
    settings.faults.missingRegisters = {{8, 4096}};
    CameraOnClock on(settings);
    QVERIFY(on.camera.writeParameter("device_unit_selector", 8));
    QVERIFY(on.camera.writeParameter("device_unit_register_selector", 4096));
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("device_unit_register_value", value));
}

void SimulatedParameterFaultsTest::unsupportedCounter()
{
    CameraSettings settings = smallCamera();
    settings.faults.unsupportedCounters = {0, 4};
    CameraOnClock on(settings);
    QVERIFY(!on.camera.isSettable("counter_selector", 4));
    QVERIFY(!on.camera.writeParameter("counter_selector", 4));
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("counter_value", value)); // selected from the start: 0
    QVERIFY(on.camera.isSettable("counter_selector", 5));
    QCOMPARE(on.counter(ZU_CNT_SEL_BUFFER_OVERFLOW), std::int64_t{0});
}

void SimulatedParameterFaultsTest::failingParameter_data()
{
    using Access = FailingParameter::Access;
    QTest::addColumn<int>("access");
    QTest::addColumn<int>("onlyFor");
    QTest::addColumn<bool>("readable");
    QTest::addColumn<bool>("writesOne");
    QTest::addColumn<bool>("writesZero");
    const auto row = [](const char *name, Access access) -> QTestData & {
        return QTest::newRow(name) << static_cast<int>(access);
    };
    row("read", Access::Read) << -1 << false << true << true;
    row("write", Access::Write) << -1 << true << false << false;
    row("both", Access::Both) << -1 << false << false << false;
    row("maximum", Access::Maximum) << -1 << true << true << true;
    row("write one value", Access::Write) << 1 << true << false << true;
    row("read one value, stored", Access::Read) << 0 << false << true << true;
    row("read one value, not stored", Access::Read) << 1 << true << true << true;
}

void SimulatedParameterFaultsTest::failingParameter()
{
    QFETCH(int, access);
    QFETCH(int, onlyFor);
    CameraSettings settings = smallCamera();
    FailingParameter failing{"LUTEnable", static_cast<FailingParameter::Access>(access), std::nullopt};
    if (onlyFor >= 0)
        failing.value = onlyFor;
    settings.faults.failingParameters = {failing};
    CameraOnClock on(settings);
    std::int64_t value = 0;
    QTEST(on.camera.readParameter("LUTEnable", value), "readable");
    QTEST(on.camera.isSettable("LUTEnable", 1), "writesOne");
    QTEST(on.camera.writeParameter("LUTEnable", 1), "writesOne");
    QTEST(on.camera.writeParameter("LUTEnable", 0), "writesZero");
    QVERIFY(on.camera.writeParameter("recent_frame", 1));
}

void SimulatedParameterFaultsTest::failingMaximum()
{
    CameraSettings settings = smallCamera();
    settings.faults.failingParameters = {
        {"buffers_queue_size", FailingParameter::Access::Maximum, std::nullopt},
        {"width", FailingParameter::Access::Both, std::nullopt}};
    CameraOnClock on(settings);
    std::int64_t value = 0;
    QVERIFY(!on.camera.readMaximum("buffers_queue_size", value));
    QVERIFY(on.camera.readMaximum("width", value));
    QCOMPARE(on.read("buffers_queue_size"), std::int64_t{4});
}

QTEST_APPLESS_MAIN(SimulatedParameterFaultsTest)
#include "SimulatedParameterFaultsTest.moc"

#include "SimulationTestHelpers.h"

#include <QSet>
#include <QTest>

using namespace host;

class SimulatedParametersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void values_data();
    void values();
    void unknownNameIsRefused();
    void lockedWhileStreaming_data();
    void lockedWhileStreaming();
    void formatNames();
    void patternIsKeptPerGenerator();
    void frameBufferUnit();
    void frameBufferSizeNeeds64Bits();
    void deviceRegisters();
    void requiredSpeedIsRounded();
    void countersStartAtZero();
    void descriptionsMatchTheBehaviour();
    void closedCameraRefusesEverything();
    void valuesSurviveClosing();
};

void SimulatedParametersTest::values_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("initial");
    QTest::addColumn<QVector<int>>("accepted");
    QTest::addColumn<QVector<int>>("refused");
    QTest::addColumn<int>("maximum");
    const QVector<int> offOn{1, 0};
    const QVector<int> notOffOn{-1, 2};
    const auto row = [](const char *name) -> QTestData & { return QTest::newRow(name) << QByteArray(name); };
    row("buffer_policy") << 1 << offOn << notOffOn << 1;
    row("imgdataformat") << 0 << QVector<int>{1, 2, 3, 4, 5, 6, 7, 0} << QVector<int>{-1, 8} << 7;
    row("output_bit_depth") << 8 << QVector<int>{10, 12, 14, 16, 8} << QVector<int>{0, 9, 17, 32} << 16;
    row("output_bit_packing") << 0 << offOn << notOffOn << 1;
    row("column_fpn_correction") << 1 << offOn << notOffOn << 1;
    row("row_fpn_correction") << 1 << offOn << notOffOn << 1;
    row("LUTEnable") << 0 << offOn << notOffOn << 1;
    row("test_pattern_generator_selector") << 0 << offOn << notOffOn << 1;
    row("test_pattern") << 0 << QVector<int>{1, 2, 0} << QVector<int>{-1, 3, 11} << 2;
    row("dp_unit_selector") << 0 << offOn << notOffOn << 1;
    row("dp_proc_selector") << 0 << QVector<int>{5, 15, 0} << QVector<int>{-1, 16} << 15;
    row("dp_param_selector") << 0 << QVector<int>{6, 7, 255} << QVector<int>{-1, 256} << 255;
    row("device_unit_selector") << 0 << QVector<int>{1, 8, 0} << QVector<int>{-1, 2, 7, 9} << 8;
    row("device_unit_register_selector")
        << 0 << QVector<int>{55, 4096, 65535} << QVector<int>{-1, 65536} << 65535;
    row("recent_frame") << 0 << offOn << notOffOn << 1;
    row("buffers_queue_size") << 4 << QVector<int>{1, 64, 17} << QVector<int>{-1, 0, 65} << 64;
    row("counter_selector") << 0 << QVector<int>{1, 2, 3, 4, 5, 0} << QVector<int>{-1, 6} << 5;
    row("ts_rst_mode") << 0 << offOn << notOffOn << 1;
    row("ts_rst_source") << 0 << QVector<int>{19, 0} << QVector<int>{-1, 1, 18, 20} << 19;
    row("width") << 100 << QVector<int>{1, 99, 100} << QVector<int>{-1, 0, 101} << 100;
    row("height") << 10 << QVector<int>{1, 9, 10} << QVector<int>{-1, 0, 11} << 10;
}

void SimulatedParametersTest::values()
{
    QFETCH(QByteArray, name);
    QFETCH(QVector<int>, accepted);
    QFETCH(QVector<int>, refused);
    CameraOnClock on(smallCamera());
    QTEST(static_cast<int>(on.read(name)), "initial");
    std::int64_t maximum = -1;
    QVERIFY(on.camera.readMaximum(name.constData(), maximum));
    QTEST(static_cast<int>(maximum), "maximum");
    for (const int value : accepted) {
        const std::int64_t before = on.read(name);
        QVERIFY(on.camera.isSettable(name.constData(), value));
        QCOMPARE(on.read(name), before);
        QVERIFY(on.camera.writeParameter(name.constData(), value));
        QCOMPARE(on.read(name), std::int64_t{value});
    }
    for (const int value : refused) {
        QVERIFY(!on.camera.isSettable(name.constData(), value));
        QVERIFY(!on.camera.writeParameter(name.constData(), value));
        QCOMPARE(on.read(name), std::int64_t{accepted.last()});
    }
}

void SimulatedParametersTest::unknownNameIsRefused()
{
    CameraOnClock on(smallCamera());
    std::int64_t value = 77;
    QVERIFY(!on.camera.readParameter("gain", value));
    QVERIFY(!on.camera.readMaximum("gain", value));
    QVERIFY(!on.camera.writeParameter("gain", 1));
    QVERIFY(!on.camera.isSettable("gain", 1));
    QVERIFY(!on.camera.readParameter("", value));
    QCOMPARE(value, std::int64_t{77});
}

void SimulatedParametersTest::lockedWhileStreaming_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<int>("value");
    QTest::addColumn<bool>("locked");
    const auto row = [](const char *name, int value, bool locked) {
        QTest::newRow(name) << QByteArray(name) << value << locked;
    };
    row("imgdataformat", 1, true);
    row("width", 50, true);
    row("height", 5, true);
    row("output_bit_depth", 16, true);
    row("output_bit_packing", 1, true);
    row("buffer_policy", 0, true);
    row("buffers_queue_size", 2, true);
    row("test_pattern", 1, true);
    row("test_pattern_generator_selector", 1, false);
    row("recent_frame", 1, false);
    row("column_fpn_correction", 0, false);
    row("row_fpn_correction", 0, false);
    row("LUTEnable", 1, false);
    row("counter_selector", 2, false);
    row("dp_unit_selector", 1, false);
    row("device_unit_selector", 8, false);
    row("ts_rst_mode", 1, false);
}

void SimulatedParametersTest::lockedWhileStreaming()
{
    QFETCH(QByteArray, name);
    QFETCH(int, value);
    QFETCH(bool, locked);
    CameraOnClock on(smallCamera());
    const std::int64_t before = on.read(name);
    QVERIFY(on.camera.startAcquisition());
    QCOMPARE(on.camera.isSettable(name.constData(), value), !locked);
    QCOMPARE(on.camera.writeParameter(name.constData(), value), !locked);
    QCOMPARE(on.read(name), locked ? before : std::int64_t{value});
    QVERIFY(on.camera.stopAcquisition());
    QVERIFY(on.camera.writeParameter(name.constData(), value));
}

void SimulatedParametersTest::formatNames()
{
    CameraOnClock on(smallCamera());
    const auto descriptions = on.camera.parameters();
    const auto format = std::ranges::find(descriptions, "imgdataformat", &ParameterDescription::name);
    QVERIFY(format != descriptions.end());
    QCOMPARE(format->choices.size(), std::size_t{8});
    for (int i = 0; i < 8; ++i)
        QCOMPARE(format->choices[static_cast<std::size_t>(i)].value, std::int64_t{i});
    QCOMPARE(format->choices[0].name, std::string("RAW 8"));
    QCOMPARE(format->choices[7].name, std::string("Transport data"));
}

void SimulatedParametersTest::patternIsKeptPerGenerator()
{
    CameraOnClock on(smallCamera());
    QVERIFY(on.camera.writeParameter("test_pattern", 2));
    QVERIFY(on.camera.writeParameter("test_pattern_generator_selector", 1));
    QCOMPARE(on.read("test_pattern"), std::int64_t{0});
    QVERIFY(on.camera.writeParameter("test_pattern", 11));
    QVERIFY(on.camera.writeParameter("test_pattern_generator_selector", 0));
    QCOMPARE(on.read("test_pattern"), std::int64_t{2});
    QVERIFY(on.camera.writeParameter("test_pattern_generator_selector", 1));
    QCOMPARE(on.read("test_pattern"), std::int64_t{11});
}

void SimulatedParametersTest::frameBufferUnit()
{
    CameraOnClock on(smallCamera());
    std::int64_t value = 77;
    QVERIFY(!on.camera.readParameter("dp_param_value", value));
    QVERIFY(!on.camera.writeParameter("dp_param_value", 9));
    QVERIFY(on.camera.writeParameter("dp_unit_selector", 1));
    QVERIFY(on.camera.writeParameter("dp_proc_selector", 5));
    QVERIFY(!on.camera.readParameter("dp_param_value", value));
    QCOMPARE(value, std::int64_t{77});
    QVERIFY(on.camera.writeParameter("dp_param_selector", 6));
    QCOMPARE(on.read("dp_param_value"), std::int64_t{10});
    QVERIFY(on.camera.writeParameter("dp_param_value", 9));
    QCOMPARE(on.read("dp_param_value"), std::int64_t{9});
    QVERIFY(!on.camera.writeParameter("dp_param_value", 8));
    QVERIFY(on.camera.writeParameter("dp_param_selector", 7));
    QCOMPARE(on.read("dp_param_value"), std::int64_t{100'000});
    QVERIFY(!on.camera.writeParameter("dp_param_value", 100'000));
    QVERIFY(on.camera.writeParameter("dp_param_selector", 6));
    QCOMPARE(on.read("dp_param_value"), std::int64_t{9});
}

void SimulatedParametersTest::frameBufferSizeNeeds64Bits()
{
    CameraSettings settings = smallCamera();
    settings.internalBufferBytes = 8'000'000'001;
    CameraOnClock on(settings);
    on.camera.writeParameter("dp_unit_selector", 1);
    on.camera.writeParameter("dp_proc_selector", 5);
    on.camera.writeParameter("dp_param_selector", 7);
    QCOMPARE(on.read("dp_param_value"), std::int64_t{8'000'000'001});
}

void SimulatedParametersTest::deviceRegisters()
{
    CameraOnClock on(smallCamera());
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("device_unit_register_value", value));
    QVERIFY(on.camera.writeParameter("device_unit_selector", 1));
    QVERIFY(on.camera.writeParameter("device_unit_register_selector", 55));
    QCOMPARE(on.read("device_unit_register_value"), std::int64_t{1});
    QVERIFY(on.camera.writeParameter("device_unit_register_value", 25000));
    QVERIFY(!on.camera.writeParameter("device_unit_register_value", 65536));
    QCOMPARE(on.read("device_unit_register_value"), std::int64_t{25000});
    QVERIFY(on.camera.writeParameter("device_unit_selector", 8));
    QVERIFY(!on.camera.readParameter("device_unit_register_value", value));
    QVERIFY(on.camera.writeParameter("device_unit_register_selector", 4096));
    QCOMPARE(on.read("device_unit_register_value"), std::int64_t{125});
    QVERIFY(!on.camera.writeParameter("device_unit_register_value", 125));
}

void SimulatedParametersTest::requiredSpeedIsRounded()
{
    CameraSettings settings = smallCamera();
    settings.requiredMBps = 360.5;
    CameraOnClock on(settings);
    on.camera.writeParameter("device_unit_selector", 8);
    on.camera.writeParameter("device_unit_register_selector", 4096);
    QCOMPARE(on.read("device_unit_register_value"), std::int64_t{361});
}

void SimulatedParametersTest::countersStartAtZero()
{
    CameraOnClock on(smallCamera());
    for (int selector = 0; selector < 6; ++selector)
        QCOMPARE(on.counter(static_cast<ZU_COUNTER_SELECTOR>(selector)), std::int64_t{0});
    QVERIFY(!on.camera.writeParameter("counter_value", 0));
}

void SimulatedParametersTest::descriptionsMatchTheBehaviour()
{
    CameraOnClock on(smallCamera());
    QSet<QString> names;
    for (const ParameterDescription &description : on.camera.parameters()) {
        QVERIFY(!description.group.empty());
        QVERIFY(!names.contains(QString::fromStdString(description.name)));
        names.insert(QString::fromStdString(description.name));
        std::int64_t value = 0;
        QVERIFY2(on.camera.readParameter(description.name, value), description.name.c_str());
        for (const ParameterChoice &choice : description.choices)
            QVERIFY(on.camera.isSettable(description.name, choice.value));
        if (description.choices.empty() && description.writable) {
            QVERIFY(on.camera.isSettable(description.name, description.minimum));
            QVERIFY(on.camera.isSettable(description.name, description.maximum));
            QVERIFY(!on.camera.isSettable(description.name, description.maximum + 1));
        }
    }
    QVERIFY(names.contains(QStringLiteral("imgdataformat")));
    QVERIFY(names.contains(QStringLiteral("width")));
    // The selectors point at nothing.
    QVERIFY(!names.contains(QStringLiteral("dp_param_value")));
}

void SimulatedParametersTest::closedCameraRefusesEverything()
{
    CameraOnClock on(smallCamera());
    QVERIFY(!on.camera.open());
    on.camera.close();
    std::int64_t value = 0;
    QVERIFY(!on.camera.readParameter("width", value));
    QVERIFY(!on.camera.readMaximum("width", value));
    QVERIFY(!on.camera.writeParameter("width", 10));
    QVERIFY(!on.camera.isSettable("width", 10));
    QVERIFY(!on.camera.startAcquisition());
    QVERIFY(!on.camera.stopAcquisition());
    QVERIFY(on.camera.parameters().empty());
    QVERIFY(on.camera.isConnected());
    QVERIFY(on.camera.open());
}

void SimulatedParametersTest::valuesSurviveClosing()
{
    CameraOnClock on(smallCamera());
    on.camera.writeParameter("width", 10);
    on.camera.close();
    on.camera.open();
    QCOMPARE(on.read("width"), std::int64_t{10});
}

QTEST_APPLESS_MAIN(SimulatedParametersTest)
#include "SimulatedParametersTest.moc"

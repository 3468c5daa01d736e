#include "tests/measurement/EngineFixture.h"

#include <QtTest>

namespace {

const char *const readFailure = "CxCameraLineData::readDefaultAvgTransportSpeed(): "
                                "Failed to read current device unit confiuration";
const char *const changeFailure = "CxCameraLineData::readDefaultAvgTransportSpeed(): "
                                  "Failed to change back current device unit configuration";

} // namespace

class TransportSpeedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callsAndResult_data();
    void callsAndResult();
    void speedsThatAreTaken_data();
    void speedsThatAreTaken();
    void selectionIsAsBefore();
};

void TransportSpeedTest::callsAndResult_data()
{
    QTest::addColumn<QList<int>>("failing"); // numbers among the calls made
    QTest::addColumn<QStringList>("calls");
    QTest::addColumn<unsigned int>("speed"); // 55 before
    QTest::addColumn<QStringList>("messages");

    const QString getUnit = QStringLiteral("get device_unit_selector");
    const QString getRegister = QStringLiteral("get device_unit_register_selector");
    const QString setUnit = QStringLiteral("set device_unit_selector ");
    const QString setRegister = QStringLiteral("set device_unit_register_selector ");
    const QString getValue = QStringLiteral("get device_unit_register_value");
    const QString no = QStringLiteral(" failed");
    const QStringList saved = {getUnit + QStringLiteral(" 2"), getRegister + QStringLiteral(" 77")};
    const QStringList speed = {setUnit + QStringLiteral("8"), setRegister + QStringLiteral("4096"),
                               getValue + QStringLiteral(" 380")};
    const auto back = [&](const char *unit, const char *reg) {
        return QStringList{setUnit + QLatin1String(unit), setRegister + QLatin1String(reg)};
    };
    const QStringList readMessage = {QLatin1String(readFailure)};
    const QStringList changeMessage = {QLatin1String(changeFailure)};

    QTest::newRow("everything works")
        << QList<int>{} << saved + speed + back("2", "77") << 380U << QStringList();
    QTest::newRow("unit unreadable") << QList<int>{1} << QStringList(getUnit + no) + speed + back("0", "0")
                                     << 380U << readMessage;
    QTest::newRow("register unreadable")
        << QList<int>{2} << QStringList({saved[0], getRegister + no}) + speed + back("2", "0") << 380U
        << readMessage;
    QTest::newRow("unit not selectable")
        << QList<int>{3} << saved + QStringList(speed[0] + no) + back("2", "77") << 55U << QStringList();
    QTest::newRow("register not selectable")
        << QList<int>{4} << saved + QStringList({speed[0], speed[1] + no}) + back("2", "77") << 55U
        << QStringList();
    QTest::newRow("speed unreadable")
        << QList<int>{5} << saved + QStringList({speed[0], speed[1], getValue + no}) + back("2", "77") << 55U
        << QStringList();
    QTest::newRow("unit does not go back")
        << QList<int>{6} << saved + speed + QStringList(setUnit + QStringLiteral("2 failed")) << 380U
        << changeMessage;
    QTest::newRow("register does not go back")
        << QList<int>{7}
        << saved + speed +
               QStringList({setUnit + QStringLiteral("2"), setRegister + QStringLiteral("77 failed")})
        << 380U << changeMessage;
    QTest::newRow("unreadable and speed unreadable")
        << QList<int>{1, 4} << QStringList({getUnit + no, speed[0], speed[1], getValue + no}) + back("0", "0")
        << 55U << readMessage;
    QTest::newRow("unreadable and not going back")
        << QList<int>{1, 5}
        << QStringList(getUnit + no) + speed + QStringList(setUnit + QStringLiteral("0 failed")) << 380U
        << readMessage + changeMessage;
    QTest::newRow("no device units at all")
        << QList<int>{1, 2, 3}
        << QStringList({getUnit + no, speed[0] + no, setUnit + QStringLiteral("0 failed")}) << 55U
        << readMessage + changeMessage;
}

void TransportSpeedTest::callsAndResult()
{
    QFETCH(QList<int>, failing);
    EngineFixture engine;
    engine.line->avgTransportSpeedMBps = 55;
    for (int nth : qAsConst(failing))
        engine.host.fail(scripted::Failure::step(nth));
    engine.line->readDefaultAvgTransportSpeed();
    QTEST(engine.calls(), "calls");
    QTEST(engine.line->avgTransportSpeedMBps, "speed");
    QTEST(engine.log.messages(), "messages");
}

void TransportSpeedTest::speedsThatAreTaken_data()
{
    QTest::addColumn<int>("cameraSpeed");
    QTest::addColumn<unsigned int>("speed"); // 55 before
    QTest::newRow("one") << 1 << 1U;
    QTest::newRow("largest") << 0x7fffffff << 0x7fffffffU;
    QTest::newRow("zero") << 0 << 55U;
    QTest::newRow("minus one") << -1 << 55U;
    QTest::newRow("very negative") << -0x7fffffff - 1 << 55U;
}

void TransportSpeedTest::speedsThatAreTaken()
{
    QFETCH(int, cameraSpeed);
    EngineFixture engine;
    engine.line->avgTransportSpeedMBps = 55;
    engine.host.setValue(engine.camera, "device_unit_register_value[8,4096]", cameraSpeed);
    engine.line->readDefaultAvgTransportSpeed();
    QTEST(engine.line->avgTransportSpeedMBps, "speed");
    QVERIFY(engine.log.entries().isEmpty());
}

void TransportSpeedTest::selectionIsAsBefore()
{
    EngineFixture engine;
    engine.line->readDefaultAvgTransportSpeed();
    QCOMPARE(engine.host.value(engine.camera, "device_unit_selector"), 2LL);
    QCOMPARE(engine.host.value(engine.camera, "device_unit_register_selector"), 77LL);
}

QTEST_APPLESS_MAIN(TransportSpeedTest)
#include "TransportSpeedTest.moc"

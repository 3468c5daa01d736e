// Acquisition mode on cameras that lose frames in every way there is: what the
// engine stores against what happened in the simulation.

#include "host/core/simulation/Scenario.h"
#include "tests/integration/SimulatedRig.h"

#include <QtTest>

#include <algorithm>

Q_DECLARE_METATYPE(host::LedgerEntryKind)
Q_DECLARE_METATYPE(MeasureMode)

class CounterTruthTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countersMatchTheLedger_data();
    void countersMatchTheLedger();
    void cameraIsAsBefore_data();
    void cameraIsAsBefore();
};

namespace {

/// What a counter showed at a time, from the simulation's own record.
qint64 counterAt(const host::Ledger &ledger, host::LedgerEntryKind kind, host::Ticks tick)
{
    return std::count_if(
        ledger.entries().begin(), ledger.entries().end(),
        [=](const host::LedgerEntry &entry) { return entry.kind == kind && entry.tick <= tick; });
}

host::CameraSettings firstCamera(const QString &scenarioName)
{
    const host::ScenarioResult found = host::builtinScenario(scenarioName.toStdString());
    if (!found.scenario)
        qFatal("%s", found.error.c_str());
    return found.scenario->cameras.front();
}

/// Every parameter that a user sees or that sits behind a selector of the engine.
QStringList snapshot(void *camera, const host::SimulatedCamera &device)
{
    QStringList values;
    const auto add = [&values](const QString &name, int value) {
        values.append(QStringLiteral("%1 = %2").arg(name).arg(value));
    };
    QStringList names;
    for (const host::ParameterDescription &description : device.parameters())
        names.append(QString::fromStdString(description.name));
    for (const char *name :
         {ZU_PRM_BUFFER_POLICY, ZU_PRM_IMAGE_DATA_FORMAT, ZU_PRM_OUTPUT_DATA_BIT_DEPTH,
          ZU_PRM_OUTPUT_DATA_PACKING, ZU_PRM_COLUMN_FPN_CORRECTION, ZU_PRM_ROW_FPN_CORRECTION,
          ZU_PRM_LUT_ENABLE, ZU_PRM_TEST_PATTERN_GENERATOR_SELECTOR, ZU_PRM_TEST_PATTERN, ZU_PRM_RECENT_FRAME,
          ZU_PRM_BUFFERS_QUEUE_SIZE})
        names.append(QString::fromLatin1(name));
    for (const QString &name : names) {
        // The time stamp's reset stays as the last start set it.
        if (name.startsWith(QLatin1String("ts_rst_")))
            continue;
        // Selectors and what they happen to show are not state; see below.
        const bool shown =
            name.endsWith(QLatin1String("_value")) || name.endsWith(QLatin1String("_selector"));
        int value = 0;
        if ((!shown || name.startsWith(QLatin1String("test_pattern"))) &&
            zuApi_GetParamInt(camera, qPrintable(name), value, nullptr))
            add(name, value);
    }
    // Values behind the data-processing and register selectors.
    int value = 0;
    zuApi_SetParamInt(camera, ZU_PRM_DEVICE_UNIT_SELECTOR, ZU_DEVICE_UNIT_TRANSPORT, nullptr);
    zuApi_SetParamInt(camera, ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR, ZU_DEVICE_REG_TRANSPORT, nullptr);
    if (zuApi_GetParamInt(camera, ZU_PRM_DEVICE_UNIT_REGISTER_VALUE, value, nullptr))
        add(QStringLiteral("transport register"), value);
    zuApi_SetParamInt(camera, ZU_PRM_DP_UNIT_SELECTOR, ZU_DP_UNIT_FRAMEBUF, nullptr);
    zuApi_SetParamInt(camera, ZU_PRM_DP_PROC_SELECTOR, ZU_DP_PROC_FRAMEBUF, nullptr);
    zuApi_SetParamInt(camera, ZU_PRM_DP_PARAM_SELECTOR, ZU_DP_PARAM_FRAMEBUF_MODE, nullptr);
    if (zuApi_GetParamInt(camera, ZU_PRM_DP_PARAM_VALUE, value, nullptr))
        add(QStringLiteral("frame-buffer mode"), value);
    return values;
}

} // namespace

void CounterTruthTest::countersMatchTheLedger_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<host::LedgerEntryKind>("moving");
    QTest::newRow("transport") << "lossy-transport" << host::LedgerEntryKind::TransportSkip;
    QTest::newRow("overlap") << "missed-triggers" << host::LedgerEntryKind::MissedOverlap;
    QTest::newRow("overflow") << "full-buffer" << host::LedgerEntryKind::MissedOverflow;
    QTest::newRow("buffer") << "full-buffer" << host::LedgerEntryKind::BufferOverflow;
}

void CounterTruthTest::countersMatchTheLedger()
{
    QFETCH(QString, scenario);
    QFETCH(host::LedgerEntryKind, moving);

    SimulatedRig rig(firstCamera(scenario));
    QVERIFY(rig.handle());
    rig.line().measureMode = MeasureModeAcquisition;
    QVERIFY(rig.measure(3.0));
    QVERIFY(!rig.line().counterData.isEmpty());
    const CxCameraLineData::CxCounterData &last = *rig.line().counterData.last();

    const host::Ledger ledger = rig.camera().ledger();
    const auto &entries = ledger.entries();
    const auto fetched = std::find_if(entries.rbegin(), entries.rend(), [](const host::LedgerEntry &entry) {
        return entry.kind == host::LedgerEntryKind::Fetched;
    });
    QVERIFY(fetched != entries.rend());
    const auto truth = [&](host::LedgerEntryKind kind) { return counterAt(ledger, kind, fetched->tick); };
    using Kind = host::LedgerEntryKind;

    QVERIFY2(truth(moving) > 0, "the scenario does not show what it is for");
    QCOMPARE(qint64(last.transportSkip), truth(Kind::TransportSkip));
    QCOMPARE(qint64(last.apiSkip), truth(Kind::ApiSkip));
    QCOMPARE(qint64(last.missedTrgOverlap), truth(Kind::MissedOverlap));
    QCOMPARE(qint64(last.missedTrgOverflow), truth(Kind::MissedOverflow));
    QCOMPARE(qint64(last.bufferOverflow), truth(Kind::BufferOverflow));
    QCOMPARE(qint64(rig.line().counterData.size()), truth(Kind::Fetched));
}

void CounterTruthTest::cameraIsAsBefore_data()
{
    QTest::addColumn<QString>("scenario");
    QTest::addColumn<MeasureMode>("mode");
    QTest::newRow("full camera, throughput") << "steady-fast" << MeasureModeThroughput;
    QTest::newRow("full camera, acquisition") << "steady-fast" << MeasureModeAcquisition;
    QTest::newRow("limited camera, throughput") << "limited-camera" << MeasureModeThroughput;
    QTest::newRow("limited camera, acquisition") << "limited-camera" << MeasureModeAcquisition;
}

void CounterTruthTest::cameraIsAsBefore()
{
    QFETCH(QString, scenario);
    QFETCH(MeasureMode, mode);

    host::CameraSettings settings = firstCamera(scenario);
    settings.faults.failingParameters.clear(); // what refuses to be written cannot be put back
    SimulatedRig rig(settings);
    QVERIFY(rig.handle());
    // Values that differ from what a measurement writes.
    for (const char *name : {ZU_PRM_BUFFER_POLICY, ZU_PRM_COLUMN_FPN_CORRECTION, ZU_PRM_ROW_FPN_CORRECTION,
                             ZU_PRM_LUT_ENABLE, ZU_PRM_RECENT_FRAME})
        zuApi_SetParamInt(rig.handle(), name, 1, nullptr);
    zuApi_SetParamInt(rig.handle(), ZU_PRM_BUFFERS_QUEUE_SIZE, 3, nullptr);
    zuApi_SetParamInt(rig.handle(), ZU_PRM_OUTPUT_DATA_BIT_DEPTH, 12, nullptr);

    const QStringList before = snapshot(rig.handle(), rig.camera());
    QVERIFY(before.size() > 8);
    rig.line().measureMode = mode;
    QVERIFY(rig.measure(0.5));
    QCOMPARE(snapshot(rig.handle(), rig.camera()), before);
}

QTEST_GUILESS_MAIN(CounterTruthTest)
#include "CounterTruthTest.moc"

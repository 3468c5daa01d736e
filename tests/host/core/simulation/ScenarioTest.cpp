#include "host/core/simulation/Scenario.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/JsonPositions.h"
#include "host/core/simulation/SimulationBackend.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace host;

namespace {

QByteArray cameraWith(const char *more)
{
    return QByteArray("{\n"
                      "  \"cameras\": [\n"
                      "    { \"serial\": \"A\", \"width\": 64, \"height\": 32, \"frame_rate\": 10,\n"
                      "      \"required_MBps\": 100, \"internal_buffer_bytes\": 1000, \"link_MBps\": 100") +
           more + " }\n  ]\n}\n";
}

/// A text, how the error begins and what else it says.
void addText(const char *name, const QByteArray &content, const char *begin, const char *contained)
{
    QTest::newRow(name) << content << QByteArray(begin) << QByteArray(contained);
}

void addCamera(const char *name, const char *more, const char *begin, const char *contained)
{
    addText(name, cameraWith(more), begin, contained);
}

void addTextColumns()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("begin");
    QTest::addColumn<QByteArray>("contained");
}

} // namespace

class ScenarioTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void allKeysAreRead();
    void defaultsOfOptionalKeys();
    void badTexts_data();
    void badTexts();
    void badCameras_data();
    void badCameras();
    void badFaults_data();
    void badFaults();
    void hugeTextIsRefused();
    void deepTextIsRefused();
    void unreadableFile_data();
    void unreadableFile();
    void fileOfTheTree();
    void positions();
    void builtinScenarios_data();
    void builtinScenarios();
    void unknownBuiltin();
    void defaultScenarios();
    void backendListsConnectedCameras();
    void eachCameraOnItsOwnClock();
};

void ScenarioTest::allKeysAreRead()
{
    const auto result = parseScenario(R"({
      "seed": 42,
      "cameras": [{
        "name": "N", "model": "M", "serial": "S", "width": 640, "height": 480, "frame_rate": 59.94,
        "required_MBps": 12.5, "internal_buffer_bytes": 5000000000, "link_MBps": 15.25,
        "jitter": { "fraction": 0.125, "slot_ms": 0.5 },
        "stalls": [{ "start_ms": 1, "length_ms": 2 },
                   { "start_ms": 0.000004, "period_ms": 10, "length_ms": 3, "depth": 0.5 }],
        "buffers_queue_max": 7,
        "faults": {
          "failing_parameters": [{ "name": "LUTEnable" }, { "name": "test_pattern", "access": "write", "value": 11 }],
          "missing_parameters": ["recent_frame"],
          "missing_units": ["frame_buffer", "transport", "speed"],
          "missing_registers": [{ "unit": 8, "register": 4096 }],
          "unsupported_counters": [0, 5],
          "transport_loss": 0.01, "capture_failure_every": 9,
          "host_pauses": [{ "start_ms": 2, "period_ms": 4, "length_ms": 3 }],
          "unplug": { "after_ms": 5, "back_after_ms": 6 }
        }
      }]
    })",
                                      "f.json");
    QVERIFY2(result.scenario.has_value(), result.error.c_str());
    QCOMPARE(result.scenario->seed, std::uint64_t{42});
    const CameraSettings &camera = result.scenario->cameras.at(0);
    QCOMPARE(camera.name, std::string("N"));
    QCOMPARE(camera.model, std::string("M"));
    QCOMPARE(camera.serial, std::string("S"));
    QCOMPARE(camera.width, 640);
    QCOMPARE(camera.height, 480);
    QCOMPARE(camera.frameRate, 59.94);
    QCOMPARE(camera.requiredMBps, 12.5);
    QCOMPARE(camera.internalBufferBytes, std::int64_t{5'000'000'000});
    QCOMPARE(camera.linkMBps, 15.25);
    QCOMPARE(camera.jitter.fraction, 0.125);
    QCOMPARE(camera.jitter.slot, Ticks{125'000});
    QCOMPARE(camera.stalls.size(), std::size_t{2});
    QCOMPARE(camera.stalls[0].start, Ticks{250'000});
    QCOMPARE(camera.stalls[0].period, Ticks{0});
    QCOMPARE(camera.stalls[0].depth, 1.0);
    QCOMPARE(camera.stalls[1].start, Ticks{1});
    QCOMPARE(camera.stalls[1].period, Ticks{2'500'000});
    QCOMPARE(camera.stalls[1].length, Ticks{750'000});
    QCOMPARE(camera.stalls[1].depth, 0.5);
    QCOMPARE(camera.buffersQueueMax, 7);
    const FaultSettings &faults = camera.faults;
    QCOMPARE(faults.failingParameters.size(), std::size_t{2});
    QVERIFY(faults.failingParameters[0].access == FailingParameter::Access::Both);
    QVERIFY(!faults.failingParameters[0].value.has_value());
    QVERIFY(faults.failingParameters[1].access == FailingParameter::Access::Write);
    QCOMPARE(faults.failingParameters[1].value.value_or(0), std::int64_t{11});
    QCOMPARE(faults.missingParameters, std::vector<std::string>{"recent_frame"});
    using Unit = FaultSettings::Unit;
    QVERIFY(faults.missingUnits == (std::vector<Unit>{Unit::FrameBuffer, Unit::Transport, Unit::Speed}));
    QVERIFY(faults.missingRegisters == (std::vector<RegisterAddress>{{8, 4096}}));
    QCOMPARE(faults.unsupportedCounters, (std::vector<int>{0, 5}));
    QCOMPARE(faults.transportLoss, 0.01);
    QCOMPARE(faults.captureFailureEvery, 9);
    QCOMPARE(faults.hostPauses.size(), std::size_t{1});
    QCOMPARE(faults.hostPauses[0].start, Ticks{500'000});
    QCOMPARE(faults.hostPauses[0].period, Ticks{1'000'000});
    QCOMPARE(faults.hostPauses[0].length, Ticks{750'000});
    QCOMPARE(faults.unplug->after, Ticks{1'250'000});
    QCOMPARE(faults.unplug->backAfter.value_or(0), Ticks{1'500'000});
}

void ScenarioTest::defaultsOfOptionalKeys()
{
    const auto result = parseScenario(cameraWith("").toStdString(), "f.json");
    QVERIFY2(result.scenario.has_value(), result.error.c_str());
    QCOMPARE(result.scenario->seed, std::uint64_t{1});
    const CameraSettings &camera = result.scenario->cameras.at(0);
    QCOMPARE(camera.jitter.fraction, 0.0);
    QVERIFY(camera.stalls.empty());
    QCOMPARE(camera.buffersQueueMax, 64);
    QVERIFY(!camera.faults.unplug.has_value());
    QCOMPARE(camera.faults.captureFailureEvery, 0);
}

void ScenarioTest::badTexts_data()
{
    addTextColumns();
    addText("empty", "", "f.json:1:1: ", "unexpected end of input");
    addText("no JSON", "cameras", "f.json:1:1: ", "invalid literal");
    addText("missing comma", "{\n  \"seed\": 1\n  \"cameras\": []\n}", "f.json:3:11: ", "expected '}'");
    addText("unfinished text", "{ \"seed", "f.json:1:8: ", "missing closing quote");
    addText("comment", "{\n  // why\n}", "f.json:2:3: ", "");
    addText("trailing text", "{ \"cameras\": [] } x", "f.json:1:19: ", "expected end of input");
    addText("number too big", "{ \"seed\": 1e999 }", "f.json:1:", "number overflow");
    addText("bad UTF-8", "{ \"seed\": \"\xff\" }", "f.json:1:12: ", "UTF-8");
    addText("repeated key", "{ \"seed\": 1,\n  \"seed\": 2 }", "f.json:2:3: ", "duplicate key \"seed\"");
    addText("no object", "[1]", "f.json:1:1: the document: ", "an object with \"cameras\"");
    addText("no cameras", "{ \"seed\": 1 }", "f.json:1:1: the document: ", "cameras");
    addText("empty list", "{\n \"cameras\": [] }", "f.json:2:13: /cameras: ", "no fewer than 1");
    addText("camera no object", "{\n \"cameras\": [ {\n}, 3 ] }", "f.json:2:15: /cameras/0: ", "serial");
    addText("negative seed", cameraWith("").replace("{\n  \"cam", "{ \"seed\": -1,\n  \"cam"),
            "f.json:1:11: /seed: ", "0 to 9007199254740991");
}

void ScenarioTest::badTexts()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, begin);
    QFETCH(QByteArray, contained);
    const auto result = parseScenario(text.toStdString(), "f.json");
    QVERIFY(!result.scenario.has_value());
    const QByteArray error = QByteArray::fromStdString(result.error);
    QVERIFY2(error.startsWith(begin), error.constData());
    QVERIFY2(error.contains(contained), error.constData());
    QVERIFY2(!error.contains("exception"), error.constData());
    QVERIFY2(!error.contains('\n'), error.constData());
}

void ScenarioTest::badCameras_data()
{
    addTextColumns();
    addCamera("unknown key", ",\n \"colour\": 1",
              "f.json:5:2: /cameras/0/colour: ", "unknown key \"colour\"");
    addCamera("wrong type", ",\n \"model\": 5", "f.json:5:11: /cameras/0/model: ", "a text");
    addCamera("fraction for integer", ",\n \"buffers_queue_max\": 1.5",
              "f.json:5:23: /cameras/0/buffers_queue_max: ", "frames");
    addCamera("queue 0", ",\n \"buffers_queue_max\": 0",
              "f.json:5:23: /cameras/0/buffers_queue_max: ", "1 to 65536");
    addCamera("queue huge", ",\n \"buffers_queue_max\": 99999999999999999999", "f.json:5:23: ", "1 to 65536");
    addCamera("slot 0", ",\n \"jitter\": { \"fraction\": 0.1, \"slot_ms\": 0 }",
              "f.json:5:42: /cameras/0/jitter/slot_ms: ", "at least 0.01 ms");
    addCamera("jitter above 1", ",\n \"jitter\": { \"fraction\": 1.5, \"slot_ms\": 1 }",
              "f.json:5:26: /cameras/0/jitter/fraction: ", "0 to 1");
    addCamera("jitter incomplete", ",\n \"jitter\": { \"fraction\": 0.5 }",
              "f.json:5:12: /cameras/0/jitter: ", "slot_ms");
    addCamera("stall depth", ",\n \"stalls\": [\n  { \"start_ms\": 1, \"length_ms\": 1, \"depth\": -0.1 } ]",
              "f.json:6:45: /cameras/0/stalls/0/depth: ", "0 to 1");
    addCamera("stall longer than period",
              ",\n \"stalls\": [ { \"start_ms\": 1, \"period_ms\": 1, \"length_ms\": 2 } ]",
              "f.json:5:60: /cameras/0/stalls/0/length_ms: ", "longer than its period");
    addCamera("stall period tiny",
              ",\n \"stalls\": [ { \"start_ms\": 1, \"period_ms\": 0.099, \"length_ms\": 0 } ]",
              "f.json:5:44: /cameras/0/stalls/0/period_ms: ", "at least 0.1 ms");
    const QByteArray one = cameraWith("");
    const QByteArray twice = one.left(one.lastIndexOf("\n  ]")) + ",\n" + one.mid(one.indexOf("    { "));
    addText("same serial", twice, "f.json:5:17: /cameras/1/serial: ", "\"A\"");
    addText("width 0", QByteArray(cameraWith("")).replace("64", "0"),
            "f.json:3:31: /cameras/0/width: ", "1 to 65536");
    addText("rate 0", QByteArray(cameraWith("")).replace(": 10,", ": 0,"),
            "f.json:3:63: /cameras/0/frame_rate: ", "0.001 to 100000");
    addText("frame too big", QByteArray(cameraWith("")).replace("64", "65536").replace("32", "65536"),
            "f.json:3:31: /cameras/0/width: ", "would not fit");
}

void ScenarioTest::badCameras()
{
    badTexts();
}

void ScenarioTest::badFaults_data()
{
    addTextColumns();
    addCamera("unknown parameter", ",\n \"faults\": { \"missing_parameters\": [ \"width\", \"gain\" ] }",
              "f.json:5:47: /cameras/0/faults/missing_parameters/1: ", "no parameter \"gain\"");
    addCamera("unknown failing", ",\n \"faults\": { \"failing_parameters\": [ { \"name\": \"gain\" } ] }",
              "f.json:5:48: /cameras/0/faults/failing_parameters/0/name: ", "no parameter \"gain\"");
    addCamera("unknown unit", ",\n \"faults\": { \"missing_units\": [ \"lens\" ] }",
              "f.json:5:33: /cameras/0/faults/missing_units/0: ", "\"frame_buffer\"");
    addCamera("unknown access",
              ",\n \"faults\": { \"failing_parameters\": [ { \"name\": \"width\", \"access\": \"x\" } ] }",
              "f.json:5:67: ", "\"maximum\"");
    addCamera("counter 6", ",\n \"faults\": { \"unsupported_counters\": [ 6 ] }", "f.json:5:40: ", "0 to 5");
    addCamera("back too early", ",\n \"faults\": { \"unplug\": { \"after_ms\": 5, \"back_after_ms\": 5 } }",
              "f.json:5:58: /cameras/0/faults/unplug/back_after_ms: ", "before it went");
}

void ScenarioTest::badFaults()
{
    badTexts();
}

void ScenarioTest::hugeTextIsRefused()
{
    const auto result = parseScenario(std::string(1024 * 1024 + 1, ' '), "f.json");
    QCOMPARE(result.error, std::string("f.json:1:1: larger than 1048576 bytes"));
}

void ScenarioTest::deepTextIsRefused()
{
    const auto result = parseScenario(std::string(100'000, '['), "f.json");
    QCOMPARE(result.error, std::string("f.json:1:33: nested too deeply"));
}

void ScenarioTest::unreadableFile_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing") << QStringLiteral("/nonexistent/scenario.json");
    QTest::newRow("folder") << QStringLiteral("/");
}

void ScenarioTest::unreadableFile()
{
    QFETCH(QString, path);
    const auto result = loadScenario(path.toStdString());
    QVERIFY(!result.scenario.has_value());
    const QString expected = path + QStringLiteral(":1:1: cannot be read: ");
    QVERIFY2(QString::fromStdString(result.error).startsWith(expected), result.error.c_str());
}

void ScenarioTest::fileOfTheTree()
{
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("scenario.json"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(cameraWith(", \"name\": \"\xc3\xa4\""));
    file.close();
    const auto result = findScenario(path.toStdString());
    QVERIFY2(result.scenario.has_value(), result.error.c_str());
    QCOMPARE(result.scenario->cameras[0].name, std::string("\xc3\xa4"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{");
    file.close();
    QVERIFY(loadScenario(path.toStdString()).error.starts_with(path.toStdString() + ":1:"));
}

void ScenarioTest::positions()
{
    const std::string text =
        "{ \"a\" : [1,22 , {\"b/c\":true}],\n \"d\":{ }, \"e\":[], \"f\": \"x\" , \"g\":-1.5e3}";
    const JsonPositions positions = locateJson(text);
    QVERIFY(!positions.problem.has_value());
    const auto at = [&](const char *pointer) { return text.substr(positions.values.at(pointer)); };
    QCOMPARE(positions.values.at(""), std::size_t{0});
    QVERIFY(at("/a").starts_with("[1,"));
    QVERIFY(at("/a/0").starts_with("1,"));
    QVERIFY(at("/a/1").starts_with("22 "));
    QVERIFY(at("/a/2").starts_with("{\"b"));
    QVERIFY(at("/a/2/b~1c").starts_with("true"));
    QVERIFY(at("/d").starts_with("{ }"));
    QVERIFY(at("/e").starts_with("[]"));
    QVERIFY(at("/f").starts_with("\"x\""));
    QVERIFY(at("/g").starts_with("-1.5e3"));
    QVERIFY(text.substr(positions.keys.at("/g")).starts_with("\"g\""));
    QCOMPARE(textPosition(text, positions.values.at("/d")).line, 2);
    QCOMPARE(textPosition(text, positions.values.at("/d")).column, 6);
    QCOMPARE(positions.find("/a/2/missing"), positions.values.at("/a/2"));
}

void ScenarioTest::builtinScenarios_data()
{
    QTest::addColumn<int>("cameras");
    for (const char *name :
         {"steady-fast", "steady-slow", "short-stalls", "long-stall-overflow", "jitter", "back-to-back",
          "lossy-transport", "missed-triggers", "full-buffer", "every-loss", "limited-camera", "unplug"})
        QTest::newRow(name) << 1;
    QTest::newRow("two-400MBps") << 2;
}

void ScenarioTest::builtinScenarios()
{
    QFETCH(int, cameras);
    const std::string name = QTest::currentDataTag();
    const auto names = builtinScenarioNames();
    QCOMPARE(names.size(), std::size_t{13});
    QVERIFY(std::ranges::find(names, name) != names.end());
    const auto result = findScenario(name);
    QVERIFY2(result.scenario.has_value(), result.error.c_str());
    QCOMPARE(static_cast<int>(result.scenario->cameras.size()), cameras);

    // One second of each.
    SimulationBackend backend(*result.scenario,
                              [](std::size_t) { return std::make_shared<FreeRunningClock>(TicksPerSecond); });
    const auto camera = backend.cameras()[0];
    const auto opening = camera->open();
    QVERIFY(opening);
    QVERIFY(camera->startAcquisition());
    ZU_IMG image{};
    QVERIFY(camera->captureImage(opening, std::chrono::seconds(1), image));
    const auto ledger = [&] {
        for (int i = 0; i < 20; ++i)
            camera->captureImage(opening, std::chrono::milliseconds(45), image);
        return camera->ledger();
    }();
    // What the name promises happens within that second.
    QCOMPARE(ledger.count(LedgerEntryKind::MissedOverlap) > 0,
             name == "missed-triggers" || name == "every-loss");
    const bool overflows = name == "full-buffer" || name == "long-stall-overflow" || name == "every-loss";
    QCOMPARE(ledger.count(LedgerEntryKind::BufferOverflow) > 0, overflows);
    QCOMPARE(ledger.count(LedgerEntryKind::MissedOverflow) > 0, overflows);
}

void ScenarioTest::unknownBuiltin()
{
    QVERIFY(!builtinScenario("no-such").scenario.has_value());
    QVERIFY(QString::fromStdString(builtinScenario("no-such").error).contains(QStringLiteral("no-such")));
    QVERIFY(!builtinScenario("../scenario.schema").scenario.has_value());
}

void ScenarioTest::defaultScenarios()
{
    QVERIFY(defaultScenario(0).cameras.empty());
    QVERIFY(defaultScenario(-1).cameras.empty());
    const Scenario scenario = defaultScenario(14);
    QCOMPARE(scenario.cameras.size(), std::size_t{14});
    QVERIFY(scenario.cameras[0].linkMBps > scenario.cameras[0].requiredMBps);
    QVERIFY(scenario.cameras[0].stalls.empty());
    QVERIFY(!scenario.cameras[1].stalls.empty());
    QCOMPARE(scenario.cameras[1].linkMBps, scenario.cameras[0].linkMBps);
    std::vector<std::string> serials;
    for (const CameraSettings &camera : scenario.cameras)
        serials.push_back(camera.serial);
    std::ranges::sort(serials);
    QVERIFY(std::ranges::adjacent_find(serials) == serials.end());
    QCOMPARE(defaultScenario(1'000'000).cameras.size(), std::size_t{64});
}

void ScenarioTest::backendListsConnectedCameras()
{
    Scenario scenario = defaultScenario(3);
    scenario.cameras[1].faults.unplug = UnplugSettings{1000, 2000};
    const auto clock = std::make_shared<FreeRunningClock>();
    SimulationBackend backend(scenario, clock);
    const auto all = backend.devices();
    QCOMPARE(all.size(), std::size_t{3});
    QCOMPARE(all[0]->info().serialNumber, scenario.cameras[0].serial);
    QCOMPARE(all[0]->info().userId, scenario.cameras[0].name);
    QCOMPARE(all[0]->info().modelName, scenario.cameras[0].model);
    QVERIFY(all[0]->info().id != all[1]->info().id);
    QVERIFY(all[1]->open());
    clock->advance(1000);
    QCOMPARE(backend.devices(), (std::vector{all[0], all[2]}));
    clock->advance(1000);
    QCOMPARE(backend.devices(), all);
}

void ScenarioTest::eachCameraOnItsOwnClock()
{
    std::vector<std::shared_ptr<FreeRunningClock>> clocks;
    SimulationBackend backend(defaultScenario(2), [&clocks](std::size_t camera) {
        clocks.resize(std::max(clocks.size(), camera + 1));
        return clocks[camera] = std::make_shared<FreeRunningClock>();
    });
    QCOMPARE(clocks.size(), std::size_t{2});
    ZU_IMG image{};
    QVERIFY(!backend.cameras()[1]->captureImage(0, std::chrono::seconds(1), image));
    QCOMPARE(clocks[0]->now(), Ticks{0});
    QCOMPARE(clocks[1]->now(), TicksPerSecond);
}

QTEST_APPLESS_MAIN(ScenarioTest)
#include "ScenarioTest.moc"

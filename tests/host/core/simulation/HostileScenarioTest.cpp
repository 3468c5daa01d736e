#include "host/core/simulation/JsonPositions.h"
#include "host/core/simulation/Scenario.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace host;

namespace {

std::string repeated(const std::string &text, int count, const std::string &separator = {})
{
    std::string result;
    for (int i = 0; i < count; ++i)
        result += (i > 0 ? separator : std::string()) + text;
    return result;
}

std::string cameraWith(const std::string &more, const std::string &serial = "A")
{
    return R"({ "serial": ")" + serial +
           R"(", "width": 64, "height": 32, "frame_rate": 10, "required_MBps": 100,)"
           R"( "internal_buffer_bytes": 1000, "link_MBps": 100)" +
           more + " }";
}

std::string scenarioWith(const std::string &more)
{
    return "{ \"cameras\": [\n" + cameraWith(",\n" + more) + " ] }";
}

std::string faultsWith(const std::string &more)
{
    return scenarioWith("\"faults\": { " + more + " }");
}

QString errorOf(const std::string &text)
{
    const auto result = parseScenario(text, "f.json");
    return result.scenario ? QString() : QString::fromStdString(result.error);
}

void addError(const char *name, const std::string &text, const char *begin, const char *contained)
{
    QTest::newRow(name) << QByteArray::fromStdString(text) << QString::fromUtf8(begin)
                        << QString::fromUtf8(contained);
}

} // namespace

/// Files that are made to do harm, and what their errors show of them.
class HostileScenarioTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void refused_data();
    void refused();
    void limitsThemselvesAreAllowed();
    void messagesArePrintable_data();
    void messagesArePrintable();
    void printableText_data();
    void printableText();
    void onlyRegularFilesAreRead();
};

void HostileScenarioTest::refused_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("begin");
    QTest::addColumn<QString>("contained");

    // What is stored of these would be their product.
    addError("long key, many values",
             "{\n \"" + std::string(100'000, 'k') + "\": [" + repeated("1", 100'000, ",") + "] }",
             "f.json:2:2: the key \"kkk", "is longer than 64 characters");
    addError("key of 65", "{ \"" + std::string(65, 'k') + "\": 1 }", "f.json:1:3: the key \"kkk",
             "is longer than 64 characters");
    addError("many values", "{ \"a\":\n[" + repeated("1", 20'000, ",") + "] }",
             "f.json:2:39998: too many values", "at most 20000");
    addError("very many cameras", "{ \"cameras\": [" + repeated("{}", 340'000, ",") + "] }",
             "f.json:1:", "too many values");

    addError("65 cameras", "{ \"cameras\":\n [" + repeated("{}", 65, ",") + "] }",
             "f.json:2:2: /cameras: ", "at most 64");
    addError("many cameras", "{ \"cameras\": [" + repeated("{}", 19'000, ",") + "] }",
             "f.json:1:14: /cameras: ", "at most 64");
    addError("65 stalls", scenarioWith("\"stalls\": [" + repeated("{}", 65, ",") + "]"),
             "f.json:3:11: /cameras/0/stalls: ", "at most 64");
    addError("65 failing", faultsWith("\"failing_parameters\": [" + repeated("{}", 65, ",") + "]"),
             "f.json:3:35: /cameras/0/faults/failing_parameters: ", "at most 64");
    addError("65 missing", faultsWith("\"missing_parameters\": [" + repeated("\"width\"", 65, ",") + "]"),
             "f.json:3:35: /cameras/0/faults/missing_parameters: ", "at most 64");
    addError("9 units", faultsWith("\"missing_units\": [" + repeated("\"speed\"", 9, ",") + "]"),
             "f.json:3:30: /cameras/0/faults/missing_units: ", "at most 8");
    addError("65 registers", faultsWith("\"missing_registers\": [" + repeated("{}", 65, ",") + "]"),
             "f.json:3:34: /cameras/0/faults/missing_registers: ", "at most 64");
    addError("7 counters", faultsWith("\"unsupported_counters\": [" + repeated("0", 7, ",") + "]"),
             "f.json:3:37: /cameras/0/faults/unsupported_counters: ", "at most 6");

    const std::string longText = '"' + std::string(65, 'n') + '"';
    addError("name of 65", scenarioWith("\"name\": " + longText),
             "f.json:3:9: /cameras/0/name: ", "at most 64 characters");
    addError("model of 65", scenarioWith("\"model\": " + longText),
             "f.json:3:10: /cameras/0/model: ", "at most 64 characters");
    addError("serial of 65", "{ \"cameras\": [ " + cameraWith("", std::string(65, 's')) + " ] }",
             "f.json:1:28: /cameras/0/serial: ", "1 to 64 characters");
    addError("parameter of 65", faultsWith("\"missing_parameters\": [" + longText + "]"),
             "f.json:3:36: /cameras/0/faults/missing_parameters/0: ", "a parameter's name");

    const auto failingFor = [](const char *value) {
        return faultsWith(std::string(R"("failing_parameters": [ { "name": "width", "value": )") + value +
                          " } ]");
    };
    const char *place = "f.json:3:65: /cameras/0/faults/failing_parameters/0/value: ";
    addError("2^64 - 1", failingFor("18446744073709551615"), place, "9007199254740991");
    addError("2^63", failingFor("9223372036854775808"), place, "9007199254740991");
    addError("2^53", failingFor("9007199254740992"), place, "9007199254740991");
    addError("-2^53", failingFor("-9007199254740992"), place, "-9007199254740991");
    addError("2^64", failingFor("18446744073709551616"), place, "9007199254740991");
    addError("seed 2^64 - 1", "{ \"seed\": 18446744073709551615, \"cameras\": [ " + cameraWith("") + " ] }",
             "f.json:1:11: /seed: ", "0 to 9007199254740991");
}

void HostileScenarioTest::refused()
{
    QFETCH(QByteArray, text);
    QFETCH(QString, begin);
    QFETCH(QString, contained);
    const QString error = errorOf(text.toStdString());
    QVERIFY2(error.startsWith(begin), qPrintable(error));
    QVERIFY2(error.contains(contained), qPrintable(error));
    QVERIFY2(error.size() < 700, qPrintable(error));
}

void HostileScenarioTest::limitsThemselvesAreAllowed()
{
    std::string cameras;
    for (int i = 0; i < 64; ++i) {
        cameras += i > 0 ? "," : "";
        cameras += cameraWith(", \"name\": \"" + repeated("\xc3\xa4", 64) + "\"",
                              std::string(62, 's') + std::to_string(10 + i));
    }
    const auto result = parseScenario("{ \"cameras\": [" + cameras + "] }", "f.json");
    QVERIFY2(result.scenario.has_value(), result.error.c_str());
    QCOMPARE(result.scenario->cameras.size(), std::size_t{64});

    const std::string stalls = repeated(R"({ "start_ms": 1, "length_ms": 1 })", 64, ",");
    QCOMPARE(errorOf(scenarioWith("\"stalls\": [" + stalls + "]")), QString());
    for (const std::string value : {"9007199254740991", "-9007199254740991"}) {
        const auto parsed = parseScenario(
            faultsWith(R"("failing_parameters": [ { "name": "width", "value": )" + value + " } ]"), "f.json");
        QVERIFY2(parsed.scenario.has_value(), parsed.error.c_str());
        QCOMPARE(std::to_string(parsed.scenario->cameras[0].faults.failingParameters[0].value.value_or(0)),
                 value);
    }
    // The document, the list and 19 998 numbers; a key of 64 characters of two bytes each.
    const JsonPositions positions =
        locateJson("{ \"" + repeated("\xc3\xa4", 64) + "\": [" + repeated("1", 19'998, ",") + "] }");
    QVERIFY(!positions.problem.has_value());
    QCOMPARE(positions.values.size(), std::size_t{20'000});
}

void HostileScenarioTest::messagesArePrintable_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("begin");
    QTest::addColumn<QString>("contained");
    const std::string evil = R"(a\n\u001b[31mb)";
    addError("unknown key", "{ \"" + evil + "\": 1, \"cameras\": [ " + cameraWith("") + " ] }",
             R"(f.json:1:3: /a\u000a\u001b[31mb: )", R"(unknown key "a\u000a\u001b[31mb")");
    addError("repeated key", "{ \"" + evil + "\": 1, \"" + evil + "\": 2 }",
             "f.json:1:24: ", R"(duplicate key "a\u000a\u001b[31mb")");
    addError("NUL in a key", R"({ "a\u0000b": 1 })", R"(f.json:1:)", R"(\u0000)");
    addError("name", faultsWith("\"missing_parameters\": [ \"" + evil + "\" ]"),
             "f.json:3:37: ", R"(there is no parameter "a\u000a\u001b[31mb")");
    addError("serial", "{ \"cameras\": [ " + cameraWith("", evil) + "," + cameraWith("", evil) + " ] }",
             "f.json:1:", R"(the serial number "a\u000a\u001b[31mb")");
    addError("long key", "{ \"\x1b" + std::string(90'000, 'k') + "\": 1 }", "f.json:1:", "control character");
    addError("unfinished long text", "{ \"" + std::string(90'000, 'k'),
             "f.json:1:90004: ", "missing closing quote");
}

void HostileScenarioTest::messagesArePrintable()
{
    refused();
    QFETCH(QByteArray, text);
    for (const QChar c : errorOf(text.toStdString()))
        QVERIFY(c.unicode() >= 0x20 && (c.unicode() < 0x7f || c.unicode() >= 0xa0));
}

void HostileScenarioTest::printableText_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("plain") << QByteArray("a \"b\" \\ \xc3\xa4") << QByteArray("a \"b\" \\ \xc3\xa4");
    QTest::newRow("control") << QByteArray("\0\n\x1b\x7f", 4) << QByteArray(R"(\u0000\u000a\u001b\u007f)");
    QTest::newRow("C1") << QByteArray("\xc2\x9b") + "1\xc2\xa0" << QByteArray("\\u009b1\xc2\xa0");
    QTest::newRow("12 bytes") << QByteArray("abcdefghijkl") << QByteArray("abcdefghijkl");
    QTest::newRow("13 bytes") << QByteArray("abcdefghijklm") << QByteArray("abcdefgh...jklm");
    QTest::newRow("whole characters")
        << QByteArray("abcdefg\xc3\xa4hij\xc3\xa4klm") << QByteArray("abcdefg...klm");
}

void HostileScenarioTest::printableText()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, expected);
    QCOMPARE(QByteArray::fromStdString(printable(text.toStdString(), 12)), expected);
}

void HostileScenarioTest::onlyRegularFilesAreRead()
{
    QTemporaryDir folder;
    const std::string pipe = folder.filePath(QStringLiteral("pipe")).toStdString();
    QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string &path : {pipe, std::string("/dev/zero"), folder.path().toStdString()})
        QCOMPARE(loadScenario(path).error, path + ":1:1: cannot be read: not a regular file");
    // A link to a regular file is one.
    const QString file = folder.filePath(QStringLiteral("file"));
    const QString link = folder.filePath(QStringLiteral("link"));
    QFile target(file);
    QVERIFY(target.open(QIODevice::WriteOnly));
    target.write(QByteArray::fromStdString("{ \"cameras\": [ " + cameraWith("") + " ] }"));
    target.close();
    QVERIFY(QFile::link(file, link));
    QCOMPARE(loadScenario(link.toStdString()).error, std::string());
}

QTEST_APPLESS_MAIN(HostileScenarioTest)
#include "HostileScenarioTest.moc"

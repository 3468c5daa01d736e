#include "tests/ui/MeasuringCameras.h"
#include "tests/ui/SetupDialog.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <limits>

using rig::MeasuringCameras;
using rig::SetupDialog;

/// Whatever a settings file holds: the window works with it, its dialog shows
/// something sensible and what it saves can be loaded again.
class SettingsFuzzTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void texts_data();
    void texts();
    void variants_data();
    void variants();
    void brokenFiles_data();
    void brokenFiles();
    void mixtures_data();
    void mixtures();
    void capacityOfNothing_data();
    void capacityOfNothing();
    void wideFramesOfTinyPeriods_data();
    void wideFramesOfTinyPeriods();

private:
    void loadFile(const QByteArray &content);
    /// All that reads the settings, then what it saves is loaded again.
    void useSettings(bool withMeasurement = true);
    void measure();
    void useDialog(bool accept);
    QPushButton *measureButton() const;

    std::unique_ptr<MeasuringCameras> m_cameras;
    int m_round = 0; ///< every other one accepts the dialog
};

namespace {

const struct
{
    const char *name;
    bool shapesMeasurement;
} keys[] = {{"DTGTSamplePeriod", true},    {"DTGTMaxSamples", true},  {"DTGTResetBufferLevel", false},
            {"DTGTTimestampOrigin", true}, {"DTGTExportType", false}, {"DTGTMeasMode", true},
            {"DTGTLiveGraph", false}};

/// As they stand behind the "=" in the file.
const QByteArrayList texts = {"",
                              "0",
                              "-1",
                              "-5",
                              "7",
                              "9",
                              "2147483647",
                              "2147483648",
                              "-2147483648",
                              "4294967297",
                              "9223372036854775807",
                              "9223372036854775808",
                              "-9223372036854775808",
                              "1e300",
                              "1.5",
                              "nan",
                              "-inf",
                              "seven",
                              "\xff\xfe\xc3",
                              "1, 2, 3",
                              "@Invalid()",
                              "@ByteArray(\\0\\xff)",
                              "@Rect(1 2 3 4)",
                              "@Variant(\\0\\0\\0\\x7f\\0\\0\\0)",
                              "@Variant(",
                              "\"unfinished",
                              "\\x"};

QVariantList variantsOfAllTypes()
{
    return {QVariant(),
            QVariant(QVariant::Int),
            std::numeric_limits<int>::max(),
            std::numeric_limits<int>::min(),
            std::numeric_limits<qint64>::max(),
            std::numeric_limits<qint64>::min(),
            std::numeric_limits<quint64>::max(),
            std::nan(""),
            HUGE_VAL,
            -1e300,
            0.5f,
            true,
            QChar(7),
            QString(1 << 20, '9'),
            QByteArray("\0\xff", 2),
            QByteArray(1 << 20, '\0'),
            QStringList({"1", "2"}),
            QVariantList({1, QVariantList({2})}),
            QVariantMap({{"a", 1}}),
            QSize(-1, 7),
            QDateTime()};
}

void addKeys()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("shapesMeasurement");
    for (const auto &key : keys)
        QTest::newRow(key.name) << QString(key.name) << key.shapesMeasurement;
}

} // namespace

/// One window for all rounds of a case: what one leaves behind meets the next.
void SettingsFuzzTest::init()
{
    m_cameras = std::make_unique<MeasuringCameras>(1);
    m_round = 0;
}

void SettingsFuzzTest::cleanup()
{
    m_cameras.reset();
}

void SettingsFuzzTest::loadFile(const QByteArray &content)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("host.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.close();
    QSettings settings(file.fileName(), QSettings::IniFormat);
    m_cameras->rig.plugin()->loadSettings(&settings);
}

QPushButton *SettingsFuzzTest::measureButton() const
{
    for (int column : {2, 3}) {
        if (auto *button = m_cameras->rig.cellWidget<QPushButton>(m_cameras->row(0), column))
            return button;
    }
    return nullptr; // in an unknown mode
}

void SettingsFuzzTest::measure()
{
    // In an unknown mode the rows have no buttons.
    const auto click = [this] {
        if (QPushButton *button = measureButton())
            button->click();
        else
            m_cameras->clickStartAll();
    };
    click();
    QVERIFY(m_cameras->isMeasuring(0));
    QVERIFY(m_cameras->deliver(0, 4));
    m_cameras->tick();
    m_cameras->host.releaseCaptures((*m_cameras)[0]);
    click();
    QVERIFY(!m_cameras->isMeasuring(0));
}

void SettingsFuzzTest::useDialog(bool accept)
{
    const QVariantMap before = m_cameras->rig.savedSettings();
    QCOMPARE(before.size(), 7);
    QVERIFY(rig::withSetup(m_cameras->rig, [&](const SetupDialog &setup) {
        QVERIFY(setup.mode()->currentIndex() <= 1);
        QVERIFY(setup.origin()->currentIndex() <= 1);
        if (accept)
            setup.clickOk();
        else
            setup.clickCancel();
    }));
    const QVariantMap after = m_cameras->rig.savedSettings();
    if (!accept) {
        QCOMPARE(after, before);
        return;
    }
    const int period = after["DTGTSamplePeriod"].toInt();
    QVERIFY(period >= 4096 && period <= 51200);
    const qint64 capacity = after["DTGTMaxSamples"].toLongLong();
    QVERIFY(capacity >= 1000000 && capacity <= 2000000000 && capacity % 1000000 == 0);
    for (const char *key : {"DTGTMeasMode", "DTGTTimestampOrigin", "DTGTResetBufferLevel"})
        QCOMPARE(after[key], before[key]);
}

void SettingsFuzzTest::useSettings(bool withMeasurement)
{
    MeasuringCameras &cameras = *m_cameras;
    cameras.tick();
    if (withMeasurement) {
        measure();
        cameras.showTime(0.5, 2.0);
        cameras.refresh();
    }
    cameras.host.setHostAcquisition(cameras[0], true);
    cameras.host.setHostAcquisition(cameras[0], false);
    useDialog(++m_round % 2 == 0);

    const QVariantMap saved = cameras.rig.savedSettings();
    cameras.rig.loadSettings(saved);
    QCOMPARE(cameras.rig.savedSettings(), saved);
}

void SettingsFuzzTest::texts_data()
{
    addKeys();
}

void SettingsFuzzTest::texts()
{
    QFETCH(QString, key);
    QFETCH(bool, shapesMeasurement);
    for (const QByteArray &text : ::texts) {
        loadFile("[DataThroughputGraphPlugin]\n" + key.toLatin1() + "=" + text + "\n");
        useSettings(shapesMeasurement);
        if (QTest::currentTestFailed())
            QFAIL(text);
    }
}

void SettingsFuzzTest::variants_data()
{
    addKeys();
}

void SettingsFuzzTest::variants()
{
    QFETCH(QString, key);
    QFETCH(bool, shapesMeasurement);
    for (const QVariant &value : variantsOfAllTypes()) {
        m_cameras->rig.loadSettings({{key, value}});
        useSettings(shapesMeasurement);
        if (QTest::currentTestFailed())
            QFAIL(value.typeName());
    }
}

void SettingsFuzzTest::brokenFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray group = "[DataThroughputGraphPlugin]\n";
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("zeros") << QByteArray(4096, '\0');
    QTest::newRow("no group") << QByteArray("DTGTSamplePeriod=5\n");
    QTest::newRow("open group") << QByteArray("[DataThroughputGraphPlugin\nDTGTSamplePeriod=5\n");
    QTest::newRow("nested group") << group + "DTGTSamplePeriod\\x=5\nDTGTMeasMode/1=1\n";
    QTest::newRow("no value") << group + "DTGTSamplePeriod\nDTGTMaxSamples\n=\n==\n";
    QTest::newRow("twice") << group + "DTGTMaxSamples=1\nDTGTMaxSamples=-1\n";
    QTest::newRow("long line") << group + "DTGTSamplePeriod=" + QByteArray(1 << 20, '7');
    QTest::newRow("many keys") << group + QByteArray("DTGTSamplePeriod=-5\n").repeated(10000);
    QTest::newRow("marks of UTF-16") << QByteArray("\xff\xfe") + group;
    QByteArray noise;
    QRandomGenerator random(20240731);
    for (int i = 0; i < 10000; ++i)
        noise.append(char(random.bounded(256)));
    QTest::newRow("noise") << noise;
    QTest::newRow("noise in the group") << group + noise;
}

void SettingsFuzzTest::brokenFiles()
{
    QFETCH(QByteArray, content);
    loadFile(content);
    useSettings();
    useSettings();
}

void SettingsFuzzTest::mixtures_data()
{
    QTest::addColumn<quint32>("seed");
    for (quint32 seed = 1; seed <= 3; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

/// Several keys at once, while a measurement runs or not.
void SettingsFuzzTest::mixtures()
{
    QFETCH(quint32, seed);
    QRandomGenerator random(seed);
    for (int round = 0; round < 12; ++round) {
        QByteArray content = "[DataThroughputGraphPlugin]\n";
        for (const auto &key : keys) {
            if (random.bounded(3) > 0)
                content += QByteArray(key.name) + "=" + ::texts[random.bounded(::texts.size())] + "\n";
        }
        QPushButton *button = random.bounded(2) ? measureButton() : nullptr;
        if (button) {
            button->click();
            QVERIFY(m_cameras->deliver(0, 2));
        }
        loadFile(content);
        m_cameras->tick();
        if (m_cameras->isMeasuring(0)) {
            m_cameras->deliver(0, 2);
            m_cameras->refresh();
            m_cameras->host.releaseCaptures((*m_cameras)[0]);
            m_cameras->rig.call("on_btnStartAll_clicked");
            if (m_cameras->isMeasuring(0)) // it started all, that is none
                m_cameras->rig.call("on_btnStartAll_clicked");
        }
        useSettings();
        if (QTest::currentTestFailed())
            QFAIL(content);
    }
}

void SettingsFuzzTest::capacityOfNothing_data()
{
    QTest::addColumn<qint64>("capacity");
    QTest::addColumn<int>("mode");
    for (qint64 capacity : {std::numeric_limits<qint64>::min(), Q_INT64_C(-1000000), Q_INT64_C(-16)}) {
        for (int mode : {0, 1})
            QTest::addRow("%lld mode %d", capacity, mode) << capacity << mode;
    }
}

/// What cannot be stored is dropped at once: nothing is there to draw.
void SettingsFuzzTest::capacityOfNothing()
{
    QFETCH(qint64, capacity);
    QFETCH(int, mode);
    m_cameras->rig.loadSettings({{"DTGTMaxSamples", capacity}, {"DTGTMeasMode", mode}});
    measure();
    m_cameras->showTime(0.5, 2.0);
    m_cameras->refresh();
    QVERIFY(m_cameras->points(0, mode == 0 ? "Max buffer level" : "API skip").empty());
    m_cameras->rig.loadSettings({{"DTGTMaxSamples", 1000}, {"DTGTMeasMode", mode}});
    measure();
    m_cameras->showTime(0.5, 2.0);
    m_cameras->refresh();
    QVERIFY(!m_cameras->points(0, mode == 0 ? "Max buffer level" : "API skip").empty());
}

void SettingsFuzzTest::wideFramesOfTinyPeriods_data()
{
    QTest::addColumn<int>("period");
    for (int period : {std::numeric_limits<int>::min(), -8, -1, 0, 1, 7, 8, 9, 15, 1025, 4095,
                       std::numeric_limits<int>::max()})
        QTest::addRow("%d", period) << period;
}

/// Frames of two megabytes with a period near a word's eight bytes, or that is
/// no multiple of them.
void SettingsFuzzTest::wideFramesOfTinyPeriods()
{
    QFETCH(int, period);
    scripted::CounterFrames frames;
    frames.width = 1024;
    frames.height = 1021;
    m_cameras->host.setImageSource((*m_cameras)[0], frames);
    m_cameras->rig.loadSettings({{"DTGTSamplePeriod", period}});
    measure();
    m_cameras->showTime(0.5, 2.0);
    m_cameras->refresh();
    useDialog(true);
}

QTEST_MAIN(SettingsFuzzTest)
#include "SettingsFuzzTest.moc"

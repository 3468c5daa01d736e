#include "tests/ui/SetupDialog.h"

#include "tests/measurement/LogCapture.h"

#include <QtTest>

using rig::SetupDialog;
using rig::withSetup;

/// What the setup dialog shows of the window's settings, and what it writes back.
class SetupValuesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void shows_data();
    void shows();
    void stores_data();
    void stores();
    void okAloneStoresWhatItShows_data();
    void okAloneStoresWhatItShows();
    void anotherItemInsteadOfNone();
    void cancels_data();
    void cancels();
    void refreshPeriod();

private:
    void use(const rig::SetupUse &use) { QVERIFY(withSetup(*m_rig, use)); }

    std::unique_ptr<rig::PluginRig> m_rig;
};

namespace {

/// Catches the window's own timer, the only one of a second.
class TimerCatcher : public QObject
{
public:
    TimerCatcher() { qApp->installEventFilter(this); }

    QPointer<QTimer> timer;

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *fired = qobject_cast<QTimer *>(object);
        if (fired && event->type() == QEvent::Timer && fired->interval() == 1000)
            timer = fired;
        return false;
    }
};

} // namespace

void SetupValuesTest::init()
{
    m_rig = std::make_unique<rig::PluginRig>();
    m_rig->createForm();
}

void SetupValuesTest::cleanup()
{
    m_rig.reset();
}

void SetupValuesTest::shows_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("stored");
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QVariant>("shown");
    const auto row = [](const char *key, const QVariant &stored, const char *widget, const QVariant &shown) {
        QTest::addRow("%s %s", key, qPrintable(stored.toString())) << key << stored << widget << shown;
    };
    for (const QPair<int, int> &period : QList<QPair<int, int>>{{1024, 4096},
                                                                {4095, 4096},
                                                                {4096, 4096},
                                                                {5000, 5000},
                                                                {51200, 51200},
                                                                {51201, 51200},
                                                                {2147483647, 51200},
                                                                {0, 4096},
                                                                {-5, 4096}})
        row("DTGTSamplePeriod", period.first, "spinSamplePeriod", period.second);
    for (const QPair<qint64, int> &capacity : QList<QPair<qint64, int>>{{10000000, 10},
                                                                        {2499999, 2},
                                                                        {2500000, 3},
                                                                        {1499999, 1},
                                                                        {499999, 1},
                                                                        {0, 1},
                                                                        {-1, 1},
                                                                        {-3000000, 1},
                                                                        {2000000000, 2000},
                                                                        {2001000000, 2000},
                                                                        {4294967301000000, 2000},
                                                                        {9223372036854775807, 2000},
                                                                        {-9223372036854775807 - 1, 1}})
        row("DTGTMaxSamples", capacity.first, "spinCapacity", capacity.second);
    row("DTGTResetBufferLevel", true, "chkResetBuffeLevel", true);
    row("DTGTResetBufferLevel", false, "chkResetBuffeLevel", false);
    row("DTGTTimestampOrigin", 0, "cbTimeStampOrigin", 0);
    row("DTGTTimestampOrigin", 1, "cbTimeStampOrigin", 1);
    row("DTGTTimestampOrigin", 9, "cbTimeStampOrigin", -1);
    row("DTGTTimestampOrigin", -1, "cbTimeStampOrigin", -1);
    row("DTGTMeasMode", 0, "measureMode", 0);
    row("DTGTMeasMode", 1, "measureMode", 1);
    row("DTGTMeasMode", 2, "measureMode", -1);
    row("DTGTMeasMode", -1, "measureMode", -1);
}

void SetupValuesTest::shows()
{
    QFETCH(QString, key);
    QFETCH(QVariant, stored);
    QFETCH(QString, widget);
    QFETCH(QVariant, shown);
    const LogCapture log; // complains of unknown modes
    m_rig->loadSettings({{key, stored}});
    use([&](const SetupDialog &setup) {
        const auto *object = setup.find<QWidget>(widget.toLatin1());
        for (const char *property : {"value", "checked", "currentIndex"}) {
            if (object->metaObject()->indexOfProperty(property) >= 0)
                QCOMPARE(object->property(property), shown);
        }
    });
}

void SetupValuesTest::stores_data()
{
    QTest::addColumn<QString>("widget");
    QTest::addColumn<QVariant>("entered");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QVariant>("saved");
    const auto row = [](const char *widget, const QVariant &entered, const char *key, const QVariant &saved) {
        QTest::addRow("%s %s", widget, qPrintable(entered.toString())) << widget << entered << key << saved;
    };
    row("spinSamplePeriod", 51200, "DTGTSamplePeriod", 51200);
    row("spinSamplePeriod", 5120, "DTGTSamplePeriod", 5120);
    row("spinCapacity", 1, "DTGTMaxSamples", 1000000LL);
    row("spinCapacity", 2000, "DTGTMaxSamples", 2000000000LL);
    row("measureMode", 1, "DTGTMeasMode", 1);
    row("chkResetBuffeLevel", false, "DTGTResetBufferLevel", false);
    row("cbTimeStampOrigin", 1, "DTGTTimestampOrigin", 1);
}

void SetupValuesTest::stores()
{
    QFETCH(QString, widget);
    QFETCH(QVariant, entered);
    QFETCH(QString, key);
    QFETCH(QVariant, saved);
    m_rig->loadSettings({{"DTGTSamplePeriod", 4096}});
    QVariantMap expected = m_rig->savedSettings();
    QVERIFY(expected[key] != saved);
    expected[key] = saved;
    use([&](const SetupDialog &setup) {
        auto *object = setup.find<QWidget>(widget.toLatin1());
        for (const char *property : {"value", "checked", "currentIndex"})
            if (object->metaObject()->indexOfProperty(property) >= 0)
                QVERIFY(object->setProperty(property, entered));
        setup.clickOk();
        QVERIFY(!setup->isVisible());
        QCOMPARE(setup->result(), int(QDialog::Accepted));
    });
    QCOMPARE(m_rig->savedSettings(), expected);
}

void SetupValuesTest::okAloneStoresWhatItShows_data()
{
    QTest::addColumn<QVariantMap>("loaded");
    QTest::addColumn<QVariantMap>("changed");
    QTest::newRow("defaults") << QVariantMap() << QVariantMap({{"DTGTSamplePeriod", 4096}});
    QTest::newRow("nothing to clamp")
        << QVariantMap({{"DTGTSamplePeriod", 6000}, {"DTGTMaxSamples", 3000000LL}, {"DTGTMeasMode", 1}})
        << QVariantMap();
    QTest::newRow("too large")
        << QVariantMap({{"DTGTSamplePeriod", 60000}, {"DTGTMaxSamples", 9223372036854775807LL}})
        << QVariantMap({{"DTGTSamplePeriod", 51200}, {"DTGTMaxSamples", 2000000000LL}});
    QTest::newRow("rounded") << QVariantMap({{"DTGTSamplePeriod", 4096}, {"DTGTMaxSamples", 2499999LL}})
                             << QVariantMap({{"DTGTMaxSamples", 2000000LL}});
    // What the dialog cannot show is not replaced behind the user's back.
    QTest::newRow("no such items") << QVariantMap({{"DTGTSamplePeriod", 4096},
                                                   {"DTGTMeasMode", 7},
                                                   {"DTGTTimestampOrigin", 9}})
                                   << QVariantMap();
}

void SetupValuesTest::okAloneStoresWhatItShows()
{
    QFETCH(QVariantMap, loaded);
    QFETCH(QVariantMap, changed);
    const LogCapture log; // complains of the unknown mode
    m_rig->loadSettings(loaded);
    QVariantMap expected = m_rig->savedSettings();
    for (auto value = changed.begin(); value != changed.end(); ++value)
        expected[value.key()] = value.value();
    use([](const SetupDialog &setup) { setup.clickOk(); });
    QCOMPARE(m_rig->savedSettings(), expected);
}

void SetupValuesTest::anotherItemInsteadOfNone()
{
    const LogCapture log; // complains of the unknown mode
    m_rig->loadSettings({{"DTGTMeasMode", 7}, {"DTGTTimestampOrigin", 9}});
    ZUCORE_HANDLE camera = rig::openCamera("Model", "1");
    use([](const SetupDialog &setup) {
        setup.mode()->setCurrentIndex(0);
        setup.origin()->setCurrentIndex(0);
        setup.clickOk();
    });
    QCOMPARE(m_rig->savedSettings()["DTGTMeasMode"].toInt(), 0);
    QCOMPARE(m_rig->savedSettings()["DTGTTimestampOrigin"].toInt(), 0);
    QCOMPARE(m_rig->row(camera), 0);
}

void SetupValuesTest::cancels_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("button") << 0;
    QTest::newRow("Escape") << 1;
    QTest::newRow("close") << 2;
}

void SetupValuesTest::cancels()
{
    QFETCH(int, way);
    const QVariantMap before = m_rig->savedSettings();
    use([&](const SetupDialog &setup) {
        setup.samplePeriod()->setValue(8192);
        setup.capacity()->setValue(77);
        setup.refreshPeriod()->setValue(5);
        setup.mode()->setCurrentIndex(1);
        setup.origin()->setCurrentIndex(1);
        setup.reset()->setChecked(false);
        if (way == 0)
            setup.clickCancel();
        else if (way == 1)
            QTest::keyClick(setup.dialog(), Qt::Key_Escape);
        else
            setup->close();
        QVERIFY(!setup->isVisible());
        QCOMPARE(setup->result(), int(QDialog::Rejected));
    });
    QCOMPARE(m_rig->savedSettings(), before);
    use([](const SetupDialog &setup) {
        QCOMPARE(setup.refreshPeriod()->value(), 1);
        QCOMPARE(setup.mode()->currentIndex(), 0);
    });
}

void SetupValuesTest::refreshPeriod()
{
    const TimerCatcher ticks;
    QTRY_VERIFY_WITH_TIMEOUT(ticks.timer, 5000);
    const struct
    {
        int interval;
        int shown;
    } rows[] = {{1999, 1}, {1000, 1}, {999, 1}, {0, 1}, {2000, 2}, {1000000, 1000}, {2147483647, 1000}};
    for (const auto &row : rows) {
        ticks.timer->setInterval(row.interval);
        use([&](const SetupDialog &setup) {
            QCOMPARE(setup.refreshPeriod()->value(), row.shown);
            setup.clickCancel();
        });
        QCOMPARE(ticks.timer->interval(), row.interval);
        use([](const SetupDialog &setup) { setup.clickOk(); });
        QCOMPARE(ticks.timer->interval(), row.shown * 1000);
        QVERIFY(ticks.timer->isActive());
    }
    use([](const SetupDialog &setup) {
        setup.refreshPeriod()->setValue(7);
        setup.clickOk();
    });
    QCOMPARE(ticks.timer->interval(), 7000);
    QVERIFY(ticks.timer->isActive());
    use([](const SetupDialog &setup) { QCOMPARE(setup.refreshPeriod()->value(), 7); });
}

QTEST_MAIN(SetupValuesTest)
#include "SetupValuesTest.moc"

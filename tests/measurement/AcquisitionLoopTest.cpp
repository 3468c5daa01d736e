#include "tests/measurement/EngineFixture.h"

#include <QTime>
#include <QtTest>

#include <limits>

using Line = CxCameraLineData;
using scripted::CounterFrames;
using scripted::Failure;
using scripted::Function;

namespace {

const QString captureFailure = QStringLiteral("CxCameraLineData::runMeasureLoopAcquisition(): "
                                              "zuApi_GetImage failed to capture image");

/// Frames with camera time stamps in microseconds of the caller's choice.
scripted::ImageSource framesAt(const std::vector<quint64> &microseconds)
{
    return [microseconds, next = std::size_t(0)](ZU_IMG &image) mutable {
        static unsigned long long word = 0;
        const quint64 stamp = microseconds.at(next);
        image.data = &word;
        image.width = 4;
        image.height = 1;
        image.frameNumber = quint32(100 + next);
        image.timestampSeconds = quint32(stamp / 1000000);
        image.timestampMicroseconds = quint32(stamp % 1000000);
        ++next;
        return true;
    };
}

QList<quint64> frameNumbers(const Line &line)
{
    QList<quint64> numbers;
    for (const Line::CxCounterData *record : line.counterData)
        numbers.append(record->frameNumber);
    return numbers;
}

} // namespace

class AcquisitionLoopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_engine.reset(); }
    void callsOfAFrame();
    void onlyFailuresAreLogged();
    void countersOfAFrame();
    void countersAreReadAfterTheFrame();
    void unsupportedCounters();
    void failedCounterKeepsItsLastValue();
    void timestamps();
    void computerStampFollowsTheCounters();
    void statistics_data();
    void statistics();
    void statisticsRestart();
    void failedCapturesNeverEndTheLoop();
    void capacity_data();
    void capacity();
    void recordsOfEarlierRunsStay();
    void sampleIntervalHasNoMeaning();

private:
    void setCounter(int selector, int value)
    {
        m_engine->host.setValue(m_engine->camera, "counter_value[" + std::to_string(selector) + "]", value);
    }

    std::unique_ptr<EngineFixture> m_engine;
};

void AcquisitionLoopTest::init()
{
    m_engine = std::make_unique<EngineFixture>();
    m_engine->line->measureMode = MeasureModeAcquisition;
}

void AcquisitionLoopTest::callsOfAFrame()
{
    QVERIFY(m_engine->start());
    QVERIFY(m_engine->deliver(0));
    m_engine->host.clearCalls();
    QVERIFY(m_engine->deliver(1));
    QStringList expected = {QStringLiteral("image")};
    for (int selector = 0; selector < 6; ++selector)
        expected << QStringLiteral("set counter_selector %1").arg(selector)
                 << QStringLiteral("get counter_value 0");
    QCOMPARE(m_engine->calls(), expected);
    const scripted::Call capture = m_engine->host.calls().front();
    QVERIFY(capture.cleanRecord && capture.flag && !capture.wantsError);
    QCOMPARE(capture.value, 5000LL);
}

void AcquisitionLoopTest::onlyFailuresAreLogged()
{
    QVERIFY(m_engine->run(3, 512, 1000));
    QCOMPARE(m_engine->log.messages(), QStringList(captureFailure));
    QVERIFY(m_engine->log.entries().first().file.endsWith("measurement/CaptureLoops.cpp"));
}

void AcquisitionLoopTest::countersOfAFrame()
{
    for (int selector = 0; selector < 6; ++selector)
        setCounter(selector, 10 + selector);
    QVERIFY(m_engine->run(1, 512, 1000));
    QCOMPARE(m_engine->line->counterData.size(), 1);
    const Line::CxCounterData &record = *m_engine->line->counterData.first();
    QCOMPARE(record.frameNumber, quint64(1));
    QCOMPARE(record.transportSkip, 10);
    QCOMPARE(record.apiSkip, 11);
    QCOMPARE(record.missedTrgOverlap, 13);
    QCOMPARE(record.missedTrgOverflow, 14);
    QCOMPARE(record.bufferOverflow, 15);
    QCOMPARE(m_engine->line->GetCounterValue(ZU_CNT_SEL_TRANSFERRED), 12);
    QVERIFY(m_engine->line->frames.isEmpty());
}

void AcquisitionLoopTest::countersAreReadAfterTheFrame()
{
    // The source runs during the capture: what it sets belongs to the frame.
    CounterFrames frames;
    m_engine->host.setImageSource(m_engine->camera, [this, frames](ZU_IMG &image) mutable {
        frames(image);
        setCounter(1, int(image.frameNumber) * 100);
        return true;
    });
    QVERIFY(m_engine->run(3, 512, 1000));
    QList<int> skips;
    for (const Line::CxCounterData *record : qAsConst(m_engine->line->counterData))
        skips.append(record->apiSkip);
    QCOMPARE(skips, QList<int>({100, 200, 300}));
}

void AcquisitionLoopTest::unsupportedCounters()
{
    for (int selector = 0; selector < 6; ++selector)
        setCounter(selector, 10 + selector);
    m_engine->host.fail(Failure::write("counter_selector:settable", 1));
    m_engine->host.fail(Failure::write("counter_selector:settable", 5));
    QVERIFY(m_engine->run(2, 512, 1000));
    for (const Line::CxCounterData *record : qAsConst(m_engine->line->counterData)) {
        QCOMPARE(record->transportSkip, 10);
        QCOMPARE(record->apiSkip, 0);
        QCOMPARE(record->bufferOverflow, 0);
    }
    QVERIFY(!m_engine->calls().contains(QStringLiteral("set counter_selector 1")));
    QVERIFY(!m_engine->calls().contains(QStringLiteral("set counter_selector 5")));
    QCOMPARE(m_engine->line->GetCounterValue(ZU_CNT_SEL_API_SKIP), 0);
}

void AcquisitionLoopTest::failedCounterKeepsItsLastValue()
{
    setCounter(3, 7);
    QVERIFY(m_engine->start());
    QVERIFY(m_engine->deliver(1));
    setCounter(3, 8);
    m_engine->host.fail(Failure::write("counter_selector", 3));
    QVERIFY(m_engine->deliver(1));
    QVERIFY(m_engine->line->stopMeasurement());
    QCOMPARE(m_engine->line->counterData[0]->missedTrgOverlap, 7);
    QCOMPARE(m_engine->line->counterData[1]->missedTrgOverlap, 7);
    QCOMPARE(m_engine->log.messages(), QStringList(captureFailure));
}

void AcquisitionLoopTest::timestamps()
{
    m_engine->host.setImageSource(m_engine->camera, framesAt({5000000123, 5000000456}));
    QElapsedTimer outer;
    outer.start();
    QVERIFY(m_engine->run(2, 512, 1000));
    const qint64 longest = outer.nsecsElapsed() / 1000;
    const Line &line = *m_engine->line;
    const qint64 startOfRun = line.counterData[0]->cameraTimestamp - 5000000123;
    QCOMPARE(startOfRun % 1000, qint64(0));
    QVERIFY(startOfRun >= 0 && startOfRun < 86400LL * 1000000);
    QCOMPARE(line.counterData[1]->cameraTimestamp, startOfRun + 5000000456);
    for (const Line::CxCounterData *record : line.counterData)
        QVERIFY(record->computerTimestamp >= startOfRun && record->computerTimestamp <= startOfRun + longest);
    QVERIFY(line.counterData[0]->computerTimestamp <= line.counterData[1]->computerTimestamp);
}

/// The observer runs on the capturing thread, which started the timer.
void AcquisitionLoopTest::computerStampFollowsTheCounters()
{
    constexpr qint64 apart = 2000; // ns; stamps are whole microseconds
    m_engine->host.setImageSource(m_engine->camera, framesAt({1000, 2000, 3000}));
    QList<qint64> lastReads; // microseconds since the start of the run
    qint64 firstSelect = 0;
    m_engine->host.observe([&, line = m_engine->line.get()](const scripted::Call &call) {
        if (call.name == ZU_PRM_COUNTER_SELECTOR && call.value == ZU_CNT_SEL_TRANSPORT_SKIP) {
            firstSelect = line->elapsedTimer.nsecsElapsed();
        } else if (call.name == ZU_PRM_COUNTER_SELECTOR && call.value == ZU_CNT_SEL_BUFFER_OVERFLOW) {
            qint64 now = line->elapsedTimer.nsecsElapsed();
            while (now < firstSelect + apart) // a faster read would show nothing
                now = line->elapsedTimer.nsecsElapsed();
            lastReads.append(now / 1000);
        }
    });
    QVERIFY(m_engine->run(3, 512, 1000));

    const Line &line = *m_engine->line;
    QCOMPARE(lastReads.size(), 3);
    QCOMPARE(line.counterData.size(), 3);
    const qint64 startOfRun = line.counterData[0]->cameraTimestamp - 1000;
    for (int i = 0; i < 3; ++i)
        QVERIFY(line.counterData[i]->computerTimestamp - startOfRun >= lastReads[i]);
}

void AcquisitionLoopTest::statistics_data()
{
    QTest::addColumn<QList<quint64>>("stamps");
    QTest::addColumn<QList<double>>("values");
    QTest::newRow("none") << QList<quint64>{} << QList<double>{};
    QTest::newRow("the first frame gives none") << QList<quint64>{1000} << QList<double>{};
    QTest::newRow("two") << QList<quint64>{1000, 11000} << QList<double>{10000.0};
    QTest::newRow("several") << QList<quint64>{0, 10000, 30000, 33333}
                             << QList<double>{10000.0, 20000.0, 3333.0};
    QTest::newRow("equal") << QList<quint64>{500, 500, 600} << QList<double>{0.0, 100.0};
    QTest::newRow("stepping back") << QList<quint64>{5000, 1000, 2000} << QList<double>{-4000.0, 1000.0};
}

void AcquisitionLoopTest::statistics()
{
    QFETCH(QList<quint64>, stamps);
    QFETCH(QList<double>, values);
    m_engine->host.setImageSource(m_engine->camera, framesAt({stamps.begin(), stamps.end()}));
    QVERIFY(m_engine->run(stamps.size(), 512, 1000));

    double mean = 0.0;
    double maximum = std::numeric_limits<double>::min();
    double minimum = std::numeric_limits<double>::max();
    double n = 0.0;
    for (double value : qAsConst(values)) {
        n += 1.0;
        mean = (1.0 / n) * value + (1.0 - 1.0 / n) * mean;
        maximum = qMax(maximum, value);
        minimum = qMin(minimum, value);
    }
    QCOMPARE(m_engine->line->statCount, quint64(values.size()));
    QVERIFY(m_engine->line->statAvg == mean); // to the last bit
    QVERIFY(m_engine->line->statMax == maximum);
    QVERIFY(m_engine->line->statMin == minimum);
    QCOMPARE(m_engine->line->counterData.size(), stamps.size());
}

void AcquisitionLoopTest::statisticsRestart()
{
    QVERIFY(m_engine->run(4, 512, 1000));
    QCOMPARE(m_engine->line->statCount, quint64(3));
    QCOMPARE(m_engine->line->statAvg, 10000.0);
    QVERIFY(m_engine->run(1, 512, 1000));
    // Nor does the last frame of the run before count as the previous one.
    QCOMPARE(m_engine->line->statCount, quint64(0));
    QCOMPARE(m_engine->line->statAvg, 0.0);
    QVERIFY(m_engine->line->statMax == std::numeric_limits<double>::min());
    QVERIFY(m_engine->line->statMin == std::numeric_limits<double>::max());
}

void AcquisitionLoopTest::failedCapturesNeverEndTheLoop()
{
    m_engine->host.setImageSource(m_engine->camera, [count = 0](ZU_IMG &image) mutable {
        static unsigned long long word = 0;
        image.frameNumber = quint32(++count);
        image.timestampMicroseconds = quint32(count * 1000);
        image.data = count == 3 ? nullptr : &word;
        return count != 4;
    });
    m_engine->host.fail(Failure::call(Function::GetImage, 1));
    m_engine->host.fail(Failure::call(Function::GetImage, 3));
    QVERIFY(m_engine->run(6, 512, 1000));
    QCOMPARE(frameNumbers(*m_engine->line), QList<quint64>({1, 2, 5, 6}));
    QCOMPARE(m_engine->log.messages(),
             QStringList({captureFailure, captureFailure, captureFailure, captureFailure, captureFailure}));
    // The time between two frames spans the lost ones.
    QCOMPARE(m_engine->line->statCount, quint64(3));
    QCOMPARE(m_engine->line->statMax, 3000.0);
    // No counter is read for a frame that did not come.
    QCOMPARE(m_engine->calls().count(QStringLiteral("set counter_selector 0")), 4);
}

void AcquisitionLoopTest::capacity_data()
{
    QTest::addColumn<qlonglong>("capacity");
    QTest::addColumn<int>("kept"); // of 12 frames
    QTest::newRow("nothing dropped") << 3000000LL << 12;
    QTest::newRow("exactly full") << 11LL << 12;
    QTest::newRow("one too many") << 10LL << 11;
    QTest::newRow("one") << 1LL << 2;
    QTest::newRow("zero") << 0LL << 1;
    QTest::newRow("minus one") << -1LL << 0;
    QTest::newRow("minus five") << -5LL << 0;
    QTest::newRow("largest") << std::numeric_limits<qlonglong>::max() << 12;
    QTest::newRow("smallest") << std::numeric_limits<qlonglong>::min() << 0;
}

void AcquisitionLoopTest::capacity()
{
    QFETCH(qlonglong, capacity);
    QFETCH(int, kept);
    QVERIFY(m_engine->run(12, 512, capacity));
    QList<quint64> newest;
    for (int i = 12 - kept; i < 12; ++i)
        newest.append(quint64(i + 1));
    QCOMPARE(frameNumbers(*m_engine->line), newest);
    QCOMPARE(m_engine->line->statCount, quint64(11));
}

void AcquisitionLoopTest::recordsOfEarlierRunsStay()
{
    QVERIFY(m_engine->run(3, 512, 1000));
    QVERIFY(m_engine->run(2, 512, 3));
    QCOMPARE(frameNumbers(*m_engine->line), QList<quint64>({2, 3, 4, 5}));
}

void AcquisitionLoopTest::sampleIntervalHasNoMeaning()
{
    QVERIFY(m_engine->run(5, 0, 3));
    QCOMPARE(m_engine->line->counterData.size(), 4);
}

QTEST_APPLESS_MAIN(AcquisitionLoopTest)
#include "AcquisitionLoopTest.moc"

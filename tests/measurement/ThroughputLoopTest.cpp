#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/FrameLists.h"

#include <QTime>
#include <QtTest>

#include <limits>
#include <vector>

using Line = CxCameraLineData;
using scripted::CounterFrames;
using scripted::Failure;
using scripted::Function;

namespace {

constexpr qint64 microsecondsPerDay = 86400LL * 1000000;

const QString captureFailure = QStringLiteral("CxCameraLineData::runMeasureLoopThrougput(): "
                                              "zuApi_GetImage failed to capture image");

/// Frames of 512 words whose last sample at one word an interval lies the given
/// number of ticks after the first.
class SpanFrames
{
public:
    explicit SpanFrames(std::vector<long long> ticks)
        : m_ticks(std::move(ticks))
    {
    }

    bool operator()(ZU_IMG &image)
    {
        m_words.assign(512, 5000);
        m_words.back() = 5000 + static_cast<unsigned long long>(m_ticks.at(m_next++));
        image.data = m_words.data();
        image.width = 2048;
        image.height = 1;
        return true;
    }

private:
    std::vector<long long> m_ticks;
    std::vector<unsigned long long> m_words;
    std::size_t m_next = 0;
};

QList<quint64> samplesOf(const Line::CxFrameData &frame)
{
    QList<quint64> samples;
    for (quint64 i = 0; i < frame.sampleCount; ++i)
        samples.append(frame.samples[i]);
    return samples;
}

} // namespace

class ThroughputLoopTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startLine_data();
    void startLine();
    void captureRequests();
    void framesAreSampled_data();
    void framesAreSampled();
    void spanOfAFrame_data();
    void spanOfAFrame();
    void sizesOfTheRecordOnly();
    void timestamps();
    void computerTimestampsGoOn();
    void computerStampFollowsTheSampling();
    void statistics();
    void statisticsRestart();
    void emptyFrameCountsInTheStatistics();
    void failedCapturesNeverEndTheLoop();
    void nullDataIsAFailure();
    void sourceFailureIsAFailure();
};

void ThroughputLoopTest::startLine_data()
{
    QTest::addColumn<unsigned int>("interval");
    QTest::addColumn<quint64>("bufferSize");
    QTest::addColumn<unsigned int>("speed");
    QTest::addColumn<QString>("text");
    QTest::newRow("common") << 4096U << quint64(67108864) << 380U
                            << QStringLiteral("Start Measure Throiughput with sampleInterval 4096, "
                                              "internlaBuffSize 67108864, avgTransportSpeedMBps 380");
    QTest::newRow("large") << 4294967295U << quint64(18446744073709551615ULL) << 4294967295U
                           << QStringLiteral("Start Measure Throiughput with sampleInterval 4294967295, "
                                             "internlaBuffSize 18446744073709551615, "
                                             "avgTransportSpeedMBps 4294967295");
    QTest::newRow("zero") << 0U << quint64(0) << 0U
                          << QStringLiteral("Start Measure Throiughput with sampleInterval 0, "
                                            "internlaBuffSize 0, avgTransportSpeedMBps 0");
}

void ThroughputLoopTest::startLine()
{
    QFETCH(unsigned int, interval);
    QFETCH(quint64, bufferSize);
    QFETCH(unsigned int, speed);
    QFETCH(QString, text);
    EngineFixture engine;
    engine.line->autoInternalBuffSize = false;
    engine.line->internalBuffSize = bufferSize;
    engine.line->autoTransportSpeed = false;
    engine.line->avgTransportSpeedMBps = speed;
    QVERIFY(engine.run(0, interval, 1000));
    QCOMPARE(engine.log.messages(), QStringList({text, captureFailure}));
    for (const LogEntry &entry : engine.log.entries())
        QVERIFY2(entry.file.endsWith("measurement/CaptureLoops.cpp"), entry.file.constData());
}

void ThroughputLoopTest::captureRequests()
{
    EngineFixture engine;
    QVERIFY(engine.run(3, 512, 100000));
    int captures = 0;
    for (const scripted::Call &call : engine.host.calls()) {
        if (call.function != Function::GetImage)
            continue;
        ++captures;
        QVERIFY(call.cleanRecord);
        QVERIFY(call.flag);
        QVERIFY(!call.wantsError);
        QCOMPARE(call.value, 5000LL);
        QCOMPARE(call.handle, engine.camera);
    }
    QCOMPARE(captures, 4);
}

void ThroughputLoopTest::framesAreSampled_data()
{
    QTest::addColumn<unsigned int>("words");
    QTest::addColumn<unsigned int>("interval");
    QTest::addColumn<QList<quint64>>("samples"); // word numbers
    QTest::newRow("every 100th word") << 500U << 800U << QList<quint64>{0, 100, 200, 300, 400};
    QTest::newRow("rest of a step") << 599U << 800U << QList<quint64>{0, 100, 200, 300, 400};
    QTest::newRow("one more") << 600U << 800U << QList<quint64>{0, 100, 200, 300, 400, 500};
    QTest::newRow("15999 words") << 15999U << 40000U << QList<quint64>{0, 5000, 10000};
    QTest::newRow("16000 words") << 16000U << 32000U << QList<quint64>{8000, 12000};
    QTest::newRow("shorter than a step") << 100U << 808U << QList<quint64>{};
    QTest::newRow("no words") << 0U << 800U << QList<quint64>{};
    QTest::newRow("interval 7") << 500U << 7U << QList<quint64>{};
    QTest::newRow("interval 0") << 500U << 0U << QList<quint64>{};
}

void ThroughputLoopTest::framesAreSampled()
{
    QFETCH(unsigned int, words);
    QFETCH(unsigned int, interval);
    QFETCH(QList<quint64>, samples);
    EngineFixture engine;
    CounterFrames frames = numberedFrames(words * 4);
    frames.firstFrameNumber = 0xfffffffeU;
    engine.host.setImageSource(engine.camera, [frames](ZU_IMG &image) mutable {
        static unsigned long long nothing = 0;
        frames(image);
        if (!image.data)
            image.data = &nothing; // an empty frame is a frame
        return true;
    });
    QVERIFY(engine.run(2, interval, 1000000));

    const int kept = samples.isEmpty() ? 1 : 2;
    QCOMPARE(engine.line->frames.size(), kept);
    for (int i = 0; i < kept; ++i) {
        const quint64 number = quint64(i + 2 - kept);
        const Line::CxFrameData &frame = *engine.line->frames[i];
        QVERIFY(frame.samples);
        QCOMPARE(frame.frameNumber, quint64(0xfffffffe) + number);
        QList<quint64> expected = samples;
        for (quint64 &sample : expected)
            sample += number * 1000000;
        QCOMPARE(samplesOf(frame), expected);
        QCOMPARE(frame.sampleSpan, samples.size() < 2 ? qint64(0) : qint64(samples.last() - samples.first()));
    }
}

void ThroughputLoopTest::spanOfAFrame_data()
{
    QTest::addColumn<qlonglong>("ticks");
    QTest::newRow("forward") << 2500LL;
    QTest::newRow("equal") << 0LL;
    QTest::newRow("backward") << -4000LL;
    QTest::newRow("beyond 32 bits") << 0x123456789abLL;
}

void ThroughputLoopTest::spanOfAFrame()
{
    QFETCH(qlonglong, ticks);
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, SpanFrames({ticks}));
    QVERIFY(engine.run(1, 8, 1000000));
    QCOMPARE(engine.line->frames.size(), 1);
    QCOMPARE(engine.line->frames.first()->sampleSpan, qint64(ticks));
    QCOMPARE(engine.line->statAvg, double(ticks) / 250.0);
    QCOMPARE(engine.line->statMin, double(ticks) / 250.0);
}

/// The size of a frame comes from its width and height in 32-bit arithmetic.
void ThroughputLoopTest::sizesOfTheRecordOnly()
{
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, [](ZU_IMG &image) {
        static const std::vector<unsigned long long> words = {11, 12, 13, 14};
        image.data = const_cast<unsigned long long *>(words.data());
        image.width = 0x80000010U; // 2^32 + 32 bytes
        image.height = 1;
        image.filledSize = 8;
        return true;
    });
    QVERIFY(engine.run(1, 8, 1000));
    QCOMPARE(samplesOf(*engine.line->frames.first()), QList<quint64>({11, 12, 13, 14}));
}

void ThroughputLoopTest::timestamps()
{
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, [](ZU_IMG &image) {
        static unsigned long long word = 0;
        image.data = &word;
        image.width = 4;
        image.height = 1;
        image.timestampSeconds = 0xffffffffU;
        image.timestampMicroseconds = 0xfffffff0U;
        return true;
    });
    QElapsedTimer outer;
    const qint64 before = QTime::currentTime().msecsSinceStartOfDay() * 1000LL;
    outer.start();
    QVERIFY(engine.run(1, 8, 1000));
    const qint64 longest = outer.nsecsElapsed() / 1000 + 2000;

    const Line::CxFrameData &frame = *engine.line->frames.first();
    const qint64 startOfRun = frame.cameraTimestamp - (0xffffffffLL * 1000000 + 0xfffffff0LL);
    QCOMPARE(startOfRun % 1000, qint64(0));
    QVERIFY(startOfRun >= 0 && startOfRun < microsecondsPerDay);
    // The test may run over midnight.
    QVERIFY((startOfRun - before + microsecondsPerDay) % microsecondsPerDay <= longest);
    const qint64 elapsed = frame.computerTimestamp - startOfRun;
    QVERIFY(elapsed >= 0 && elapsed <= longest);
    QVERIFY(engine.line->elapsedTimer.isValid());
}

void ThroughputLoopTest::computerTimestampsGoOn()
{
    EngineFixture engine;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(0));
    const Line &line = *engine.line;
    const auto elapsed = [&line] { return line.elapsedTimer.nsecsElapsed() / 1000; };
    QList<qint64> bounds = {elapsed()};
    for (int i = 0; i < 3; ++i) {
        QVERIFY(engine.deliver(1));
        bounds.append(elapsed());
    }
    QVERIFY(engine.line->stopMeasurement());
    for (int i = 0; i < 3; ++i) {
        const qint64 startOfRun = line.frames[i]->cameraTimestamp - (1000000 + i * 10000);
        const qint64 sinceStart = line.frames[i]->computerTimestamp - startOfRun;
        QVERIFY(sinceStart >= bounds[i] && sinceStart <= bounds[i + 1]);
    }
}

void ThroughputLoopTest::computerStampFollowsTheSampling()
{
    // Every word of 8 MB is copied, for which no processor is fast enough.
    constexpr qint64 shortestSampling = 20; // microseconds
    EngineFixture engine;
    CounterFrames frames;
    frames.width = frames.height = 2048;
    QList<qint64> captured; // microseconds since the start of the run
    engine.host.setImageSource(engine.camera, [&, line = engine.line.get()](ZU_IMG &image) {
        frames(image);
        captured.append(line->elapsedTimer.nsecsElapsed() / 1000);
        return true;
    });
    QVERIFY(engine.run(3, 8, 3000000));
    QCOMPARE(engine.line->frames.size(), 3);
    const qint64 startOfRun = engine.line->frames[0]->cameraTimestamp - 1000000;
    for (int i = 0; i < 3; ++i)
        QVERIFY(engine.line->frames[i]->computerTimestamp - startOfRun >= captured[i] + shortestSampling);
}

void ThroughputLoopTest::statistics()
{
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, SpanFrames({2500, 5000, 17501, 250}));
    QVERIFY(engine.run(4, 8, 1000000));
    double mean = 0.0;
    double n = 0.0;
    for (double value : {2500 / 250.0, 5000 / 250.0, 17501 / 250.0, 250 / 250.0}) {
        n += 1.0;
        mean = (1.0 / n) * value + (1.0 - 1.0 / n) * mean;
    }
    QVERIFY(engine.line->statAvg == mean); // to the last bit
    QCOMPARE(engine.line->statMax, 17501 / 250.0);
    QCOMPARE(engine.line->statMin, 1.0);
    QCOMPARE(engine.line->statCount, quint64(4));
}

void ThroughputLoopTest::statisticsRestart()
{
    EngineFixture engine;
    engine.line->statAvg = 5.0;
    engine.line->statMax = 6.0;
    engine.line->statMin = 7.0;
    engine.line->statCount = 8;
    QVERIFY(engine.run(0, 512, 1000));
    QCOMPARE(engine.line->statAvg, 0.0);
    QVERIFY(engine.line->statMax == std::numeric_limits<double>::min());
    QVERIFY(engine.line->statMin == std::numeric_limits<double>::max());
    QCOMPARE(engine.line->statCount, quint64(0));

    QVERIFY(engine.run(3, 512, 100000));
    QCOMPARE(engine.line->statCount, quint64(3));
    QVERIFY(engine.run(2, 512, 100000));
    QCOMPARE(engine.line->statCount, quint64(2));
    QCOMPARE(engine.line->frames.size(), 5);
}

void ThroughputLoopTest::emptyFrameCountsInTheStatistics()
{
    EngineFixture engine;
    QVERIFY(engine.run(2, 4, 1000)); // no samples
    QCOMPARE(engine.line->statCount, quint64(2));
    QCOMPARE(engine.line->statAvg, 0.0);
    QCOMPARE(engine.line->statMin, 0.0);
    QVERIFY(engine.line->statMax == std::numeric_limits<double>::min());
}

void ThroughputLoopTest::failedCapturesNeverEndTheLoop()
{
    EngineFixture engine;
    for (int nth : {1, 3, 4, 5})
        engine.host.fail(Failure::call(Function::GetImage, nth));
    QVERIFY(engine.run(3, 512, 100000));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({1, 2, 3}));
    QCOMPARE(engine.line->statCount, quint64(3));
    const QString image = QStringLiteral("image");
    const QString failed = QStringLiteral("image failed");
    const QStringList captures = engine.calls().filter(image);
    QCOMPARE(captures, QStringList({failed, image, failed, failed, failed, image, image, failed}));
    QCOMPARE(engine.log.messages().count(captureFailure), 5);
    QCOMPARE(engine.log.messages().size(), 6);
}

void ThroughputLoopTest::nullDataIsAFailure()
{
    EngineFixture engine;
    CounterFrames frames;
    engine.host.setImageSource(engine.camera, [frames, count = 0](ZU_IMG &image) mutable {
        frames(image);
        if (++count == 2)
            image.data = nullptr;
        return true;
    });
    QVERIFY(engine.run(3, 512, 100000));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({1, 3}));
    QCOMPARE(engine.log.messages().count(captureFailure), 2);
}

void ThroughputLoopTest::sourceFailureIsAFailure()
{
    EngineFixture engine;
    CounterFrames frames;
    engine.host.setImageSource(engine.camera, [frames](ZU_IMG &image) mutable {
        frames(image);
        return image.frameNumber % 2 == 0;
    });
    QVERIFY(engine.run(5, 512, 100000));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({2, 4}));
}

QTEST_APPLESS_MAIN(ThroughputLoopTest)
#include "ThroughputLoopTest.moc"

#include "tests/measurement/EngineFixture.h"
#include "tests/measurement/FrameLists.h"

#include <QMutexLocker>
#include <QtTest>

#include <limits>

using scripted::CounterFrames;

class ThroughputStoreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void capacity_data();
    void capacity();
    void smallerCapacityTrimsOlderRuns();
    void recordsOfEarlierRunsStay();
    void capacityFollowsTheLatestFrame();
    void clearDataDuringARun();
    void settingsEditedDuringARun();
};

void ThroughputStoreTest::capacity_data()
{
    QTest::addColumn<unsigned int>("interval"); // of frames of 100 words
    QTest::addColumn<qlonglong>("capacity");
    QTest::addColumn<int>("kept"); // of 20 frames
    QTest::newRow("nothing dropped") << 80U << 1000LL << 20;
    QTest::newRow("quotient plus one") << 80U << 50LL << 6;
    QTest::newRow("rest is dropped") << 80U << 59LL << 6;
    QTest::newRow("next quotient") << 80U << 60LL << 7;
    QTest::newRow("less than a frame") << 80U << 9LL << 1;
    QTest::newRow("zero") << 80U << 0LL << 1;
    QTest::newRow("minus five: the quotient is 0") << 80U << -5LL << 1;
    QTest::newRow("minus ten: none is allowed") << 80U << -10LL << 0;
    QTest::newRow("minus five of one sample") << 800U << -5LL << 0;
    QTest::newRow("largest of one sample") << 800U << std::numeric_limits<qlonglong>::max() << 20;
    QTest::newRow("smallest") << 800U << std::numeric_limits<qlonglong>::min() << 0;
    QTest::newRow("no samples") << 4U << 1000LL << 1;
    QTest::newRow("no samples, negative") << 4U << -1000LL << 1;
}

void ThroughputStoreTest::capacity()
{
    QFETCH(unsigned int, interval);
    QFETCH(qlonglong, capacity);
    QFETCH(int, kept);
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, numberedFrames(400));
    QVERIFY(engine.run(20, interval, capacity));
    QList<quint64> newest;
    for (int i = 20 - kept; i < 20; ++i)
        newest.append(quint64(i + 1));
    QCOMPARE(frameNumbers(*engine.line), newest);
    QCOMPARE(engine.line->statCount, quint64(20));
}

void ThroughputStoreTest::smallerCapacityTrimsOlderRuns()
{
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, numberedFrames(400));
    QVERIFY(engine.run(40, 80, 1000));
    QCOMPARE(engine.line->frames.size(), 40);
    QVERIFY(engine.run(1, 80, 20));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({39, 40, 41}));
}

void ThroughputStoreTest::recordsOfEarlierRunsStay()
{
    EngineFixture engine;
    QVERIFY(engine.run(3, 512, 100000));
    QVERIFY(engine.run(0, 512, 100000));
    QCOMPARE(engine.line->frames.size(), 3);
    QVERIFY(engine.run(2, 512, 100000));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({1, 2, 3, 4, 5}));
    engine.line->clearData();
    QVERIFY(engine.run(1, 512, 100000));
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({6}));
}

void ThroughputStoreTest::capacityFollowsTheLatestFrame()
{
    // 10 samples, 10 samples, 10 samples, then 2: at a capacity of 20 samples
    // three frames of ten are allowed, but eleven of two.
    EngineFixture engine;
    CounterFrames large = numberedFrames(400);
    engine.host.setImageSource(engine.camera, [large, count = 0](ZU_IMG &image) mutable {
        large(image);
        const int turn = count++;
        image.width = turn == 4 ? 80 : 400;
        if (turn == 5)
            image.width = 12; // no sample: only this frame stays
        return true;
    });
    QVERIFY(engine.start(80, 20));
    QVERIFY(engine.deliver(4));
    const auto kept = [&] {
        const QMutexLocker locker(&engine.line->mutex);
        return engine.line->frames.size();
    };
    QCOMPARE(kept(), 3);
    QVERIFY(engine.deliver(1));
    QCOMPARE(kept(), 4);
    QVERIFY(engine.deliver(1));
    QCOMPARE(kept(), 1);
}

void ThroughputStoreTest::clearDataDuringARun()
{
    EngineFixture engine;
    QVERIFY(engine.start());
    QVERIFY(engine.deliver(3));
    {
        const QMutexLocker locker(&engine.line->mutex);
        engine.line->clearData();
    }
    QVERIFY(engine.deliver(2));
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(frameNumbers(*engine.line), QList<quint64>({4, 5}));
    QCOMPARE(engine.line->statCount, quint64(5));
}

void ThroughputStoreTest::settingsEditedDuringARun()
{
    EngineFixture engine;
    engine.host.setImageSource(engine.camera, numberedFrames(400));
    QVERIFY(engine.start(80, 1000));
    QVERIFY(engine.deliver(3));
    {
        const QMutexLocker locker(&engine.line->mutex);
        engine.line->sampleInterval = 8;
        engine.line->maxSamples = 0;
    }
    QVERIFY(engine.deliver(3));
    QVERIFY(engine.line->stopMeasurement());
    QCOMPARE(engine.line->frames.size(), 6);
    QCOMPARE(engine.line->frames.last()->sampleCount, quint64(10));
}

QTEST_APPLESS_MAIN(ThroughputStoreTest)
#include "ThroughputStoreTest.moc"

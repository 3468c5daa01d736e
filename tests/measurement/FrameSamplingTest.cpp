#include "measurement/FrameSampling.h"
#include "measurement/RunningStatistics.h"

#include <QtTest>

#include <cstring>
#include <limits>
#include <vector>

using namespace measurement;

class FrameSamplingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frameSize_data();
    void frameSize();
    void plan_data();
    void plan();
    void everySampleLiesInside_data();
    void everySampleLiesInside();
    void gather_data();
    void gather();
    void span_data();
    void span();
    void runningStatistics();
    void runningStatisticsKeepTheirStartUntilAValueExceedsThem();
};

void FrameSamplingTest::frameSize_data()
{
    QTest::addColumn<quint32>("width");
    QTest::addColumn<quint32>("height");
    QTest::addColumn<quint32>("bytes");
    QTest::addColumn<quint32>("words");
    QTest::newRow("nothing") << 0U << 0U << 0U << 0U;
    QTest::newRow("less than a word") << 3U << 1U << 6U << 0U;
    QTest::newRow("one word") << 2U << 2U << 8U << 1U;
    QTest::newRow("rest is dropped") << 7U << 1U << 14U << 1U;
    QTest::newRow("16 MiB") << 4096U << 2048U << 16777216U << 2097152U;
    QTest::newRow("largest word count") << 0x7fffffffU << 1U << 0xfffffffeU << 0x1fffffffU;
    QTest::newRow("29 bits kept") << 0x80000000U << 1U << 0U << 0U;
    QTest::newRow("bit above is lost") << 0x80000010U << 1U << 0x20U << 4U;
    QTest::newRow("product wraps at 32 bits") << 65536U << 65537U << 0x20000U << 0x4000U;
}

void FrameSamplingTest::frameSize()
{
    QFETCH(quint32, width);
    QFETCH(quint32, height);
    QTEST(frameBytes(width, height), "bytes");
    QTEST(frameWords(width, height), "words");
}

void FrameSamplingTest::plan_data()
{
    QTest::addColumn<quint32>("width"); // of a single line
    QTest::addColumn<quint32>("interval");
    QTest::addColumn<quint64>("firstByte");
    QTest::addColumn<quint64>("count");
    QTest::newRow("empty frame") << 0U << 8U << quint64(0) << quint64(0);
    QTest::newRow("less than a word") << 3U << 8U << quint64(0) << quint64(0);
    QTest::newRow("one word") << 4U << 8U << quint64(0) << quint64(1);
    QTest::newRow("interval as long as the frame") << 2048U << 4096U << quint64(0) << quint64(1);
    QTest::newRow("interval one word longer") << 2048U << 4104U << quint64(0) << quint64(0);
    QTest::newRow("15999 words") << 4U * 15999 << 8U << quint64(0) << quint64(15999);
    QTest::newRow("16000 words") << 4U * 16000 << 8U << quint64(64000) << quint64(8000);
    QTest::newRow("16001 words") << 4U * 16001 << 8U << quint64(64000) << quint64(8001);
    QTest::newRow("15999 words at 4096") << 4U * 15999 << 4096U << quint64(0) << quint64(31);
    QTest::newRow("16000 words at 4096") << 4U * 16000 << 4096U << quint64(64000) << quint64(15);
    QTest::newRow("16 MiB at 4096") << 4096U * 2048 << 4096U << quint64(64000) << quint64(4080);
    QTest::newRow("interval 0") << 4096U << 0U << quint64(0) << quint64(0);
    QTest::newRow("interval 7") << 4096U << 7U << quint64(0) << quint64(0);
    QTest::newRow("interval 0, large frame") << 4U * 16000 << 0U << quint64(64000) << quint64(0);
    QTest::newRow("interval of 2^32 - 1") << 4096U << 0xffffffffU << quint64(0) << quint64(0);
    // Whole words decide the count: 15 bytes count as a step of one word, yet
    // only every 15th byte can hold a sample.
    QTest::newRow("interval 15") << 16U << 15U << quint64(0) << quint64(2);
    QTest::newRow("interval 9, last word ends with the frame") << 13U << 9U << quint64(0) << quint64(3);
    QTest::newRow("interval 9, last word ends behind it") << 12U << 9U << quint64(0) << quint64(2);
    QTest::newRow("interval 4097") << 4U * 15999 << 4097U << quint64(0) << quint64(31);
}

void FrameSamplingTest::plan()
{
    QFETCH(quint32, width);
    QFETCH(quint32, interval);
    const SamplePlan plan = planSamples(width, 1, interval);
    QTEST(quint64(plan.firstByte), "firstByte");
    QTEST(quint64(plan.count), "count");
    if (plan.count > 0)
        QCOMPARE(plan.stride, std::size_t(interval));
}

void FrameSamplingTest::everySampleLiesInside_data()
{
    QTest::addColumn<quint32>("interval");
    for (quint32 interval : {8U, 9U, 11U, 12U, 15U, 16U, 17U, 23U, 1000U, 4095U, 4097U, 51200U})
        QTest::addRow("interval %u", interval) << interval;
}

void FrameSamplingTest::everySampleLiesInside()
{
    QFETCH(quint32, interval);
    for (quint32 width = 1; width < 200000; width += width < 200 ? 1 : 777) {
        const SamplePlan plan = planSamples(width, 1, interval);
        const std::size_t words = frameWords(width, 1) - plan.firstByte / bytesPerWord;
        const std::size_t fullSteps = words / (interval / bytesPerWord);
        const auto end = [&](std::size_t count) { return plan.firstByte + (count - 1) * interval + 8; };
        if (plan.count > 0)
            QVERIFY2(end(plan.count) <= frameBytes(width, 1), qPrintable(QString::number(width)));
        // None is left out that would fit.
        QVERIFY2(plan.count == fullSteps || end(plan.count + 1) > frameBytes(width, 1),
                 qPrintable(QString::number(width)));
    }
}

void FrameSamplingTest::gather_data()
{
    QTest::addColumn<quint32>("words");
    QTest::addColumn<quint32>("interval");
    QTest::newRow("every word") << 100U << 8U;
    QTest::newRow("every third word") << 100U << 24U;
    QTest::newRow("between the words") << 100U << 13U;
    QTest::newRow("behind the start of a large frame") << 17000U << 4096U;
    for (const quint32 count : {2U, 47U, 48U, 49U, 55U, 56U, 57U, 63U, 64U, 65U, 128U, 129U})
        QTest::addRow("%u words", count) << count << 8U;
}

void FrameSamplingTest::gather()
{
    QFETCH(quint32, words);
    QFETCH(quint32, interval);
    // Exactly the frame, so that the address checker sees a read behind it.
    std::vector<std::byte> frame(std::size_t(words) * 8);
    for (std::size_t i = 0; i < frame.size(); ++i)
        frame[i] = std::byte((i * 131 + i / 256 * 17) & 0xff);
    const SamplePlan plan = planSamples(words * 4, 1, interval);
    QVERIFY(plan.count > 1);

    std::vector<Stamp> samples(plan.count);
    gatherSamples(frame.data(), plan, samples);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        Stamp expected = 0;
        std::memcpy(&expected, frame.data() + plan.firstByte + i * interval, sizeof expected);
        QCOMPARE(samples[i], expected);
    }
}

void FrameSamplingTest::span_data()
{
    QTest::addColumn<QList<quint64>>("stamps");
    QTest::addColumn<qint64>("span");
    const quint64 top = std::numeric_limits<quint64>::max();
    QTest::newRow("none") << QList<quint64>{} << qint64(0);
    QTest::newRow("one") << QList<quint64>{5} << qint64(0);
    QTest::newRow("two") << QList<quint64>{5, 12} << qint64(7);
    QTest::newRow("only the ends count") << QList<quint64>{5, 1000, 2, 6} << qint64(1);
    QTest::newRow("set back") << QList<quint64>{1000, 400} << qint64(-600);
    QTest::newRow("counter wrapped") << QList<quint64>{top - 9, 40} << qint64(50);
}

void FrameSamplingTest::span()
{
    QFETCH(QList<quint64>, stamps);
    const std::vector<Stamp> samples(stamps.begin(), stamps.end());
    QTEST(qint64(stampSpan(samples)), "span");
}

void FrameSamplingTest::runningStatistics()
{
    RunningStatistics statistics;
    double mean = 0.0;
    double n = 0.0;
    for (double value : {40.0, 10.0, 70.0, 0.1, -3.0}) {
        statistics.add(value);
        n += 1.0;
        mean = (1.0 / n) * value + (1.0 - 1.0 / n) * mean;
        QVERIFY(statistics.mean == mean); // to the last bit
    }
    QCOMPARE(statistics.count, 5ULL);
    QCOMPARE(statistics.maximum, 70.0);
    QCOMPARE(statistics.minimum, -3.0);
    QVERIFY(qAbs(statistics.mean - 23.42) < 1e-9);
}

void FrameSamplingTest::runningStatisticsKeepTheirStartUntilAValueExceedsThem()
{
    RunningStatistics statistics;
    QVERIFY(statistics.maximum == 2.2250738585072014e-308);
    QVERIFY(statistics.minimum == 1.7976931348623157e308);
    statistics.add(0.0);
    QVERIFY(statistics.maximum == 2.2250738585072014e-308);
    QCOMPARE(statistics.minimum, 0.0);
    QCOMPARE(statistics.mean, 0.0);
}

QTEST_APPLESS_MAIN(FrameSamplingTest)
#include "FrameSamplingTest.moc"

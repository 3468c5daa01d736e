#include "measurement/CameraLineData.h"
#include "tests/measurement/model/RecordedLine.h"

#include <QTest>

#include <array>

using Stamps = std::vector<quint64>;
using Doubles = std::vector<double>;
Q_DECLARE_METATYPE(Stamps)
Q_DECLARE_METATYPE(Doubles)

class FrameSpeedsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void intervals_data();
    void intervals();
    void absentSamples();
    void absentArrays();
};

void FrameSpeedsTest::intervals_data()
{
    QTest::addColumn<Stamps>("stamps"); // ticks
    QTest::addColumn<int>("required");  // MB/s
    QTest::addColumn<Doubles>("speeds");
    QTest::addColumn<Doubles>("deltas");
    QTest::addColumn<Stamps>("times");

    QTest::newRow("no stamp") << Stamps{} << 150 << Doubles{} << Doubles{} << Stamps{};
    QTest::newRow("one stamp") << Stamps{5000} << 150 << Doubles{} << Doubles{} << Stamps{};
    QTest::newRow("two stamps") << Stamps{5000, 7500} << 150 << Doubles{100} << Doubles{500} << Stamps{10};
    QTest::newRow("times are cut to whole microseconds")
        << Stamps{0, 2501, 5249, 5250} << 0 << Doubles{1000 / (2501 / 250.0), 1000 / (2748 / 250.0), 250000}
        << Doubles{-1000, -1000, -1000} << Stamps{10, 20, 21};
    QTest::newRow("equal neighbours are left out")
        << Stamps{100, 100, 1350, 1350, 1350, 3850, 3850} << 150 << Doubles{200, 100} << Doubles{-250, 500}
        << Stamps{5, 15};
    QTest::newRow("all equal") << Stamps{7, 7, 7} << 150 << Doubles{} << Doubles{} << Stamps{};
    QTest::newRow("required below 0")
        << Stamps{0, 2500} << -2 << Doubles{100} << Doubles{-1020} << Stamps{10};

    // 2^64 - 1250 ticks; times count from the first stamp, so the last is back at 5.
    const double back = 18446744073709550366.0 / 250.0;
    QTest::newRow("a stamp that steps back")
        << Stamps{2500, 1250, 3750} << 1 << Doubles{1000 / back, 1000 / 10.0}
        << Doubles{back - 1000, 10.0 - 1000} << Stamps{Q_UINT64_C(18446744073709550366) / 250, 5};
}

void FrameSpeedsTest::intervals()
{
    QFETCH(Stamps, stamps);
    QFETCH(int, required);
    QFETCH(Doubles, speeds);
    QFETCH(Doubles, deltas);
    QFETCH(Stamps, times);

    RecordedLine recorded;
    const CxCameraLineData::CxFrameData &frame = recorded.addFrameOfTicks(0, stamps);
    const std::size_t room = stamps.size() < 2 ? 0 : stamps.size() - 1;
    Doubles gotSpeeds(room);
    Doubles gotDeltas(room);
    Stamps gotTimes(room);
    const unsigned int count =
        frame.calculateFrameSpeeds(1000, required, gotSpeeds.data(), gotDeltas.data(), gotTimes.data());
    QCOMPARE(count, static_cast<unsigned int>(speeds.size()));
    gotSpeeds.resize(count);
    gotDeltas.resize(count);
    gotTimes.resize(count);
    QVERIFY(gotSpeeds == speeds);
    QVERIFY(gotDeltas == deltas);
    QVERIFY(gotTimes == times);
}

void FrameSpeedsTest::absentSamples()
{
    CxCameraLineData::CxFrameData frame;
    frame.sampleCount = 5;
    std::array<double, 4> speeds = {};
    std::array<double, 4> deltas = {};
    std::array<unsigned long long, 4> times = {};
    QCOMPARE(frame.calculateFrameSpeeds(1000, 150, speeds.data(), deltas.data(), times.data()), 0U);
}

void FrameSpeedsTest::absentArrays()
{
    RecordedLine recorded;
    const CxCameraLineData::CxFrameData &frame = recorded.addFrame(0, {0, 10, 15});
    QCOMPARE(frame.calculateFrameSpeeds(1000, 150, nullptr, nullptr, nullptr), 2U);

    Doubles values(2);
    QCOMPARE(frame.calculateFrameSpeeds(1000, 150, values.data(), nullptr, nullptr), 2U);
    QVERIFY((values == Doubles{100, 200}));
    QCOMPARE(frame.calculateFrameSpeeds(1000, 150, nullptr, values.data(), nullptr), 2U);
    QVERIFY((values == Doubles{500, -250}));
    Stamps times(2);
    QCOMPARE(frame.calculateFrameSpeeds(1000, 150, nullptr, nullptr, times.data()), 2U);
    QVERIFY((times == Stamps{10, 15}));
}

QTEST_APPLESS_MAIN(FrameSpeedsTest)
#include "FrameSpeedsTest.moc"

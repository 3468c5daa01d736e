#include "host/core/simulation/LinkModel.h"

#include <QTest>

#include <limits>

using namespace host;

namespace {

constexpr Ticks Never = std::numeric_limits<Ticks>::max();

CameraSettings link(double megabytesPerSecond)
{
    CameraSettings settings;
    settings.linkMBps = megabytesPerSecond;
    return settings;
}

} // namespace

class LinkModelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void steadyRate();
    void stalls_data();
    void stalls();
    void stallsMultiply();
    void timeWhenSent_data();
    void timeWhenSent();
    void deadLinkNeverSends();
    void jitterStaysInItsBounds();
    void jitterIsConstantInASlot();
    void jitterDependsOnSeedAndCamera();
    void integralEqualsTheSumOverTheTicks();
};

void LinkModelTest::steadyRate()
{
    const LinkModel model(link(400.0), 1, 0);
    const auto segment = model.segmentFrom(12345);
    QCOMPARE(segment.begin, Ticks{12345});
    QCOMPARE(segment.end, Never);
    QCOMPARE(segment.rate, std::int64_t{400'000'000});
    QCOMPARE(model.bytesBetween(0, TicksPerSecond), 400e6);
    QCOMPARE(model.bytesBetween(1000, 1001), 1.6);
    QCOMPARE(model.bytesBetween(7, 7), 0.0);
}

void LinkModelTest::stalls_data()
{
    QTest::addColumn<qint64>("tick");
    QTest::addColumn<qint64>("rate");
    QTest::addColumn<qint64>("end");
    QTest::newRow("before") << qint64{0} << qint64{100'000'000} << qint64{1000};
    QTest::newRow("last tick before") << qint64{999} << qint64{100'000'000} << qint64{1000};
    QTest::newRow("first stalled tick") << qint64{1000} << qint64{25'000'000} << qint64{1300};
    QTest::newRow("last stalled tick") << qint64{1299} << qint64{25'000'000} << qint64{1300};
    QTest::newRow("after") << qint64{1300} << qint64{100'000'000} << qint64{6000};
    QTest::newRow("second period") << qint64{6000} << qint64{25'000'000} << qint64{6300};
    QTest::newRow("far away") << qint64{5'000'001'299} << qint64{25'000'000} << qint64{5'000'001'300};
}

void LinkModelTest::stalls()
{
    QFETCH(qint64, tick);
    CameraSettings settings = link(100.0);
    settings.stalls = {{1000, 5000, 300, 0.75}};
    const auto segment = LinkModel(settings, 1, 0).segmentFrom(tick);
    QTEST(qint64{segment.rate}, "rate");
    QTEST(qint64{segment.end}, "end");
}

void LinkModelTest::stallsMultiply()
{
    CameraSettings settings = link(100.0);
    settings.stalls = {{0, 0, 100, 0.5}, {50, 0, 100, 0.75}};
    const LinkModel model(settings, 1, 0);
    QCOMPARE(model.rateAt(0), std::int64_t{50'000'000});
    QCOMPARE(model.rateAt(50), std::int64_t{12'500'000});
    QCOMPARE(model.rateAt(100), std::int64_t{25'000'000});
    QCOMPARE(model.rateAt(150), std::int64_t{100'000'000});
}

void LinkModelTest::timeWhenSent_data()
{
    QTest::addColumn<qint64>("start");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("expected");
    // 0.4 bytes a tick; stands still from 1000 to 1300
    QTest::newRow("nothing") << qint64{10} << qint64{0} << qint64{10};
    QTest::newRow("whole ticks") << qint64{0} << qint64{2} << qint64{5};
    QTest::newRow("rounded up") << qint64{0} << qint64{1} << qint64{3};
    QTest::newRow("up to the stall") << qint64{0} << qint64{400} << qint64{1000};
    QTest::newRow("across the stall") << qint64{0} << qint64{402} << qint64{1305};
    QTest::newRow("begins in the stall") << qint64{1100} << qint64{4} << qint64{1310};
}

void LinkModelTest::timeWhenSent()
{
    QFETCH(qint64, start);
    QFETCH(qint64, bytes);
    CameraSettings settings = link(100.0);
    settings.stalls = {{1000, 0, 300, 1.0}};
    const auto time = LinkModel(settings, 1, 0).timeWhenSent(start, bytes, 10'000);
    QVERIFY(time.has_value());
    QTEST(qint64{*time}, "expected");
}

void LinkModelTest::deadLinkNeverSends()
{
    CameraSettings settings = link(100.0);
    settings.stalls = {{10, 1000, 1000, 1.0}};
    const LinkModel model(settings, 1, 0);
    QCOMPARE(model.timeWhenSent(0, 4, Never).value_or(-1), Ticks{10});
    QVERIFY(!model.timeWhenSent(0, 5, 10'000'000).has_value());
    QVERIFY(!model.timeWhenSent(0, 4, 9).has_value());
}

void LinkModelTest::jitterStaysInItsBounds()
{
    CameraSettings settings = link(100.0);
    settings.jitter = {0.2, 1000};
    const LinkModel model(settings, 7, 3);
    double sum = 0.0;
    std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
    std::int64_t highest = 0;
    constexpr int Slots = 10'000;
    for (int slot = 0; slot < Slots; ++slot) {
        const std::int64_t rate = model.rateAt(Ticks{slot} * 1000);
        lowest = std::min(lowest, rate);
        highest = std::max(highest, rate);
        sum += static_cast<double>(rate);
    }
    QVERIFY(lowest >= 80'000'000 && lowest < 80'100'000);
    QVERIFY(highest <= 120'000'000 && highest > 119'900'000);
    // standard error of the mean: 0.2 / sqrt(3 * 10000) = 0.12 %
    QVERIFY(qAbs(sum / Slots - 100e6) < 0.5e6);
}

void LinkModelTest::jitterIsConstantInASlot()
{
    CameraSettings settings = link(100.0);
    settings.jitter = {0.2, 1000};
    const LinkModel model(settings, 7, 3);
    QCOMPARE(model.rateAt(5000), model.rateAt(5999));
    QVERIFY(model.rateAt(5999) != model.rateAt(6000));
    QCOMPARE(model.segmentFrom(5500).end, Ticks{6000});
}

void LinkModelTest::jitterDependsOnSeedAndCamera()
{
    CameraSettings settings = link(100.0);
    settings.jitter = {0.2, 1000};
    const LinkModel model(settings, 7, 3);
    QCOMPARE(LinkModel(settings, 7, 3).rateAt(777'777), model.rateAt(777'777));
    QVERIFY(LinkModel(settings, 8, 3).rateAt(777'777) != model.rateAt(777'777));
    QVERIFY(LinkModel(settings, 7, 4).rateAt(777'777) != model.rateAt(777'777));
}

void LinkModelTest::integralEqualsTheSumOverTheTicks()
{
    CameraSettings settings = link(93.7);
    settings.jitter = {0.3, 2511};
    settings.stalls = {{100, 707, 33, 0.4}, {9000, 0, 1234, 1.0}};
    const LinkModel model(settings, 3, 0);
    WideAmount sum = 0;
    for (Ticks t = 57; t < 20'000; ++t)
        sum += model.rateAt(t);
    QVERIFY(sum == model.amountBetween(57, 20'000));
    QCOMPARE(model.bytesBetween(57, 20'000), static_cast<double>(sum) / AmountPerByte);
}

QTEST_APPLESS_MAIN(LinkModelTest)
#include "LinkModelTest.moc"

#include "measurement/Saturate.h"

#include <QTest>

#include <limits>

namespace {

constexpr qint64 lowest = std::numeric_limits<qint64>::min();
constexpr qint64 highest = std::numeric_limits<qint64>::max();

} // namespace

class SaturateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void truncated_data();
    void truncated();
    void sums();
    void products();
};

void SaturateTest::truncated_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<qint64>("expected");
    const double infinity = std::numeric_limits<double>::infinity();
    QTest::newRow("toward zero") << 2.9 << qint64(2);
    QTest::newRow("toward zero from below") << -2.9 << qint64(-2);
    QTest::newRow("NaN") << std::numeric_limits<double>::quiet_NaN() << qint64(0);
    QTest::newRow("infinity") << infinity << highest;
    QTest::newRow("-infinity") << -infinity << lowest;
    QTest::newRow("2^63") << 0x1p63 << highest;
    QTest::newRow("-2^63") << -0x1p63 << lowest;
    QTest::newRow("largest that fits") << 9223372036854774784.0 << Q_INT64_C(9223372036854774784);
    QTest::newRow("largest double") << std::numeric_limits<double>::max() << highest;
}

void SaturateTest::truncated()
{
    QFETCH(double, value);
    QFETCH(qint64, expected);
    QCOMPARE(measurement::truncateSaturated(value), expected);
}

void SaturateTest::sums()
{
    using measurement::addSaturated;
    using measurement::subtractSaturated;
    QCOMPARE(addSaturated(3, -5), qint64(-2));
    QCOMPARE(addSaturated(highest, 1), highest);
    QCOMPARE(addSaturated(lowest, -1), lowest);
    QCOMPARE(addSaturated(lowest, highest), qint64(-1));
    QCOMPARE(subtractSaturated(3, 5), qint64(-2));
    QCOMPARE(subtractSaturated(0, lowest), highest);
    QCOMPARE(subtractSaturated(lowest, 1), lowest);
    QCOMPARE(subtractSaturated(highest, -1), highest);
    QCOMPARE(subtractSaturated(-1, lowest), highest);
}

void SaturateTest::products()
{
    using measurement::multiplySaturated;
    QCOMPARE(multiplySaturated(3, -5), qint64(-15));
    QCOMPARE(multiplySaturated(10, highest), highest);
    QCOMPARE(multiplySaturated(-10, lowest), highest);
    QCOMPARE(multiplySaturated(10, lowest), lowest);
    QCOMPARE(multiplySaturated(-10, highest), lowest);
    QCOMPARE(multiplySaturated(0, lowest), qint64(0));
}

QTEST_APPLESS_MAIN(SaturateTest)
#include "SaturateTest.moc"

#include "ui/TimeAxis.h"

#include <QTest>

#include <limits>

namespace {

constexpr qint64 least = std::numeric_limits<qint64>::min();
constexpr qint64 most = std::numeric_limits<qint64>::max();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr qint64 tenOClock = Q_INT64_C(36000000000); // microseconds

} // namespace

class TimeAxisTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeMicroseconds_data();
    void wholeMicroseconds();
    void timeOfDay_data();
    void timeOfDay();
    void columnWidth_data();
    void columnWidth();
    void narrowestView_data();
    void narrowestView();
};

void TimeAxisTest::wholeMicroseconds_data()
{
    QTest::addColumn<qint64>("origin");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<qint64>("floor");
    QTest::addColumn<qint64>("ceil");
    QTest::newRow("now") << tenOClock << 0.0 << tenOClock << tenOClock;
    QTest::newRow("the view at first") << tenOClock << -20.0 << tenOClock - 20000000 << tenOClock - 20000000;
    QTest::newRow("between, before") << tenOClock << -0.0000015 << tenOClock - 2 << tenOClock - 1;
    QTest::newRow("between, after") << tenOClock << 0.0000015 << tenOClock + 1 << tenOClock + 2;
    QTest::newRow("before midnight") << Q_INT64_C(5) << -1.0 << Q_INT64_C(-999995) << Q_INT64_C(-999995);
    QTest::newRow("zoomed out beyond the range, left")
        << tenOClock << -1e200 << least + tenOClock << least + tenOClock;
    QTest::newRow("zoomed out beyond the range, right") << tenOClock << 1e200 << most << most;
    QTest::newRow("before the range") << Q_INT64_C(-1) << -1e200 << least << least;
    QTest::newRow("infinite") << tenOClock << infinity << most << most;
    QTest::newRow("no number") << tenOClock << notANumber << tenOClock << tenOClock;
}

void TimeAxisTest::wholeMicroseconds()
{
    QFETCH(qint64, origin);
    QFETCH(double, seconds);
    QTEST(timeaxis::floorMicroseconds(origin, seconds), "floor");
    QTEST(timeaxis::ceilMicroseconds(origin, seconds), "ceil");
}

void TimeAxisTest::timeOfDay_data()
{
    QTest::addColumn<QTime>("time");
    QTest::addColumn<qint64>("microseconds");
    QTest::newRow("midnight") << QTime(0, 0) << qint64(0);
    QTest::newRow("ten") << QTime(10, 0) << tenOClock;
    QTest::newRow("a millisecond") << QTime(0, 0, 0, 1) << qint64(1000);
    QTest::newRow("the day's last") << QTime(23, 59, 59, 999) << Q_INT64_C(86399999000);
    QTest::newRow("invalid") << QTime() << qint64(0);
    QTest::newRow("no time of day") << QTime(25, 0) << qint64(0);
}

void TimeAxisTest::timeOfDay()
{
    QFETCH(QTime, time);
    QTEST(timeaxis::microsecondsOfDay(time), "microseconds");
}

void TimeAxisTest::columnWidth_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<int>("pixels");
    QTest::addColumn<double>("milliseconds");
    QTest::newRow("20 s on 1000 pixels") << -20.0 << 0.0 << 1000 << 20.0;
    QTest::newRow("1 s on 1600 pixels") << 3.0 << 4.0 << 1600 << 0.625;
    QTest::newRow("one pixel") << -1.0 << 0.0 << 1 << 1000.0;
    QTest::newRow("no width yet") << -20.0 << 0.0 << 0 << 20000.0;
    QTest::newRow("negative width") << -20.0 << 0.0 << -5 << 20000.0;
}

void TimeAxisTest::columnWidth()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    QFETCH(int, pixels);
    QTEST(timeaxis::millisecondsPerPixel(lower, upper, pixels), "milliseconds");
}

void TimeAxisTest::narrowestView_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<bool>("tooNarrow");
    QTest::newRow("20 s") << -20.0 << 0.0 << false;
    QTest::newRow("a second") << -1.0 << 0.0 << false;
    QTest::newRow("just less than a second") << -0.9999999 << 0.0 << true;
    QTest::newRow("0.9 s") << -7.9 << -7.0 << true;
    QTest::newRow("1.9 s") << -1.9 << 0.0 << false;
    QTest::newRow("nothing") << -5.0 << -5.0 << true;
    QTest::newRow("upside down, 2 s") << 2.0 << 0.0 << false;
    QTest::newRow("upside down, 0.5 s") << 0.5 << 0.0 << true;
    QTest::newRow("beyond all integers") << -1e200 << 1e200 << false;
    QTest::newRow("no number") << notANumber << 0.0 << true;
}

void TimeAxisTest::narrowestView()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    QTEST(timeaxis::isTooNarrow(lower, upper), "tooNarrow");
}

QTEST_APPLESS_MAIN(TimeAxisTest)
#include "TimeAxisTest.moc"

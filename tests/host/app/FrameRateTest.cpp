#include "host/app/FrameRate.h"

#include "host/app/PictureGrabber.h"

#include <QtTest>

using host::FrameRate;
using host::PicturePace;
using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

class FrameRateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void countsRegularFrames_data();
    void countsRegularFrames();
    void isZeroBeforeTheSecondFrame();
    void followsAChangeWithinASecond();
    void fallsWhenFramesStayAway();
    void clearForgets();
    void pictures_data();
    void pictures();

private:
    const FrameRate::Time m_start{std::chrono::hours(5)};
};

void FrameRateTest::countsRegularFrames_data()
{
    QTest::addColumn<int>("intervalUs");
    QTest::addColumn<double>("rate");
    QTest::newRow("fast") << 100 << 10000.0;
    QTest::newRow("usual") << 25000 << 40.0;
    QTest::newRow("one a second") << 1000000 << 1.0;
    QTest::newRow("slower than the window") << 4000000 << 0.25;
}

void FrameRateTest::countsRegularFrames()
{
    QFETCH(int, intervalUs);
    QFETCH(double, rate);
    FrameRate frames;
    FrameRate::Time now = m_start;
    const int count = std::max(3, 2500000 / intervalUs);
    for (int i = 0; i < count; ++i)
        frames.add(now += microseconds(intervalUs));
    QVERIFY(qAbs(frames.value(now) / rate - 1) < 0.001);
    // Just before the next frame it is still the same.
    QVERIFY(qAbs(frames.value(now + microseconds(intervalUs)) / rate - 1) < 0.001);
}

void FrameRateTest::isZeroBeforeTheSecondFrame()
{
    FrameRate frames;
    QCOMPARE(frames.value(m_start), 0.0);
    frames.add(m_start);
    QCOMPARE(frames.value(m_start), 0.0);
    frames.add(m_start); // no time between them
    QCOMPARE(frames.value(m_start), 0.0);
    frames.add(m_start + milliseconds(100));
    QCOMPARE(frames.value(m_start + milliseconds(100)), 20.0);
}

void FrameRateTest::followsAChangeWithinASecond()
{
    FrameRate frames;
    FrameRate::Time now = m_start;
    for (int i = 0; i < 200; ++i)
        frames.add(now += milliseconds(10));
    for (int i = 0; i < 21; ++i)
        frames.add(now += milliseconds(50));
    QVERIFY(qAbs(frames.value(now) - 20.0) < 0.5);
}

void FrameRateTest::fallsWhenFramesStayAway()
{
    FrameRate frames;
    for (int i = 0; i < 50; ++i)
        frames.add(m_start + milliseconds(20 * i));
    const FrameRate::Time last = m_start + milliseconds(980);
    QCOMPARE(frames.value(last + milliseconds(500)), 2.0);
    QCOMPARE(frames.value(last + seconds(10)), 0.1);
}

void FrameRateTest::clearForgets()
{
    FrameRate frames;
    frames.add(m_start);
    frames.add(m_start + milliseconds(10));
    frames.clear();
    QCOMPARE(frames.value(m_start + milliseconds(10)), 0.0);
}

void FrameRateTest::pictures_data()
{
    QTest::addColumn<int>("framesPerSecond");
    QTest::addColumn<int>("picturesPerSecond");
    QTest::newRow("slow camera") << 5 << 5;
    QTest::newRow("just as fast") << 30 << 30;
    QTest::newRow("a little faster") << 40 << 30;
    QTest::newRow("much faster") << 5000 << 30;
}

void FrameRateTest::pictures()
{
    QFETCH(int, framesPerSecond);
    QFETCH(int, picturesPerSecond);
    constexpr int duration = 10;
    PicturePace pace;
    int pictures = 0;
    for (int i = 0; i < duration * framesPerSecond; ++i)
        pictures += pace.isDue(m_start + microseconds(1000000LL * i / framesPerSecond));
    QVERIFY2(qAbs(pictures - duration * picturesPerSecond) <= 2, qPrintable(QString::number(pictures)));
}

QTEST_GUILESS_MAIN(FrameRateTest)
#include "FrameRateTest.moc"

#include "ui/CellWidgets.h"

#include <QTest>

#include <limits>

/// Numbers as the camera table shows them.
class CellTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeNumber_data();
    void wholeNumber();
};

void CellTextTest::wholeNumber_data()
{
    using Limits = std::numeric_limits<double>;
    const QString lowest = "-2147483648";
    const QString highest = "2147483647";
    QTest::addColumn<double>("value");
    QTest::addColumn<QString>("text");
    QTest::newRow("0") << 0.0 << "0";
    QTest::newRow("-0") << -0.0 << "0";
    QTest::newRow("0.9") << 0.9 << "0";
    QTest::newRow("-0.9") << -0.9 << "0";
    QTest::newRow("99.999") << 99.999 << "99";
    QTest::newRow("-1.9") << -1.9 << "-1";
    QTest::newRow("NaN") << Limits::quiet_NaN() << "0";
    QTest::newRow("2^31 - 2") << 2147483646.0 << "2147483646";
    QTest::newRow("2^31 - 0.5") << 2147483647.5 << highest;
    QTest::newRow("2^31") << 2147483648.0 << highest;
    QTest::newRow("2^32 + 5") << 4294967301.0 << highest;
    QTest::newRow("largest") << Limits::max() << highest;
    QTest::newRow("infinite") << Limits::infinity() << highest;
    QTest::newRow("1 - 2^31") << -2147483647.0 << "-2147483647";
    QTest::newRow("-2^31") << -2147483648.0 << lowest;
    QTest::newRow("-2^31 - 1") << -2147483649.0 << lowest;
    QTest::newRow("lowest") << Limits::lowest() << lowest;
    QTest::newRow("negative infinite") << -Limits::infinity() << lowest;
}

void CellTextTest::wholeNumber()
{
    QFETCH(double, value);
    QTEST(cells::wholeNumber(value), "text");
}

QTEST_APPLESS_MAIN(CellTextTest)
#include "CellTextTest.moc"

#include "measurement/CsvText.h"

#include <QTest>

#include <bit>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace measurement::csv;

namespace {

/// What follows the text may be overwritten, up to here and no further.
struct Scratch
{
    char text[textRoom];
    char guard = '#';
};

QByteArray realText(double value)
{
    Scratch scratch;
    const char *end = writeReal(scratch.text, value);
    return scratch.guard == '#' ? QByteArray(scratch.text, static_cast<int>(end - scratch.text)) : "overrun";
}

QByteArray counterText(const DecimalCounter &counter)
{
    Scratch scratch;
    const char *end = counter.write(scratch.text);
    return scratch.guard == '#' ? QByteArray(scratch.text, static_cast<int>(end - scratch.text)) : "overrun";
}

template <typename Integer> QByteArray integerText(Integer value, char *(*write)(char *, Integer))
{
    Scratch scratch;
    const char *end = write(scratch.text, value);
    return scratch.guard == '#' ? QByteArray(scratch.text, static_cast<int>(end - scratch.text)) : "overrun";
}

/// Compares with Qt's text; a macro for each of millions would take too long.
class Comparison
{
public:
    void compare(double value)
    {
        ++m_count;
        const QByteArray expected = QString::number(value, 'g', 6).toLatin1();
        const QByteArray actual = realText(value);
        if (actual != expected && m_difference.isEmpty())
            m_difference = QStringLiteral("%1 instead of %2 for 0x%3")
                               .arg(QString(actual), QString(expected))
                               .arg(std::bit_cast<quint64>(value), 16, 16, QLatin1Char('0'));
    }

    void compareBothSigns(double value)
    {
        compare(value);
        compare(-value);
    }

    void compareAround(double value, int steps)
    {
        double below = value;
        double above = value;
        compare(value);
        for (int i = 0; i < steps; ++i) {
            below = std::nextafter(below, 0.0);
            above = std::nextafter(above, std::numeric_limits<double>::infinity());
            compare(below);
            compare(above);
        }
    }

    QString difference() const { return m_difference; }
    qint64 count() const { return m_count; }

private:
    QString m_difference;
    qint64 m_count = 0;
};

double fromBits(quint64 bits)
{
    return std::bit_cast<double>(bits);
}

} // namespace

class CsvTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reals_data();
    void reals();
    void anyBitPattern();
    void everyBinaryExponent();
    void exactTies();
    void nearTies();
    void powersOfTen();
    void wholeNumbers();
    void reportValues();
    void integers_data();
    void integers();
    void integersLikeQt();
    void counter_data();
    void counter();
    void counterOfAnySteps();
};

void CsvTextTest::reals_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("expected");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    const auto row = [](const char *expected, double value) {
        QTest::newRow(qPrintable(QString("%1 as %2").arg(value, 0, 'g', 17).arg(expected)))
            << value << QByteArray(expected);
    };
    row("0", 0.0);
    row("0", -0.0);
    row("nan", nan);
    row("nan", -nan);
    row("inf", infinity);
    row("-inf", -infinity);
    row("1", 1.0);
    row("10", 10.0);
    row("100000", 100000.0);
    row("1e+06", 1000000.0);
    row("1.04858e+06", 1048576.0);
    row("99.9999", 99.9999);
    row("100", 99.99999999);
    row("-12.5", -12.5);
    row("0.0001", 0.0001);
    row("0.00012345", 0.00012345);
    row("1e-05", 0.00001);
    // Ties go away from zero, not to the even digit.
    row("100001", 100000.5);
    row("-100001", -100000.5);
    row("100002", 100001.5);
    row("1e+06", 999999.5);
    row("1.00001e+06", 1000005.0);
    row("2.00002e+06", 2000015.0);
    row("0.000976563", 0.0009765625);
    row("-0.0195313", -0.01953125);
    // The nearest below a tie that its neighbourhood rounds to.
    row("5.7646e+17", 5.7646049999999994e17);
    row("5.76461e+17", 5.764605e17);
    row("2.22507e-308", std::numeric_limits<double>::min());
    row("1.79769e+308", std::numeric_limits<double>::max());
    row("-1.79769e+308", std::numeric_limits<double>::lowest());
    row("4.94066e-324", std::numeric_limits<double>::denorm_min());
}

void CsvTextTest::reals()
{
    QFETCH(double, value);
    QFETCH(QByteArray, expected);
    QCOMPARE(realText(value), expected);
    QVERIFY(expected.size() <= static_cast<int>(longestReal));
}

void CsvTextTest::anyBitPattern()
{
    std::mt19937_64 random(1);
    Comparison qt;
    for (int i = 0; i < 300000; ++i)
        qt.compare(fromBits(random()));
    QCOMPARE(qt.difference(), QString());
}

/// Subnormals included.
void CsvTextTest::everyBinaryExponent()
{
    std::mt19937_64 random(2);
    constexpr quint64 mantissas = (quint64(1) << 52) - 1;
    Comparison qt;
    for (quint64 exponent = 0; exponent < 2047; ++exponent) {
        const quint64 base = exponent << 52;
        for (const quint64 mantissa : {quint64(0), quint64(1), mantissas, mantissas / 2, mantissas / 2 + 1})
            qt.compareBothSigns(fromBits(base | mantissa));
        const bool formattedHere = exponent > 1023 - 80 && exponent < 1023 + 70;
        for (int i = 0; i < (formattedHere ? 2000 : 20); ++i)
            qt.compare(fromBits(base | (random() & mantissas)));
    }
    QCOMPARE(qt.difference(), QString());
    QVERIFY(qt.count() > 300000);
}

/// Values whose seventh digit is an exact five: they have few enough bits.
void CsvTextTest::exactTies()
{
    std::mt19937_64 random(3);
    std::uniform_int_distribution<quint64> six(100000, 999999);
    Comparison qt;
    for (int i = 0; i < 50000; ++i) {
        const auto digits = static_cast<double>(six(random));
        qt.compareBothSigns(digits + 0.5);
        qt.compare(digits * 10.0 + 5.0);
        double unit = 100.0;
        for (int decade = 2; decade < 12; ++decade, unit *= 10.0)
            qt.compare(digits * unit + unit / 2.0);
    }
    // Below: 2^-n is an exact decimal fraction that ends in five.
    for (int places = 1; places <= 22; ++places) {
        for (int i = 0; i < 10000; ++i)
            qt.compare(std::ldexp(static_cast<double>(random() % 100000000 | 1), -places));
    }
    QCOMPARE(qt.difference(), QString());
}

void CsvTextTest::nearTies()
{
    std::mt19937_64 random(4);
    std::uniform_int_distribution<quint64> six(100000, 999999);
    Comparison qt;
    for (int decade = -30; decade <= 25; ++decade) {
        const double unit = std::pow(10.0, decade);
        for (int i = 0; i < 2000; ++i)
            qt.compareAround((static_cast<double>(six(random)) + 0.5) * unit, 2);
        qt.compareAround(999999.5 * unit, 50);
        qt.compareAround(100000.5 * unit, 50);
    }
    QCOMPARE(qt.difference(), QString());
}

void CsvTextTest::powersOfTen()
{
    Comparison qt;
    for (int exponent = -323; exponent <= 308; ++exponent)
        qt.compareAround(QByteArray("1e" + QByteArray::number(exponent)).toDouble(), 100);
    QCOMPARE(qt.difference(), QString());
}

void CsvTextTest::wholeNumbers()
{
    std::mt19937_64 random(5);
    Comparison qt;
    for (int i = 0; i < 200000; ++i)
        qt.compare(i);
    for (int bits = 1; bits <= 64; ++bits) {
        for (int i = 0; i < 5000; ++i)
            qt.compare(static_cast<double>(random() >> (64 - bits)));
    }
    QCOMPARE(qt.difference(), QString());
}

/// Speeds, levels and percentages as reports hold them.
void CsvTextTest::reportValues()
{
    std::mt19937_64 random(6);
    std::uniform_int_distribution<int> ticks(1, 100000);
    std::uniform_int_distribution<int> bytes(0, 1 << 28);
    Comparison qt;
    for (int i = 0; i < 150000; ++i) {
        const double duration = ticks(random) / 250.0;
        const double level = bytes(random) + duration * 400.0;
        qt.compare(4096.0 / duration);
        qt.compare(level);
        qt.compare(level / (1 << 28) * 100.0);
    }
    QCOMPARE(qt.difference(), QString());
}

void CsvTextTest::integers_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QByteArray>("expected");
    QTest::newRow("0") << qint64(0) << QByteArray("0");
    QTest::newRow("-1") << qint64(-1) << QByteArray("-1");
    QTest::newRow("inner zeros") << Q_INT64_C(1000000020000003) << QByteArray("1000000020000003");
    QTest::newRow("lowest") << std::numeric_limits<qint64>::min() << QByteArray("-9223372036854775808");
    QTest::newRow("highest") << std::numeric_limits<qint64>::max() << QByteArray("9223372036854775807");
}

void CsvTextTest::integers()
{
    QFETCH(qint64, value);
    QFETCH(QByteArray, expected);
    QCOMPARE(integerText(value, writeSigned), expected);
    QVERIFY(expected.size() <= static_cast<int>(longestInteger));
    QCOMPARE(integerText(std::numeric_limits<quint64>::max(), writeUnsigned),
             QByteArray("18446744073709551615"));
}

void CsvTextTest::integersLikeQt()
{
    std::mt19937_64 random(7);
    std::vector<quint64> values;
    for (quint64 power = 1; power < Q_UINT64_C(10000000000000000000); power *= 10)
        values.insert(values.end(), {power - 1, power, power + 1, power * 9});
    for (int bits = 1; bits <= 64; ++bits) {
        for (int i = 0; i < 2000; ++i)
            values.push_back(random() >> (64 - bits));
    }
    for (quint64 i = 0; i < 20000; ++i)
        values.push_back(i);
    for (const quint64 value : values) {
        const auto asSigned = static_cast<qint64>(value);
        QCOMPARE(integerText(value, writeUnsigned), QByteArray::number(value));
        QCOMPARE(integerText(asSigned, writeSigned), QByteArray::number(asSigned));
        QCOMPARE(integerText(-(asSigned / 2), writeSigned), QByteArray::number(-(asSigned / 2)));
    }
}

void CsvTextTest::counter_data()
{
    QTest::addColumn<quint64>("start");
    QTest::addColumn<quint64>("step");
    QTest::newRow("standing") << quint64(10) << quint64(0);
    QTest::newRow("from 0") << quint64(0) << quint64(1);
    QTest::newRow("offsets") << quint64(4096) << quint64(4096);
    QTest::newRow("past eight digits") << quint64(99999000) << quint64(4);
    QTest::newRow("nanoseconds of a day") << quint64(36000000000000) << quint64(10480);
    QTest::newRow("past sixteen digits") << quint64(9999999999990000) << quint64(9);
    QTest::newRow("largest step") << quint64(5) << quint64(99999999);
    QTest::newRow("larger step") << quint64(5) << quint64(100000000);
    QTest::newRow("huge step") << quint64(5) << quint64(1234567890123456789);
    QTest::newRow("backward") << quint64(1005) << quint64(0) - 3;
    QTest::newRow("past 64 bits") << std::numeric_limits<quint64>::max() - 5000 << quint64(7);
}

void CsvTextTest::counter()
{
    QFETCH(quint64, start);
    QFETCH(quint64, step);
    DecimalCounter counter;
    counter.set(start);
    QCOMPARE(counterText(counter), QByteArray::number(start));
    const DecimalCounter::Step prepared = DecimalCounter::stepOf(step);
    quint64 value = start;
    for (int i = 0; i < 20000; ++i) {
        value += step;
        if (!counter.advance(prepared))
            counter.set(value);
        if (counterText(counter) != QByteArray::number(value))
            QCOMPARE(counterText(counter), QByteArray::number(value));
    }
}

void CsvTextTest::counterOfAnySteps()
{
    std::mt19937_64 random(11);
    for (int run = 0; run < 3000; ++run) {
        quint64 value = random() >> random() % 64;
        DecimalCounter counter;
        counter.set(value);
        for (int i = 0; i < 100; ++i) {
            const quint64 step = random() >> (run % 2 ? random() % 64 : 36 + random() % 28);
            value += step;
            if (!counter.advance(DecimalCounter::stepOf(step)))
                counter.set(value);
            if (counterText(counter) != QByteArray::number(value))
                QCOMPARE(counterText(counter), QByteArray::number(value));
        }
    }
}

QTEST_APPLESS_MAIN(CsvTextTest)
#include "CsvTextTest.moc"

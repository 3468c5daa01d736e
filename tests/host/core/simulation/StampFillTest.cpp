#include "host/core/simulation/StampFill.h"

#include <QTest>

#include <random>
#include <vector>

using namespace host;

Q_DECLARE_METATYPE(StampFill)

class StampFillTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalsOneWordAtATime_data() { addFills(); }
    void equalsOneWordAtATime();
    void leavesTheWordsAroundAlone_data() { addFills(); }
    void leavesTheWordsAroundAlone();
    void picksTheFastest();

private:
    static void addFills();
};

namespace {

constexpr std::uint64_t Untouched = 0x5a5a5a5a5a5a5a5a;
constexpr std::size_t Margin = 16;

std::uint64_t stamp(const StampSequence &stamps, std::size_t i)
{
    return stamps.base + ((stamps.time + i * stamps.step) >> 32);
}

StampSequence randomStamps(std::mt19937_64 &random)
{
    // Steps from far below a tick to so far above that the last time just fits.
    return {random(), random() >> 32, random() >> (14 + random() % 50)};
}

} // namespace

void StampFillTest::addFills()
{
    QTest::addColumn<StampFill>("fill");
    QTest::newRow("portable") << portableStampFill();
    QTest::newRow("AVX2") << avx2StampFill();
}

/// Every start within a line of the cache, every number of words up to some
/// lines, then long ones.
void StampFillTest::equalsOneWordAtATime()
{
    QFETCH(StampFill, fill);
    if (!fill)
        QSKIP("not on this processor");
    std::mt19937_64 random(7);
    std::vector<std::uint64_t> words(4096 + 8);
    for (std::size_t count = 0; count <= 4096; count += count < 80 ? 1 : 251) {
        for (std::size_t start = 0; start < 8; ++start) {
            const StampSequence stamps = randomStamps(random);
            std::fill(words.begin(), words.end(), Untouched);
            fill(words.data() + start, count, stamps);
            for (std::size_t i = 0; i < count; ++i) {
                if (words[start + i] != stamp(stamps, i))
                    QFAIL(qPrintable(QString("word %1 of %2 at %3").arg(i).arg(count).arg(start)));
            }
        }
    }
}

void StampFillTest::leavesTheWordsAroundAlone()
{
    QFETCH(StampFill, fill);
    if (!fill)
        QSKIP("not on this processor");
    std::mt19937_64 random(8);
    for (std::size_t count = 0; count < 80; ++count) {
        for (std::size_t start = 0; start < 8; ++start) {
            const std::size_t first = Margin + start;
            std::vector<std::uint64_t> words(first + count + Margin, Untouched);
            fill(words.data() + first, count, randomStamps(random));
            QCOMPARE(std::count(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(first), Untouched),
                     static_cast<std::ptrdiff_t>(first));
            QCOMPARE(std::count(words.end() - Margin, words.end(), Untouched),
                     static_cast<std::ptrdiff_t>(Margin));
        }
    }
}

void StampFillTest::picksTheFastest()
{
    const StampFill expected = avx2StampFill() ? avx2StampFill() : portableStampFill();
    QVERIFY(bestStampFill() == expected);
}

QTEST_APPLESS_MAIN(StampFillTest)
#include "StampFillTest.moc"

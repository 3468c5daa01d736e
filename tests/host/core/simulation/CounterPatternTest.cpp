#include "host/core/simulation/CounterPattern.h"

#include <QTest>

using namespace host;

namespace {

CameraSettings link(double megabytesPerSecond)
{
    CameraSettings settings;
    settings.linkMBps = megabytesPerSecond;
    return settings;
}

std::vector<std::uint64_t> fill(const LinkModel &model, std::int64_t bytes, LinkPosition position = {},
                                Ticks offset = 0)
{
    std::vector<std::uint64_t> words(static_cast<std::size_t>((bytes + 7) / 8));
    fillCounterPattern(words, bytes, model, position, offset);
    return words;
}

/// The definition, tick by tick.
std::vector<std::uint64_t> reference(const LinkModel &model, std::int64_t bytes, LinkPosition position)
{
    std::vector<std::uint64_t> words;
    WideAmount sent = -position.lead;
    Ticks t = position.tick;
    for (std::int64_t end = 8; end < bytes + 8; end += 8) {
        const WideAmount wanted = static_cast<WideAmount>(std::min(end, bytes)) * AmountPerByte;
        // The moment lies in [t, t + 1), or is t exactly.
        while (sent + model.rateAt(t) < wanted)
            sent += model.rateAt(t++);
        const bool atTheEndOfTheTick = sent + model.rateAt(t) == wanted;
        words.push_back(static_cast<std::uint64_t>(atTheEndOfTheTick ? t + 1 : t));
    }
    return words;
}

} // namespace

class CounterPatternTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void steadyLink_data();
    void steadyLink();
    void acrossAStall();
    void halfRate();
    void leadAndOffset();
    void partialLastWord();
    void singleWordIsExact();
    void equalsTheDefinition_data();
    void equalsTheDefinition();
    void longFrameStaysExact_data();
    void longFrameStaysExact();
};

void CounterPatternTest::steadyLink_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<int>("numerator");
    QTest::addColumn<int>("denominator");
    // a word takes 2000 / (MB/s) ticks
    QTest::newRow("400 MB/s") << 400.0 << 5 << 1;
    QTest::newRow("300 MB/s") << 300.0 << 20 << 3;
    QTest::newRow("350 MB/s") << 350.0 << 40 << 7;
    QTest::newRow("4000 MB/s") << 4000.0 << 1 << 2;
    QTest::newRow("0.01 MB/s") << 0.01 << 200'000 << 1;
}

void CounterPatternTest::steadyLink()
{
    QFETCH(double, rate);
    QFETCH(int, numerator);
    QFETCH(int, denominator);
    const LinkModel model(link(rate), 1, 0);
    const auto words = fill(model, 80'000);
    QCOMPARE(words.size(), std::size_t{10'000});
    for (std::size_t i = 0; i < words.size(); ++i)
        QCOMPARE(words[i],
                 (i + 1) * static_cast<std::uint64_t>(numerator) / static_cast<unsigned>(denominator));
}

void CounterPatternTest::acrossAStall()
{
    CameraSettings settings = link(400.0); // 5 ticks a word
    settings.stalls = {{52, 0, 1000, 1.0}};
    const auto words = fill(LinkModel(settings, 1, 0), 160);
    QCOMPARE(words[9], std::uint64_t{50});
    QCOMPARE(words[10], std::uint64_t{1055}); // 2 ticks before the stall, 3 after it
    QCOMPARE(words[11], std::uint64_t{1060});
}

void CounterPatternTest::halfRate()
{
    CameraSettings settings = link(400.0);
    settings.stalls = {{50, 0, 100, 0.5}};
    const auto words = fill(LinkModel(settings, 1, 0), 200);
    QCOMPARE(words[9], std::uint64_t{50});
    QCOMPARE(words[10], std::uint64_t{60});
    QCOMPARE(words[19], std::uint64_t{150});
    QCOMPARE(words[20], std::uint64_t{155});
}

void CounterPatternTest::leadAndOffset()
{
    const LinkModel model(link(400.0), 1, 0);
    // The frame begins half a tick after tick 100.
    const auto words = fill(model, 32, {100, 200'000'000}, 1'000'000);
    QCOMPARE(words[0], std::uint64_t{1'000'105});
    QCOMPARE(words[3], std::uint64_t{1'000'120});
}

void CounterPatternTest::partialLastWord()
{
    const LinkModel model(link(400.0), 1, 0); // 1.6 bytes a tick
    QCOMPARE(fill(model, 18).back(), std::uint64_t{11});
    QCOMPARE(fill(model, 2).back(), std::uint64_t{1});
    QCOMPARE(fill(model, 22).size(), std::size_t{3});
    CameraSettings settings = link(400.0);
    settings.stalls = {{11, 0, 100, 1.0}};
    QCOMPARE(fill(LinkModel(settings, 1, 0), 20).back(), std::uint64_t{112});
}

/// Only words that follow another one may be early.
void CounterPatternTest::singleWordIsExact()
{
    const LinkModel model(link(666.666667), 1, 0); // 3 - 1.5e-9 ticks a word
    QCOMPARE(fill(model, 8).front(), std::uint64_t{2});
    QCOMPARE(fill(model, 16).front(), std::uint64_t{3});
}

void CounterPatternTest::equalsTheDefinition_data()
{
    QTest::addColumn<double>("rate");
    QTest::addColumn<double>("jitter");
    QTest::addColumn<qint64>("slot");
    QTest::addColumn<qint64>("bytes");
    QTest::addColumn<qint64>("start");
    QTest::addColumn<qint64>("lead");
    QTest::newRow("jitter") << 400.0 << 0.25 << qint64{2500} << qint64{200'000} << qint64{0} << qint64{0};
    QTest::newRow("fast link") << 9000.0 << 0.25 << qint64{2500} << qint64{400'002} << qint64{17}
                               << qint64{5};
    QTest::newRow("slow link") << 3.7 << 0.5 << qint64{2501} << qint64{4'006} << qint64{2500}
                               << qint64{999'999};
    QTest::newRow("tiny frame") << 100.0 << 0.1 << qint64{2500} << qint64{2} << qint64{99} << qint64{12'345};
    QTest::newRow("jitter down to 0")
        << 50.0 << 1.0 << qint64{2500} << qint64{30'000} << qint64{1} << qint64{1};
}

void CounterPatternTest::equalsTheDefinition()
{
    QFETCH(double, rate);
    QFETCH(double, jitter);
    QFETCH(qint64, slot);
    QFETCH(qint64, bytes);
    QFETCH(qint64, start);
    QFETCH(qint64, lead);
    CameraSettings settings = link(rate);
    settings.jitter = {jitter, slot};
    settings.stalls = {{500, 7001, 100, 1.0}, {900, 1003, 50, 0.3}};
    const LinkModel model(settings, 11, 0);
    QCOMPARE(fill(model, bytes, {start, lead}), reference(model, bytes, {start, lead}));
}

void CounterPatternTest::longFrameStaysExact_data()
{
    QTest::addColumn<double>("rate");
    QTest::newRow("prime") << 399.999937;
    QTest::newRow("slow prime") << 1.000003;
    QTest::newRow("fast") << 12'345.678901;
}

void CounterPatternTest::longFrameStaysExact()
{
    QFETCH(double, rate);
    const LinkModel model(link(rate), 1, 0);
    const auto words = fill(model, 16 * 1024 * 1024);
    const std::int64_t bytesASecond = model.rateAt(0);
    int early = 0;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto exact = static_cast<std::uint64_t>(static_cast<WideAmount>(i + 1) * 8 * AmountPerByte /
                                                      static_cast<WideAmount>(bytesASecond));
        QVERIFY(words[i] == exact || words[i] == exact + 1);
        early += words[i] != exact ? 1 : 0;
    }
    // A share of at most 2e-6 lies close enough below a whole tick.
    QVERIFY2(early <= 8, qPrintable(QString::number(early)));
}

QTEST_APPLESS_MAIN(CounterPatternTest)
#include "CounterPatternTest.moc"

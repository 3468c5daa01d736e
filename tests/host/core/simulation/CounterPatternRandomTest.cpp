// The counter pattern against a plain version of its formula, word for word, on
// links and frames drawn at random.

#include "host/core/simulation/CounterPattern.h"

#include <QTest>

#include <random>

using namespace host;

namespace {

constexpr Amount AmountPerWord = 8 * AmountPerByte;
constexpr std::size_t ChunkWords = 4096;

struct Frame
{
    std::int64_t bytes = 0;
    LinkPosition position;
    Ticks offset = 0;
};

/// First word's exact time and, in 32.32 fixed point, the rest, a word at a time.
void plainRun(std::vector<std::uint64_t> &words, std::uint64_t count, Ticks base, Amount first,
              std::int64_t bytesASecond)
{
    const auto rate = static_cast<std::uint64_t>(bytesASecond);
    const std::uint64_t step = (static_cast<std::uint64_t>(AmountPerWord) << 32) / rate;
    const std::size_t chunk = std::clamp<std::size_t>((std::uint64_t{1} << 63) / (step + 1), 1, ChunkWords);
    auto sent = static_cast<std::uint64_t>(first);
    for (std::uint64_t done = 0; done < count; done += chunk) {
        const std::uint64_t inChunk = std::min<std::uint64_t>(chunk, count - done);
        auto time = static_cast<std::uint64_t>((static_cast<WideAmount>(sent % rate) << 32) /
                                               static_cast<WideAmount>(rate));
        if (inChunk > 1)
            time += ChunkWords;
        for (std::uint64_t i = 0; i < inChunk; ++i)
            words.push_back(static_cast<std::uint64_t>(base) + sent / rate + ((time + i * step) >> 32));
        sent += static_cast<std::uint64_t>(AmountPerWord) * inChunk;
    }
}

std::vector<std::uint64_t> plainPattern(const LinkModel &link, const Frame &frame)
{
    std::vector<std::uint64_t> words;
    const auto fullWords = static_cast<std::uint64_t>(frame.bytes / 8);
    WideAmount next = frame.position.lead + AmountPerWord;
    Ticks t = frame.position.tick;
    while (words.size() < fullWords) {
        const LinkModel::Segment segment = link.segmentFrom(t);
        const WideAmount carried = static_cast<WideAmount>(segment.rate) * (segment.end - t);
        if (carried >= next) {
            const WideAmount fitting = 1 + (carried - next) / AmountPerWord;
            const WideAmount left = static_cast<WideAmount>(fullWords - words.size());
            const auto count = static_cast<std::uint64_t>(std::min(fitting, left));
            plainRun(words, count, frame.offset + t, static_cast<Amount>(next), segment.rate);
            next += static_cast<WideAmount>(AmountPerWord) * static_cast<WideAmount>(count);
        }
        if (words.size() < fullWords) {
            next -= carried;
            t = segment.end;
        }
    }
    if (frame.bytes % 8 == 0)
        return words;
    next -= AmountPerByte * (8 - frame.bytes % 8);
    for (;;) {
        const LinkModel::Segment segment = link.segmentFrom(t);
        const WideAmount carried = static_cast<WideAmount>(segment.rate) * (segment.end - t);
        if (carried >= next) {
            words.push_back(
                static_cast<std::uint64_t>(frame.offset + t + static_cast<Ticks>(next / segment.rate)));
            return words;
        }
        next -= carried;
        t = segment.end;
    }
}

class Draw
{
public:
    explicit Draw(std::uint64_t seed)
        : m_random(seed)
    {
    }

    std::int64_t whole(std::int64_t least, std::int64_t most)
    {
        return std::uniform_int_distribution<std::int64_t>(least, most)(m_random);
    }

    /// All orders of magnitude alike.
    double spread(double least, double most)
    {
        return std::exp(std::uniform_real_distribution<double>(std::log(least), std::log(most))(m_random));
    }

    bool once(int in) { return whole(1, in) == 1; }

private:
    std::mt19937_64 m_random;
};

CameraSettings randomLink(Draw &draw, double megabytesPerSecond)
{
    CameraSettings settings;
    settings.linkMBps = draw.once(3) ? std::round(megabytesPerSecond + 1) : megabytesPerSecond;
    if (!draw.once(3))
        settings.jitter = {draw.spread(1e-6, 1.0), draw.whole(250, 250'000)};
    for (std::int64_t stalls = draw.whole(0, 3); stalls > 0; --stalls) {
        const Ticks period = draw.once(3) ? 0 : draw.whole(2000, 1'000'000);
        const Ticks length = draw.whole(1, period == 0 ? 100'000 : period / 2);
        const double depth = draw.once(2) ? 1.0 : draw.spread(0.01, 1.0);
        settings.stalls.push_back({draw.whole(0, 1'000'000), period, length, depth});
    }
    return settings;
}

/// About as long as the link needs for some hundred changes of its rate at most.
Frame randomFrame(Draw &draw, double megabytesPerSecond)
{
    const auto longest = std::clamp<std::int64_t>(std::llround(megabytesPerSecond * 1000), 64, 400'000);
    Frame frame;
    frame.bytes = draw.once(10) ? draw.whole(1, 64) : draw.whole(1, longest);
    if (!draw.once(3))
        frame.bytes = std::max<std::int64_t>(2, frame.bytes / 8 * 8);
    frame.position = {draw.whole(0, 10'000'000'000), draw.once(2) ? 0 : draw.whole(0, 400'000'000)};
    frame.offset = draw.once(3) ? 0 : draw.whole(0, std::int64_t{1} << 50);
    return frame;
}

} // namespace

class CounterPatternRandomTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void equalsThePlainFormula();
};

void CounterPatternRandomTest::equalsThePlainFormula()
{
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        Draw draw(seed);
        const double megabytesPerSecond = draw.spread(0.01, 100'000.0);
        const LinkModel link(randomLink(draw, megabytesPerSecond), seed, seed % 5);
        const Frame frame = randomFrame(draw, megabytesPerSecond);
        const std::size_t size = static_cast<std::size_t>((frame.bytes + 7) / 8);
        // Frames begin anywhere in a line of the cache.
        const std::size_t start = static_cast<std::size_t>(draw.whole(0, 7));
        std::vector<std::uint64_t> words(start + size);
        fillCounterPattern(std::span(words).subspan(start), frame.bytes, link, frame.position, frame.offset);
        words.erase(words.begin(), words.begin() + static_cast<std::ptrdiff_t>(start));
        if (words != plainPattern(link, frame))
            QFAIL(qPrintable(QString("seed %1, %2 bytes").arg(seed).arg(frame.bytes)));
    }
}

QTEST_APPLESS_MAIN(CounterPatternRandomTest)
#include "CounterPatternRandomTest.moc"

#include "tests/measurement/model/RandomCase.h"

#include <algorithm>
#include <limits>

using measurement::throughput::Settings;

namespace {

/// Draws with convenience; every value comes from the one generator.
class Dice
{
public:
    explicit Dice(std::mt19937_64 &random)
        : m_random(random)
    {
    }

    quint64 between(quint64 low, quint64 high)
    {
        return std::uniform_int_distribution<quint64>(low, high)(m_random);
    }
    qint64 signedBetween(qint64 low, qint64 high)
    {
        return std::uniform_int_distribution<qint64>(low, high)(m_random);
    }
    bool hits(double share) { return std::uniform_real_distribution<double>()(m_random) < share; }
    template <typename T> T oneOf(std::initializer_list<T> values)
    {
        return values.begin()[between(0, values.size() - 1)];
    }

private:
    std::mt19937_64 &m_random;
};

quint64 drawInterval(const CaseFamily &family, Dice &dice)
{
    if (dice.hits(family.repeats))
        return 0;
    if (dice.hits(family.backward))
        return 0 - dice.between(1, 5000);
    if (dice.hits(family.huge))
        return dice.oneOf<quint64>({Q_UINT64_C(1) << 40, (Q_UINT64_C(1) << 52) - 1, Q_UINT64_C(1) << 52,
                                    (Q_UINT64_C(1) << 53) + 1, Q_UINT64_C(1) << 62, Q_UINT64_C(1) << 63});
    if (dice.hits(family.stalls))
        return dice.between(10000, 400000);
    return dice.between(family.shortest / family.grain, family.longest / family.grain) * family.grain;
}

quint64 drawCount(Dice &dice)
{
    return dice.hits(0.4) ? dice.oneOf<quint64>({0, 1, 2, 3, 9, 16, 17, 18, 127, 128, 129, 130, 257, 258})
                          : dice.between(2, 700);
}

qint64 strangeTime(Dice &dice)
{
    return dice.oneOf<qint64>({std::numeric_limits<qint64>::min(), std::numeric_limits<qint64>::min() + 1000,
                               -1, 0, 1, Q_INT64_C(1) << 60, std::numeric_limits<qint64>::max() - 1000,
                               std::numeric_limits<qint64>::max()});
}

void drawFrames(RandomCase &drawn, const CaseFamily &family, Dice &dice)
{
    const quint64 frames = dice.between(1, 24);
    const quint64 commonCount = drawCount(dice);
    const quint64 longestPause = dice.oneOf<quint64>({0, 3, 50, 2000, 100000});
    const bool aroundZero = dice.hits(0.1);
    quint64 now = aroundZero ? 0 : dice.between(1, Q_UINT64_C(86400000000) * 250);
    // Where the counter starts, which may be shortly before it starts again.
    const quint64 counter = dice.hits(0.05) ? 0 - now - dice.between(1, 3000000) : 0;
    qint64 shift = aroundZero ? -dice.signedBetween(0, 20000) : 0;
    for (quint64 frame = 0; frame < frames; ++frame) {
        std::vector<quint64> stamps(family.mixedLengths ? drawCount(dice) : commonCount);
        quint64 stopped = 0; // intervals for which the counter stands still
        for (std::size_t i = 0; i < stamps.size(); ++i) {
            if (stopped == 0 && dice.hits(family.repeats / 20))
                stopped = dice.between(1, 400);
            now += i == 0 || stopped > 0 ? 0 : drawInterval(family, dice);
            stopped -= stopped > 0;
            stamps[i] = now + counter;
        }
        qint64 timestamp =
            (stamps.empty() ? 0 : static_cast<qint64>((stamps.front() - counter) / 250)) + shift;
        if (family.disorder && dice.hits(0.3))
            timestamp += dice.signedBetween(-30000, 30000);
        // Ends exactly at 0, which reads as "nothing to drain from".
        if (aroundZero && stamps.size() > 1 && dice.hits(0.2))
            timestamp = -static_cast<qint64>((stamps.back() - stamps.front()) / 250);
        if (family.strangeNumbers && dice.hits(0.1))
            timestamp = strangeTime(dice);
        if (family.strangeNumbers && dice.hits(0.1))
            drawn.recording.append(timestamp, stamps, dice.oneOf<qint64>({0, -1000, 1}));
        else
            drawn.recording.append(timestamp, stamps);
        now += dice.between(0, longestPause) * 250;
    }
}

void drawWindow(RandomCase &drawn, const CaseFamily &family, Dice &dice)
{
    const measurement::throughput::Frame first = drawn.recording.at(0);
    const measurement::throughput::Frame last = drawn.recording.at(drawn.recording.size() - 1);
    const double length =
        std::clamp(static_cast<double>(last.timestamp) - static_cast<double>(first.timestamp), 1000.0, 1e7);
    const qint64 width = static_cast<qint64>(length);
    Settings &settings = drawn.settings;
    settings.from = first.timestamp;
    settings.to = last.timestamp;
    if (dice.hits(0.8) && first.timestamp < (Q_INT64_C(1) << 50) && first.timestamp > -(Q_INT64_C(1) << 50)) {
        settings.from = first.timestamp + dice.signedBetween(-width / 2, width);
        settings.to = settings.from + dice.signedBetween(-width / 20, 2 * width);
    }
    if (family.strangeNumbers && dice.hits(0.2))
        settings.from = strangeTime(dice);
    if (family.strangeNumbers && dice.hits(0.2))
        settings.to = strangeTime(dice);

    const double infinity = std::numeric_limits<double>::infinity();
    const double perPixel = length / 1000.0 / static_cast<double>(dice.oneOf<quint64>({3, 50, 400, 1500}));
    settings.msPerPixel = dice.oneOf<double>({perPixel, perPixel, perPixel, 0.0, 0.05});
    settings.meanSpan = dice.oneOf<double>({0.0, length / 100, length / 10, length});
    if (family.strangeNumbers && dice.hits(0.2))
        settings.msPerPixel = dice.oneOf<double>({-0.01, -1.0, 1e300, infinity, -infinity, infinity * 0.0});
    if (family.strangeNumbers && dice.hits(0.2))
        settings.meanSpan = dice.oneOf<double>({-5.0, 1e300, infinity, infinity * 0.0});
}

} // namespace

RandomCase drawCase(const CaseFamily &family, std::mt19937_64 &random)
{
    Dice dice(random);
    RandomCase drawn;
    drawFrames(drawn, family, dice);
    drawWindow(drawn, family, dice);
    Settings &settings = drawn.settings;
    settings.sampleInterval = 4096;
    settings.requiredMBps = family.requiredMBps;
    settings.bufferSize = dice.oneOf<quint64>({0, 4096, 32768, 200000, Q_UINT64_C(1) << 40});
    if (family.largeBuffer)
        settings.bufferSize = Q_UINT64_C(1) << 62;
    settings.resetBufferLevel = dice.hits(0.4);
    if (family.strangeNumbers) {
        settings.sampleInterval =
            dice.oneOf<quint32>({0, 1, 1024, 4096, std::numeric_limits<quint32>::max()});
        settings.requiredMBps = dice.oneOf<qint32>({-5, 0, 1, 400, std::numeric_limits<qint32>::max()});
        settings.bufferSize = dice.oneOf<quint64>({0, 1, 32768, std::numeric_limits<quint64>::max()});
    }
    drawn.statisticsOnly = dice.hits(0.2);
    return drawn;
}

void drawChange(RandomCase &drawn, const CaseFamily &family, std::mt19937_64 &random)
{
    Dice dice(random);
    Settings &settings = drawn.settings;
    if (dice.hits(0.7))
        drawWindow(drawn, family, dice);
    else // slides a little
        settings.from = std::min(settings.from, Q_INT64_C(1) << 60) + dice.signedBetween(0, 3000);
    if (dice.hits(family.largeBuffer ? 0.02 : 0.2))
        settings.requiredMBps = dice.oneOf<qint32>({-5, 0, 390, 400, 410, 800});
    if (dice.hits(family.largeBuffer ? 0.02 : 0.2))
        settings.bufferSize = dice.oneOf<quint64>({0, 4096, 32768, 200000, Q_UINT64_C(1) << 40});
    if (dice.hits(0.1))
        settings.sampleInterval = dice.oneOf<quint32>({0, 1024, 4096, 4200});
    if (dice.hits(0.2))
        settings.resetBufferLevel = !settings.resetBufferLevel;
    drawn.statisticsOnly = dice.hits(0.2);
}

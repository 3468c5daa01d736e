#include "measurement/FrameOutline.h"

#include <algorithm>

namespace measurement::throughput {

Extrema extremaOfClimbs(const quint64 *stamps, std::size_t count)
{
    Extrema result = {0, ~0ULL};
    for (std::size_t i = 0; i < count; ++i) {
        const quint64 interval = stamps[i + 1] - stamps[i];
        if (interval == 0)
            continue;
        result.longest = std::max<quint64>(result.longest, interval);
        result.shortest = std::min<quint64>(result.shortest, interval);
    }
    return result;
}

std::size_t FrameOutline::blockSize(std::size_t block) const
{
    return std::min<std::size_t>(blockLength, m_count - 1 - block * blockLength);
}

void FrameOutline::describe(const quint64 *stamps, quint64 count, BlockOutline *place, const Kernels &kernels)
{
    m_startLevel = -1.0;
    m_plain = false;
    m_repeats = false;
    const std::size_t blocks = stamps ? blockCount(count) : 0;
    m_ownBlocks.reset(place || blocks == 0 ? nullptr : new BlockOutline[blocks]);
    m_blocks = place ? place : m_ownBlocks.get();
    m_stamps = stamps;
    m_count = count;
    m_blockCount = blocks;
    if (blocks == 0)
        return;

    m_extrema = {0, ~0ULL};
    for (std::size_t block = 0; block < m_blockCount; ++block) {
        Extrema extrema = kernels.extrema(blockStamps(block), blockSize(block));
        if (extrema.longest > longestPlainInterval)
            return;
        if (extrema.shortest == 0) {
            m_repeats = true;
            extrema = extremaOfClimbs(blockStamps(block), blockSize(block));
        }
        m_blocks[block].extrema = extrema;
        m_extrema.longest = std::max(m_extrema.longest, extrema.longest);
        m_extrema.shortest = std::min(m_extrema.shortest, extrema.shortest);
    }
    // Short enough that the stamps climb from the first to the last.
    m_plain = m_extrema.longest > 0 &&
              static_cast<double>(m_extrema.longest) * static_cast<double>(count - 1) < 0x1p62;
    m_lastTime = static_cast<qint64>((stamps[count - 1] - stamps[0]) / 250);
}

} // namespace measurement::throughput

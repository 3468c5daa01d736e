#pragma once

#include "measurement/ThroughputKernels.h"

#include <QtGlobal>

#include <memory>

/// What the throughput model keeps of each frame, so that a pass over a long
/// recording costs as much as it has frames and pixels, not as it has stamps.
namespace measurement::throughput {

/// What the level of the buffer depends on beside the stamps.
struct LevelKey
{
    quint32 sampleInterval = 0; ///< bytes between two stamps
    qint32 requiredMBps = 0;    ///< what the sensor produces
    quint64 bufferSize = 0;     ///< bytes

    bool operator==(const LevelKey &) const = default;
};

/// What is kept of blockLength intervals.
struct BlockOutline
{
    Extrema extrema;   ///< of the intervals that are not empty; longest 0 where all are
    double startLevel; ///< bytes
    double peak;       ///< bytes, highest level before it is cut to the size
    qint32 binade;     ///< of levels for which `hasTies` was found out, by its exponent; 0: none
    bool hasTies;      ///< a sum may depend on whether the level is even, see LevelFollower
};

constexpr std::size_t blockCount(quint64 stamps)
{
    return stamps < 2 ? 0 : static_cast<std::size_t>((stamps - 2) / blockLength + 1);
}

/// Of the intervals between count + 1 stamps that are not empty.
Extrema extremaOfClimbs(const quint64 *stamps, std::size_t count);

/// What is kept of one frame: the extremes of its intervals, which never change,
/// and how the level went through it the last time somebody followed it.
///
/// Not synchronized: whoever made the frame has it to itself until it is
/// published; from then on it belongs to the holder of the engine's mutex.
class FrameOutline
{
public:
    FrameOutline() = default;
    FrameOutline(const FrameOutline &) = delete;
    FrameOutline &operator=(const FrameOutline &) = delete;

    /// Finds the extremes. The stamps must stay as they are from then on.
    /// \param place room for blockCount(count) blocks that lasts as long as the
    /// outline; null: memory of its own
    void describe(const quint64 *stamps, quint64 count, BlockOutline *place = nullptr,
                  const Kernels &kernels = bestKernels());

    bool describes(const quint64 *stamps, quint64 count) const
    {
        return stamps == m_stamps && count == m_count;
    }

    /// Whether the stamps climb, so that blocks say all there is to know.
    /// Neighbours may be equal, but not all of them; and the counter may start
    /// again on the way, as differences are unsigned.
    bool isPlain() const { return m_plain; }
    bool hasRepeats() const { return m_repeats; } ///< equal neighbours
    const Extrema &extrema() const { return m_extrema; }
    qint64 lastTime() const { return m_lastTime; } ///< whole microseconds from first stamp to last

    std::size_t blocks() const { return m_blockCount; }
    std::size_t blockSize(std::size_t block) const; ///< intervals
    const quint64 *blockStamps(std::size_t block) const { return m_stamps + block * blockLength; }
    const BlockOutline &block(std::size_t block) const { return m_blocks[block]; }

    const LevelKey &key() const { return m_key; }      ///< with which the level was followed
    double startLevel() const { return m_startLevel; } ///< bytes; negative where never followed
    double endLevel() const { return m_endLevel; }
    double peak() const { return m_peak; } ///< highest level before it is cut to the size
    double blockStart(std::size_t block) const { return m_flat ? 0.0 : m_blocks[block].startLevel; }
    double blockPeak(std::size_t block) const { return m_flat ? 0.0 : m_blocks[block].peak; }

private:
    friend class LevelFollower;

    const quint64 *m_stamps = nullptr;
    quint64 m_count = 0;
    Extrema m_extrema = {0, 0};
    qint64 m_lastTime = 0;
    std::size_t m_blockCount = 0;
    BlockOutline *m_blocks = nullptr;
    std::unique_ptr<BlockOutline[]> m_ownBlocks;

    LevelKey m_key;
    double m_startLevel = -1.0;
    double m_endLevel = 0.0;
    double m_peak = 0.0;
    bool m_plain = false;
    bool m_repeats = false;
    bool m_flat = false; ///< the level stays 0; the blocks' levels are not set
};

} // namespace measurement::throughput

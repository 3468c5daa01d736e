#pragma once

#include "measurement/FrameOutline.h"

#include <array>

namespace measurement::throughput {

/// Follows the level of the modelled buffer through frames and keeps what it
/// finds in their outlines.
///
/// The level is a sum of doubles, and its bits depend on the order of the
/// additions, so each interval is one step of a chain. Steps are saved where the
/// extremes of a block tell that the level cannot move, and where the level has
/// the bits with which a block was entered the last time: from there on all is
/// as it was. That comes about whenever the level meets an end of the buffer,
/// since two levels that differ are the same from the first time the lower one
/// is cut to the size or the higher one to 0.
///
/// Until then, large levels are only shifted against the known ones. Levels
/// between two powers of two are multiples of one unit, and adding a change
/// rounds to such a multiple. So where neither the old nor the new levels of a
/// block leave that range or meet an end of the buffer, they differ by the same
/// multiple throughout, and the new ones follow from the old without a look at
/// the stamps. The exception is a change that ends just between two multiples: it
/// is rounded to the even one, which is the same only where the old and the new
/// level are both even or both odd.
class LevelFollower
{
public:
    explicit LevelFollower(const LevelKey &key, const Kernels &kernels = bestKernels());

    /// Follows the level through a plain frame up to where it is known.
    /// \param startLevel bytes
    /// \return intervals in the blocks that had to be looked at
    quint64 follow(FrameOutline &outline, double startLevel) const;

    /// Guesses that plain frames of one length start with an empty buffer, and
    /// follows them side by side: a processor can overlap chains, not their steps.
    /// \return as follow()
    quint64 followEmpty(const std::array<FrameOutline *, laneCount> &outlines, std::size_t count) const;

    /// Moves the level over at most a block of intervals.
    /// \param extrema of them, as BlockOutline has it
    /// \param repeats whether there may be empty ones
    /// \param peak raised to the highest level before it is cut to the size
    double advance(const quint64 *stamps, std::size_t count, const Extrema &extrema, bool repeats,
                   double level, double &peak) const;

    const LevelKey &key() const { return m_key; }
    const LevelRule &rule() const { return m_rule; }

private:
    /// The least and the most that an interval changes the level, bytes.
    struct Changes
    {
        double smallest;
        double largest;
    };

    double changeOver(quint64 interval) const;
    Changes changesOver(const Extrema &extrema) const;
    double followBlock(FrameOutline &outline, std::size_t number, double level, quint64 &work) const;
    bool canShift(FrameOutline &outline, std::size_t number, const Changes &changes, double level,
                  quint64 &work) const;
    double advance(const quint64 *stamps, std::size_t count, const Changes &changes, bool repeats,
                   double level, double &peak) const;
    bool startAnew(FrameOutline &outline) const;
    void enterLevels(FrameOutline &outline) const;
    quint64 followLanes(const std::array<FrameOutline *, laneCount> &lanes, std::size_t count) const;

    const LevelKey m_key;
    const LevelRule m_rule;
    const Kernels &m_kernels;
};

} // namespace measurement::throughput

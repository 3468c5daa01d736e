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
    double changeOver(quint64 interval) const;
    double largestChange(const Extrema &extrema) const;
    bool startAnew(FrameOutline &outline) const;
    void enterLevels(FrameOutline &outline) const;
    quint64 followLanes(const std::array<FrameOutline *, laneCount> &lanes, std::size_t count) const;

    const LevelKey m_key;
    const LevelRule m_rule;
    const Kernels &m_kernels;
};

} // namespace measurement::throughput

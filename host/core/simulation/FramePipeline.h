#pragma once

#include "host/core/simulation/CounterPattern.h"

#include <cstdint>
#include <deque>

namespace host {

/// What a frame carries on its way from the trigger to the host.
struct FrameRecord
{
    std::uint32_t number = 0; ///< accepted triggers before this one
    LinkPosition begin;       ///< start of the transfer (transport data) or of the readout
};

/// Something that changes a counter, in the camera or on the link.
struct PipelineEvent
{
    enum class Kind {
        TriggerAccepted,
        MissedOverlap,
        MissedOverflow,
        BufferOverflow,
        Lost,    ///< left the camera, did not reach the host
        Arrival, ///< the frame's last byte has reached the host
    };

    Ticks tick = 0; ///< first whole tick at which it has happened
    Kind kind = Kind::Arrival;
    FrameRecord frame; ///< of a missed trigger only `number` is set: accepted triggers before it
};

/// Trigger k comes at the first whole tick not before k / frame rate.
class TriggerSchedule
{
public:
    explicit TriggerSchedule(double frameRate);

    Ticks next() const { return m_next; }
    void advance();

private:
    std::int64_t m_milliHertz;
    std::int64_t m_index = 0;
    Ticks m_next = 0;
};

/// From the sensor's trigger to the end of the link. Nothing the host does
/// reaches back into it, so that it can be computed ahead of the time.
class FramePipeline
{
public:
    virtual ~FramePipeline() = default;

    /// All events before this tick have been appended.
    virtual Ticks time() const = 0;

    /// Goes on by one internal change. Appends events in the order of their
    /// ticks; the time grows after finitely many steps.
    virtual void step(std::deque<PipelineEvent> &events) = 0;
};

} // namespace host

#pragma once

#include "host/core/simulation/FramePipeline.h"

#include <optional>

namespace host {

/// Sizes and rates of a sensor's stream.
struct SensorTiming
{
    double frameRate = 0.0;       ///< triggers a second
    std::int64_t readoutRate = 0; ///< bytes a second
    std::int64_t frameBytes = 0;  ///< on the link
    std::int64_t lineBytes = 0;   ///< room that a trigger needs
    std::int64_t bufferBytes = 0;
};

/// Normal streaming: the readout fills the frame buffer at a constant rate
/// while the link drains it, a fluid queue.
///
/// Within a tick only whole amounts are accounted for; between two changes of
/// a rate any number of ticks is one step.
class SensorPipeline : public FramePipeline
{
public:
    /// Frames that the camera's buffer can manage, whatever its size.
    static constexpr std::size_t MaxBufferedFrames = 65536;

    SensorPipeline(const LinkModel &link, const SensorTiming &timing);

    Ticks time() const override { return m_time; }
    void step(std::deque<PipelineEvent> &events) override;

private:
    /// A frame that has not left the buffer completely.
    struct Buffered
    {
        FrameRecord frame;
        WideAmount end = 0; ///< of everything ever read in: where the frame ends
        bool readOut = false;
        bool aborted = false;
    };

    void trigger(std::deque<PipelineEvent> &events);
    bool isFull();
    void flow(std::deque<PipelineEvent> &events);
    Ticks ticksToNextChange(Amount in, Amount out, Ticks limit) const;
    void flowOneTick(std::deque<PipelineEvent> &events, Amount in, Amount out);
    void endReadout(bool aborted);
    void deliver(std::deque<PipelineEvent> &events);
    WideAmount level() const { return m_totalIn - m_totalOut; }

    const LinkModel &m_link;
    TriggerSchedule m_triggers;
    SensorTiming m_timing;
    WideAmount m_capacity;
    Ticks m_time = 0;
    std::uint32_t m_nextNumber = 0;
    Amount m_readoutLeft = 0; ///< of the frame being read out, the last one buffered; 0: none
    std::deque<Buffered> m_buffered;
    bool m_overrun = false;    ///< since the buffer ran over, no whole frame has fitted
    WideAmount m_totalIn = 0;  ///< read into the buffer since the start
    WideAmount m_totalOut = 0; ///< left on the link since the start
};

} // namespace host

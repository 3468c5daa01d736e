#pragma once

#include "host/core/simulation/FramePipeline.h"

#include <optional>

namespace host {

/// Transport data: a generator behind the sensor feeds the link directly, past
/// the frame buffer.
///
/// A frame starts with its trigger or, if the link is busy then, when the link
/// gets free; one trigger can wait for that, further ones are missed.
class TransportPipeline : public FramePipeline
{
public:
    TransportPipeline(const LinkModel &link, double frameRate, std::int64_t frameBytes);

    Ticks time() const override { return m_time; }
    void step(std::deque<PipelineEvent> &events) override;

private:
    struct Sending
    {
        FrameRecord frame;
        Amount left; ///< counted from m_time on
    };

    void trigger(std::deque<PipelineEvent> &events);
    void finishFrame(std::deque<PipelineEvent> &events, Ticks wholeTicks, Amount lead);

    const LinkModel &m_link;
    TriggerSchedule m_triggers;
    Amount m_frameAmount;
    Ticks m_time = 0;
    std::uint32_t m_nextNumber = 0;
    std::optional<Sending> m_sending;
    std::optional<std::uint32_t> m_pending; ///< number of the frame whose trigger waits
};

} // namespace host

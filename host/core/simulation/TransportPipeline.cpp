#include "host/core/simulation/TransportPipeline.h"

#include <algorithm>

namespace host {

TransportPipeline::TransportPipeline(const LinkModel &link, double frameRate, std::int64_t frameBytes)
    : m_link(link)
    , m_triggers(frameRate)
    , m_frameAmount(frameBytes * AmountPerByte)
{
}

void TransportPipeline::step(std::deque<PipelineEvent> &events)
{
    if (!m_sending) {
        m_time = m_triggers.next();
        trigger(events);
        return;
    }
    const LinkModel::Segment segment = m_link.segmentFrom(m_time);
    const Ticks end = std::min(segment.end, m_triggers.next());
    if (segment.rate > 0) {
        const Ticks wholeTicks = m_sending->left / segment.rate;
        const Amount lead = m_sending->left % segment.rate;
        if (wholeTicks + (lead > 0 ? 1 : 0) <= end - m_time) {
            finishFrame(events, wholeTicks, lead);
            return;
        }
    }
    m_sending->left -= segment.rate * (end - m_time);
    m_time = end;
    if (m_time == m_triggers.next())
        trigger(events);
}

void TransportPipeline::trigger(std::deque<PipelineEvent> &events)
{
    m_triggers.advance();
    if (m_pending) {
        events.push_back({m_time, PipelineEvent::Kind::MissedOverlap, {m_nextNumber, {}}});
        return;
    }
    const FrameRecord frame{m_nextNumber++, {m_time, 0}};
    events.push_back({m_time, PipelineEvent::Kind::TriggerAccepted, frame});
    if (m_sending)
        m_pending = frame.number;
    else
        m_sending = Sending{frame, m_frameAmount};
}

/// \param lead what the frame takes of its last tick, which it shares with the
/// one that waits
void TransportPipeline::finishFrame(std::deque<PipelineEvent> &events, Ticks wholeTicks, Amount lead)
{
    const Ticks endTick = m_time + wholeTicks;
    const Ticks arrival = endTick + (lead > 0 ? 1 : 0);
    events.push_back({arrival, PipelineEvent::Kind::Arrival, m_sending->frame});
    if (!m_pending) {
        m_sending.reset();
        m_time = arrival;
        return;
    }
    m_sending = Sending{{*m_pending, {endTick, lead}}, m_frameAmount + lead};
    m_pending.reset();
    m_time = endTick;
}

} // namespace host

#include "host/core/simulation/SensorPipeline.h"

#include <algorithm>

namespace host {

SensorPipeline::SensorPipeline(const LinkModel &link, const SensorTiming &timing)
    : m_link(link)
    , m_triggers(timing.frameRate)
    , m_timing(timing)
    , m_capacity(static_cast<WideAmount>(timing.bufferBytes) * AmountPerByte)
{
}

void SensorPipeline::step(std::deque<PipelineEvent> &events)
{
    if (m_time == m_triggers.next())
        trigger(events);
    else if (m_readoutLeft == 0 && level() == 0)
        m_time = m_triggers.next();
    else
        flow(events);
}

void SensorPipeline::trigger(std::deque<PipelineEvent> &events)
{
    m_triggers.advance();
    auto kind = PipelineEvent::Kind::TriggerAccepted;
    FrameRecord frame{m_nextNumber, {}};
    if (m_readoutLeft > 0) {
        kind = PipelineEvent::Kind::MissedOverlap;
    } else if (isFull()) {
        kind = PipelineEvent::Kind::MissedOverflow;
    } else {
        frame.begin.tick = m_time;
        ++m_nextNumber;
        m_readoutLeft = m_timing.frameBytes * AmountPerByte;
        m_buffered.push_back({frame});
    }
    events.push_back({m_time, kind, frame});
}

/// Whether a trigger finds no room. A buffer that has run over stays closed until
/// a whole frame fits again (or it is empty): on a slow link it would otherwise
/// take part after part of frames that all overrun it, and never pass one on.
bool SensorPipeline::isFull()
{
    const WideAmount room = m_capacity - level();
    if (level() == 0 || room >= static_cast<WideAmount>(m_timing.frameBytes) * AmountPerByte)
        m_overrun = false;
    return m_overrun || room < static_cast<WideAmount>(m_timing.lineBytes) * AmountPerByte ||
           m_buffered.size() >= MaxBufferedFrames;
}

void SensorPipeline::flow(std::deque<PipelineEvent> &events)
{
    const LinkModel::Segment segment = m_link.segmentFrom(m_time);
    const Ticks limit = std::min(segment.end, m_triggers.next()) - m_time;
    const Amount in = m_readoutLeft > 0 ? m_timing.readoutRate : 0;
    // An empty buffer passes on what comes in.
    const Amount out = level() == 0 ? std::min(in, segment.rate) : segment.rate;
    const Ticks ticks = ticksToNextChange(in, out, limit);
    if (ticks == 0) {
        flowOneTick(events, in, segment.rate);
        return;
    }
    m_time += ticks;
    m_totalIn += static_cast<WideAmount>(in) * ticks;
    m_totalOut += static_cast<WideAmount>(out) * ticks;
    if (in > 0) {
        m_readoutLeft -= in * ticks;
        if (m_readoutLeft == 0)
            endReadout(false);
    }
    deliver(events);
}

/// Whole ticks for which both rates hold: until the readout ends, the buffer
/// is full or empty, or the oldest frame has left.
Ticks SensorPipeline::ticksToNextChange(Amount in, Amount out, Ticks limit) const
{
    WideAmount ticks = limit;
    if (in > 0)
        ticks = std::min<WideAmount>(ticks, m_readoutLeft / in);
    if (in > out)
        ticks = std::min<WideAmount>(ticks, (m_capacity - level()) / (in - out));
    if (out > in)
        ticks = std::min<WideAmount>(ticks, level() / (out - in));
    if (out > 0 && m_buffered.front().readOut)
        ticks = std::min<WideAmount>(ticks, (m_buffered.front().end - m_totalOut) / out);
    return static_cast<Ticks>(ticks);
}

/// A tick in the course of which something changes.
void SensorPipeline::flowOneTick(std::deque<PipelineEvent> &events, Amount in, Amount linkRate)
{
    ++m_time;
    const Amount read = std::min(in, m_readoutLeft);
    m_totalIn += read;
    m_totalOut += std::min<WideAmount>(linkRate, level());
    if (read > 0) {
        m_readoutLeft -= read;
        if (level() > m_capacity) {
            m_totalIn = m_totalOut + m_capacity;
            m_overrun = true;
            events.push_back({m_time, PipelineEvent::Kind::BufferOverflow, m_buffered.back().frame});
            endReadout(true);
        } else if (m_readoutLeft == 0) {
            endReadout(false);
        }
    }
    deliver(events);
}

void SensorPipeline::endReadout(bool aborted)
{
    m_readoutLeft = 0;
    Buffered &frame = m_buffered.back();
    frame.end = m_totalIn;
    frame.readOut = true;
    frame.aborted = aborted;
}

/// Takes out the frames whose last byte has left.
void SensorPipeline::deliver(std::deque<PipelineEvent> &events)
{
    while (!m_buffered.empty() && m_buffered.front().readOut && m_buffered.front().end <= m_totalOut) {
        if (!m_buffered.front().aborted)
            events.push_back({m_time, PipelineEvent::Kind::Arrival, m_buffered.front().frame});
        m_buffered.pop_front();
    }
}

} // namespace host

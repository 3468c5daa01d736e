#include "host/core/simulation/Stream.h"

#include "host/core/simulation/SeededHash.h"
#include "host/core/simulation/SensorPipeline.h"
#include "host/core/simulation/TransportPipeline.h"

#include <algorithm>

namespace host {

namespace {

// Bounds what one look ahead computes and keeps; the next one goes on there.
constexpr int MaxStepsAhead = 100'000;

std::unique_ptr<FramePipeline> makePipeline(const StreamSettings &settings, const LinkModel &link)
{
    const std::int64_t pixels = std::int64_t{settings.width} * settings.height;
    if (settings.format == ImageFormat::TransportData)
        return std::make_unique<TransportPipeline>(link, settings.frameRate,
                                                   pixels * bytesPerPixel(settings.format));
    SensorTiming timing;
    timing.frameRate = settings.frameRate;
    timing.readoutRate = settings.readoutRate;
    timing.frameBytes = transportBytes(pixels, settings.bitDepth, settings.packed);
    timing.lineBytes = transportBytes(settings.width, settings.bitDepth, settings.packed);
    timing.bufferBytes = settings.bufferBytes;
    return std::make_unique<SensorPipeline>(link, timing);
}

std::uint8_t picturePhase(const StreamSettings &settings)
{
    return static_cast<std::uint8_t>(
        seededHash(settings.seed, settings.cameraIndex, HashUse::PicturePhase, 0));
}

} // namespace

Stream::Stream(const StreamSettings &settings, const LinkModel &link)
    : m_settings(settings)
    , m_link(link)
    , m_picture(settings.format, settings.bitDepth, settings.width, settings.height, picturePhase(settings),
                settings.content)
    , m_pipeline(makePipeline(settings, link))
{
}

std::size_t Stream::frameBytes() const
{
    return m_picture.size();
}

void Stream::advanceTo(Ticks now)
{
    m_now = std::max(m_now, now);
    applyDue();
    while (m_pipeline->time() <= m_now) {
        stepPipeline();
        applyDue();
    }
}

Ticks Stream::nextArrival(Ticks limit)
{
    const auto isArrival = [](const PipelineEvent &event) {
        return event.kind == PipelineEvent::Kind::Arrival;
    };
    auto arrival = std::ranges::find_if(m_future, isArrival);
    for (int steps = 0; arrival == m_future.end() && steps < MaxStepsAhead; ++steps) {
        if (m_pipeline->time() >= limit)
            return limit;
        const auto known = static_cast<std::ptrdiff_t>(m_future.size());
        stepPipeline();
        arrival = std::find_if(m_future.begin() + known, m_future.end(), isArrival);
    }
    return std::min(limit, arrival == m_future.end() ? m_pipeline->time() : arrival->tick);
}

void Stream::stepPipeline()
{
    const std::size_t known = m_future.size();
    m_pipeline->step(m_future);
    for (std::size_t i = known; i < m_future.size(); ++i) {
        if (m_future[i].kind == PipelineEvent::Kind::Arrival && isLost(m_future[i].frame.number))
            m_future[i].kind = PipelineEvent::Kind::Lost;
    }
}

void Stream::applyDue()
{
    while (!m_future.empty() && m_future.front().tick <= m_now) {
        apply(m_future.front());
        m_future.pop_front();
    }
}

void Stream::apply(const PipelineEvent &event)
{
    using Kind = PipelineEvent::Kind;
    auto entry = LedgerEntryKind::TriggerAccepted;
    switch (event.kind) {
    case Kind::TriggerAccepted:
        break;
    case Kind::MissedOverlap:
        entry = LedgerEntryKind::MissedOverlap;
        break;
    case Kind::MissedOverflow:
        entry = LedgerEntryKind::MissedOverflow;
        break;
    case Kind::BufferOverflow:
        entry = LedgerEntryKind::BufferOverflow;
        break;
    case Kind::Lost:
        entry = LedgerEntryKind::TransportSkip;
        break;
    case Kind::Arrival:
        entry =
            m_queue.size() < m_settings.queueSize ? LedgerEntryKind::Transferred : LedgerEntryKind::ApiSkip;
        if (entry == LedgerEntryKind::Transferred)
            m_queue.push_back(event.frame);
        break;
    }
    m_ledger.add(event.tick, entry, event.frame.number);
}

bool Stream::isLost(std::uint32_t frame) const
{
    const std::uint64_t hash =
        seededHash(m_settings.seed, m_settings.cameraIndex, HashUse::TransportLoss, frame);
    return unitFraction(hash) < m_settings.transportLoss;
}

Stream::Fetch Stream::fetch(bool newest, std::span<std::uint64_t> buffer, ZU_IMG &image)
{
    while (newest && m_queue.size() > 1) {
        m_ledger.add(m_now, LedgerEntryKind::ApiSkip, m_queue.front().number);
        m_queue.pop_front();
    }
    if (m_queue.empty())
        return Fetch::Empty;
    const FrameRecord frame = m_queue.front();
    m_queue.pop_front();
    ++m_fetched;
    if (m_settings.captureFailureEvery > 0 && m_fetched % m_settings.captureFailureEvery == 0) {
        m_ledger.add(m_now, LedgerEntryKind::Damaged, frame.number);
        return Fetch::Damaged;
    }
    m_ledger.add(m_now, LedgerEntryKind::Fetched, frame.number);
    fillData(frame, buffer);

    const Ticks stamp = m_settings.stampOffset + frame.begin.tick;
    image.filledSize = static_cast<std::uint32_t>(frameBytes());
    image.data = buffer.data();
    image.width = static_cast<std::uint32_t>(m_settings.width);
    image.height = static_cast<std::uint32_t>(m_settings.height);
    image.frameNumber = frame.number;
    image.timestampSeconds = static_cast<std::uint32_t>(stamp / TicksPerSecond);
    image.timestampMicroseconds = static_cast<std::uint32_t>(stamp % TicksPerSecond / TicksPerMicrosecond);
    return Fetch::Delivered;
}

void Stream::fillData(const FrameRecord &frame, std::span<std::uint64_t> buffer) const
{
    if (m_settings.counterPattern)
        fillCounterPattern(buffer, static_cast<std::int64_t>(frameBytes()), m_link, frame.begin,
                           m_settings.stampOffset);
    else
        m_picture.fill(reinterpret_cast<unsigned char *>(buffer.data()), frame.number);
}

} // namespace host

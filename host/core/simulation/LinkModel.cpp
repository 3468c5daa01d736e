#include "host/core/simulation/LinkModel.h"

#include "host/core/simulation/SeededHash.h"
#include "host/core/simulation/StallState.h"

#include <algorithm>

namespace host {

LinkModel::LinkModel(const CameraSettings &settings, std::uint64_t seed, std::uint64_t cameraIndex)
    : m_nominal(settings.linkMBps * 1e6)
    , m_jitter(settings.jitter)
    , m_stalls(settings.stalls)
    , m_seed(seed)
    , m_camera(cameraIndex)
{
}

LinkModel::Segment LinkModel::segmentFrom(Ticks t) const
{
    Segment segment{t, Never, 0};
    double rate = m_nominal;
    if (m_jitter.fraction > 0.0) {
        const Ticks slot = t / m_jitter.slot;
        rate *= jitterFactor(static_cast<std::uint64_t>(slot));
        segment.end = (slot + 1) * m_jitter.slot;
    }
    for (const StallSettings &stall : m_stalls) {
        const StallState state = stallAt(stall, t);
        if (state.active)
            rate *= 1.0 - stall.depth;
        segment.end = std::min(segment.end, state.until);
    }
    segment.rate = std::llround(rate);
    return segment;
}

double LinkModel::jitterFactor(std::uint64_t slot) const
{
    const double draw = 2.0 * unitFraction(seededHash(m_seed, m_camera, HashUse::LinkJitter, slot)) - 1.0;
    return 1.0 + m_jitter.fraction * draw;
}

WideAmount LinkModel::amountBetween(Ticks t0, Ticks t1) const
{
    WideAmount amount = 0;
    for (Ticks t = t0; t < t1;) {
        const Segment segment = segmentFrom(t);
        const Ticks end = std::min(segment.end, t1);
        amount += static_cast<WideAmount>(segment.rate) * (end - t);
        t = end;
    }
    return amount;
}

double LinkModel::bytesBetween(Ticks t0, Ticks t1) const
{
    return static_cast<double>(amountBetween(t0, t1)) / AmountPerByte;
}

std::optional<Ticks> LinkModel::timeWhenSent(Ticks t0, std::int64_t bytes, Ticks limit) const
{
    WideAmount left = static_cast<WideAmount>(bytes) * AmountPerByte;
    Ticks t = t0;
    while (left > 0 && t < limit) {
        const Segment segment = segmentFrom(t);
        const Ticks end = std::min(segment.end, limit);
        const WideAmount carried = static_cast<WideAmount>(segment.rate) * (end - t);
        if (carried >= left)
            return t + static_cast<Ticks>((left + segment.rate - 1) / segment.rate);
        left -= carried;
        t = end;
    }
    if (left > 0)
        return std::nullopt;
    return t;
}

} // namespace host

#pragma once

#include "host/core/simulation/Scenario.h"

#include <cmath>
#include <optional>
#include <vector>

namespace host {

/// Bytes in units of 1/250 000 000: a link of n bytes a second carries exactly
/// n units a tick, so that all arithmetic on amounts is exact.
using Amount = std::int64_t;
__extension__ typedef __int128 WideAmount;

inline constexpr Amount AmountPerByte = TicksPerSecond;

inline std::int64_t bytesPerSecond(double megabytesPerSecond)
{
    return std::llround(megabytesPerSecond * 1e6);
}

/// The rate of one camera's link as a function of the time since the start of
/// the acquisition:
///
///     rate(t) = L * (1 + f * j(slot of t)) * product over the stalls at t of (1 - depth)
///
/// with j in [-1, 1) drawn from the seed. It is piecewise constant, a whole
/// number of bytes a second, and its borders are whole ticks. Immutable, any
/// thread.
class ZUCORE_EXPORT LinkModel
{
public:
    /// A stretch of constant rate.
    struct Segment
    {
        Ticks begin;
        Ticks end;         ///< not included; the largest Ticks when the rate never changes again
        std::int64_t rate; ///< bytes a second
    };

    LinkModel(const CameraSettings &settings, std::uint64_t seed, std::uint64_t cameraIndex);

    /// The part of a constant stretch that begins at `t` (not below 0).
    Segment segmentFrom(Ticks t) const;

    /// Bytes a second.
    std::int64_t rateAt(Ticks t) const { return segmentFrom(t).rate; }

    /// What the link can carry from t0 to t1, the integral of the rate.
    WideAmount amountBetween(Ticks t0, Ticks t1) const;
    double bytesBetween(Ticks t0, Ticks t1) const;

    /// First whole tick at which `bytes` have left if they start at t0 and the
    /// link carries nothing else; nothing when that lies beyond `limit`.
    std::optional<Ticks> timeWhenSent(Ticks t0, std::int64_t bytes, Ticks limit) const;

private:
    double jitterFactor(std::uint64_t slot) const;

    double m_nominal; ///< bytes a second
    JitterSettings m_jitter;
    std::vector<StallSettings> m_stalls;
    std::uint64_t m_seed;
    std::uint64_t m_camera;
};

} // namespace host

#pragma once

#include <QtGlobal>

#include <algorithm>

/// What the link does to the camera's frame buffer between two frames.
namespace measurement::throughput {

/// A frame's mean rate in MB/s: bytes over time. The bytes count the stamps, not
/// the intervals between them.
/// \param span last stamp minus first, 4-ns ticks
inline double meanRate(quint32 sampleInterval, quint64 stamps, qint64 span)
{
    const auto bytes = static_cast<qint64>(sampleInterval * stamps);
    return static_cast<double>(bytes) / static_cast<double>(span) * 250.0;
}

/// The level in bytes after a pause in which the link went on at `rate` (MB/s).
/// \param lastTime of the stamp before the pause, microseconds
/// \param time of the stamp after it
inline double levelAfterPause(double level, double rate, qint64 lastTime, qint64 time)
{
    // Unsigned: a frame that starts before the last one ended finds the buffer empty.
    const quint64 gap = static_cast<quint64>(time) - static_cast<quint64>(lastTime);
    const double drained = rate * static_cast<double>(gap);
    return drained > 0.0 ? std::max(level - drained, 0.0) : level;
}

} // namespace measurement::throughput

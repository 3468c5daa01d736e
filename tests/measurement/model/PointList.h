#pragma once

#include "measurement/ThroughputModel.h"

#include <vector>

struct Point
{
    qint64 time; ///< microseconds relative to the window's end
    double minSpeed;
    double maxLevel;
};

class PointList final : public measurement::throughput::PointSink
{
public:
    void addPoint(qint64 time, double minSpeed, double maxLevel) override
    {
        points.push_back({time, minSpeed, maxLevel});
    }
    void restart() override { points.clear(); }

    std::vector<Point> points;
};

/// Working memory of exactly the size a pass asks for, so that the address
/// sanitizer sees a write beyond it.
class ScratchArrays
{
public:
    explicit ScratchArrays(quint64 intervals)
        : m_speeds(intervals)
        , m_deltas(intervals)
        , m_times(intervals)
    {
    }

    measurement::throughput::Scratch scratch()
    {
        return {m_speeds.data(), m_deltas.data(), m_times.data(), m_speeds.size()};
    }

private:
    std::vector<double> m_speeds;
    std::vector<double> m_deltas;
    std::vector<quint64> m_times;
};

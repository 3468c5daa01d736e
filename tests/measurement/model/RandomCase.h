#pragma once

#include "bench/reference/Recordings.h"

#include <random>

/// What a family of random cases draws its frames from; lengths in ticks.
struct CaseFamily
{
    const char *name;
    quint64 shortest = 2000; ///< ordinary interval
    quint64 longest = 3000;
    quint64 grain = 1; ///< all of these are multiples of it
    qint32 requiredMBps = 400;
    bool largeBuffer = false; ///< so large that nothing fills it
    double stalls = 0.0;      ///< shares of the intervals that are something else
    double repeats = 0.0;
    double backward = 0.0;
    double huge = 0.0;
    bool mixedLengths = false;   ///< frames of different stamp counts
    bool disorder = false;       ///< frame times that step back or overlap
    bool strangeNumbers = false; ///< settings and times at the ends of their ranges
};

struct RandomCase
{
    reference::Recording recording;
    measurement::throughput::Settings settings;
    bool statisticsOnly = false;
};

RandomCase drawCase(const CaseFamily &family, std::mt19937_64 &random);

/// Another window, and perhaps other settings, over the same frames.
void drawChange(RandomCase &drawn, const CaseFamily &family, std::mt19937_64 &random);

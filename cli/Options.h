#pragma once

#include "measurement/CameraLineData.h"

#include <QString>
#include <QStringList>

#include <variant>

namespace cli {

/// What one run of the tool measures.
struct Options
{
    QString simulate;     ///< number of cameras, scenario name or scenario file
    double seconds = 5.0; ///< length of the measurement
    MeasureMode mode = MeasureModeThroughput;
    unsigned int samplePeriod = 4096; ///< bytes between two samples of a frame
    long long capacity = 10'000'000;  ///< samples (records in acquisition mode) kept per camera
    ExTimestampOrigin timestampOrigin = TimestampOriginCamera;
    bool resetBufferLevel = true;
};

/// Text for the user instead of a run: help and version (exit code 0), or what
/// was wrong with the command line (exit code 2).
struct Message
{
    QString text;
    int exitCode = 0;
};

std::variant<Options, Message> parseArguments(const QStringList &arguments);

} // namespace cli

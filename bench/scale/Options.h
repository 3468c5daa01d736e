#pragma once

#include <QStringList>

namespace scale {

struct Options
{
    enum class Run {
        Steady, ///< measure for a while
        Edit,   ///< edit the required throughput over full records
    };

    Run run = Run::Steady;
    int cameras = 1;
    double seconds = 30.0;
    double rateMBps = 400.0;          ///< of each camera's link
    long long capacity = 10'000'000;  ///< samples of each camera, all there from the start
    unsigned int samplePeriod = 1024; ///< bytes
    double viewSeconds = 20.0;        ///< width of the graphs' time axis; 0: all records
    int pollMicroseconds = 20;        ///< pause between two looks at the engines' mutexes
};

/// Prints help or what is wrong and ends the program where the arguments ask for
/// it. Needs a QCoreApplication.
Options parseOptions(const QStringList &arguments);

} // namespace scale

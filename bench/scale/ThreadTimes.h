#pragma once

namespace scale {

/// Processor seconds of this process's threads that live now, by what they are
/// there for.
struct ThreadTimes
{
    double gui = 0.0;     ///< the main thread
    double capture = 0.0; ///< the engines' threads, with what the simulation does on them
    double watcher = 0.0; ///< this program's own HoldWatcher
    double other = 0.0;

    /// Throws std::runtime_error where the kernel does not tell.
    static ThreadTimes now();
};

} // namespace scale

#include "bench/scale/ThreadTimes.h"

#include "bench/scale/HoldWatcher.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace scale {

namespace {

/// The kernel keeps 15 characters of the thread's class.
constexpr std::string_view captureThread = "CxAcquisitionTh";

template <typename Value> bool read(const std::filesystem::path &file, Value &value)
{
    return static_cast<bool>(std::ifstream(file) >> value);
}

} // namespace

ThreadTimes ThreadTimes::now()
{
    ThreadTimes times;
    for (const auto &task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::string name;
        double nanoseconds = 0.0;
        if (!read(task.path() / "comm", name) || !read(task.path() / "schedstat", nanoseconds)) {
            // It may have ended meanwhile.
            if (std::filesystem::exists(task.path()))
                throw std::runtime_error("the kernel tells no processor times of threads");
            continue;
        }
        double &sum = task.path().filename() == std::to_string(getpid()) ? times.gui
                      : name == captureThread                            ? times.capture
                      : name == HoldWatcher::ThreadName                  ? times.watcher
                                                                         : times.other;
        sum += nanoseconds * 1e-9;
    }
    return times;
}

} // namespace scale

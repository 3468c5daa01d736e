#pragma once

#include "bench/scale/Milliseconds.h"

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

class QMutex;

namespace scale {

/// How long mutexes are held, seen from outside: a thread tries to take each of
/// them again and again and gives it back at once.
///
/// Resolution: the distances of the tries are measured along. With a pause of 20
/// microseconds it is about 50 on a virtual machine, more where the thread itself
/// has to wait for a processor; without a pause far below 1, for the price of a
/// processor. A hold took at least the time from the first failed try to the
/// last, at most that between the successful ones around them; one that no try
/// met is not seen. Holds with less than a try's distance between them look like
/// one.
class HoldWatcher
{
public:
    struct Hold
    {
        double atLeast = 0.0; ///< milliseconds
        double atMost = 0.0;
    };

    struct Result
    {
        Hold gui;                   ///< longest one during which the GUI thread was busy all the time
        Hold other;                 ///< longest one of the rest
        double pollGapMedian = 0.0; ///< microseconds
        double pollGapMost = 0.0;   ///< 99.9 % of the gaps are shorter
    };

    /// \param mutexes outlive the watcher
    /// \param isGuiBusy called on the watcher's thread
    /// \param pause microseconds between two tries; 0: none
    HoldWatcher(std::vector<QMutex *> mutexes, std::function<bool()> isGuiBusy, int pause);
    ~HoldWatcher();
    HoldWatcher(const HoldWatcher &) = delete;
    HoldWatcher &operator=(const HoldWatcher &) = delete;

    /// What was seen since the last call, holds that still last included.
    Result take();

    static constexpr const char *ThreadName = "hold-watcher";

private:
    struct Watched
    {
        QMutex *mutex;
        Time::time_point lastFree;
        Time::time_point firstTaken;
        Time::time_point lastTaken;
        bool taken = false;
        bool guiBusy = false; ///< at every failed try
    };

    void run(int pause);
    void look(Watched &watched);
    void endHold(Watched &watched, Time::time_point now);
    void countGap(Time::duration gap);
    Result result() const;

    std::vector<Watched> m_watched;
    std::function<bool()> m_isGuiBusy;
    std::mutex m_mutex;                ///< guards what was seen
    std::atomic<bool> m_wanted{false}; ///< take() waits for it
    Result m_longest;
    std::vector<unsigned> m_gaps; ///< by hundredths of a microsecond, the last one for all above
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

} // namespace scale

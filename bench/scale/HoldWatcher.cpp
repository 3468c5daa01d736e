#include "bench/scale/HoldWatcher.h"

#include <QMutex>

#include <cmath>
#include <numeric>
#include <pthread.h>
#include <sys/prctl.h>
#include <utility>

namespace scale {

namespace {

constexpr std::size_t GapsPerMicrosecond = 100;
constexpr std::size_t LongestGap = 10'000 * GapsPerMicrosecond;

double quantile(const std::vector<unsigned> &counts, double share)
{
    const double all = std::accumulate(counts.begin(), counts.end(), 0.0);
    double sum = 0.0;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        sum += counts[i];
        if (sum > 0.0 && sum >= share * all)
            return static_cast<double>(i) / GapsPerMicrosecond;
    }
    return 0.0;
}

void keepLonger(HoldWatcher::Hold &longest, const HoldWatcher::Hold &hold)
{
    if (hold.atMost > longest.atMost)
        longest = hold;
}

} // namespace

HoldWatcher::HoldWatcher(std::vector<QMutex *> mutexes, std::function<bool()> isGuiBusy, int pause)
    : m_isGuiBusy(std::move(isGuiBusy))
    , m_gaps(LongestGap + 1)
{
    const auto now = Time::now();
    for (QMutex *mutex : mutexes)
        m_watched.push_back({mutex, now, now, now});
    m_thread = std::thread([this, pause] { run(pause); });
}

HoldWatcher::~HoldWatcher()
{
    m_stop = true;
    m_thread.join();
}

HoldWatcher::Result HoldWatcher::take()
{
    m_wanted = true; // without a pause, the thread would hardly ever let go
    const std::lock_guard lock(m_mutex);
    m_wanted = false;
    const auto now = Time::now();
    for (Watched &watched : m_watched) {
        if (watched.taken)
            endHold(watched, now);
        watched.lastFree = now;
    }
    const Result taken = result();
    m_longest = {};
    std::fill(m_gaps.begin(), m_gaps.end(), 0);
    return taken;
}

HoldWatcher::Result HoldWatcher::result() const
{
    Result result = m_longest;
    result.pollGapMedian = quantile(m_gaps, 0.5);
    result.pollGapMost = quantile(m_gaps, 0.999);
    return result;
}

void HoldWatcher::run(int pause)
{
    pthread_setname_np(pthread_self(), ThreadName);
    prctl(PR_SET_TIMERSLACK, 1); // otherwise a pause takes 50 microseconds more
    auto last = Time::now();
    while (!m_stop) {
        if (m_wanted) {
            std::this_thread::yield();
            continue;
        }
        {
            const std::lock_guard lock(m_mutex);
            for (Watched &watched : m_watched)
                look(watched);
            const auto now = Time::now();
            countGap(now - last);
            last = now;
        }
        if (pause > 0)
            std::this_thread::sleep_for(std::chrono::microseconds(pause));
    }
}

void HoldWatcher::look(Watched &watched)
{
    const bool isFree = watched.mutex->tryLock();
    if (isFree)
        watched.mutex->unlock();
    const bool guiBusy = m_isGuiBusy();
    const auto now = Time::now();
    if (isFree) {
        if (watched.taken)
            endHold(watched, now);
        watched.lastFree = now;
        return;
    }
    if (!watched.taken) {
        watched.taken = true;
        watched.firstTaken = now;
        watched.guiBusy = true;
    }
    watched.guiBusy = watched.guiBusy && guiBusy;
    watched.lastTaken = now;
}

void HoldWatcher::endHold(Watched &watched, Time::time_point now)
{
    watched.taken = false;
    const Hold hold = {milliseconds(watched.lastTaken - watched.firstTaken),
                       milliseconds(now - watched.lastFree)};
    keepLonger(watched.guiBusy ? m_longest.gui : m_longest.other, hold);
}

void HoldWatcher::countGap(Time::duration gap)
{
    const double microseconds = milliseconds(gap) * 1000.0;
    ++m_gaps[std::min(static_cast<std::size_t>(microseconds * GapsPerMicrosecond), LongestGap)];
}

} // namespace scale

#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/RealTimeClock.h"

#include <QTest>

#include <thread>
#include <vector>

using namespace host;
using WaitEnd = Clock::WaitEnd;

class SimulationClocksTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void waitingTakesTheTimeToTheDeadline();
    void pastDeadlineEndsAtOnce();
    void earlierRaiseEndsTheWait();
    void runUntilSteersAThread();
    void runUntilGivesUpWithoutAWaiter();
    void releaseEndsBlockedWaits();
    void raiseEndsABlockedWait();
    void runUntilCountsNoRaisedWaiter();
    void advanceMovesTimeAndLimit();
    void sharedClockServesTheEarliestFirst();
    void realTimeWaitLastsAsLongAsAsked();
    void realTimeWaitIsInterrupted();
};

void SimulationClocksTest::waitingTakesTheTimeToTheDeadline()
{
    FreeRunningClock clock;
    Clock::Interrupt interrupt;
    QCOMPARE(clock.now(), Ticks{0});
    QCOMPARE(clock.waitUntil(3600 * TicksPerSecond, interrupt, clock.raiseCount(interrupt)),
             WaitEnd::DeadlineReached);
    QCOMPARE(clock.now(), 3600 * TicksPerSecond);
}

void SimulationClocksTest::pastDeadlineEndsAtOnce()
{
    FreeRunningClock clock;
    clock.advance(1000);
    Clock::Interrupt interrupt;
    QCOMPARE(clock.waitUntil(500, interrupt, 0), WaitEnd::DeadlineReached);
    QCOMPARE(clock.now(), Ticks{1000});
}

void SimulationClocksTest::earlierRaiseEndsTheWait()
{
    FreeRunningClock clock;
    RealTimeClock realTime;
    Clock::Interrupt interrupt;
    const std::uint64_t seen = clock.raiseCount(interrupt);
    clock.raise(interrupt);
    QCOMPARE(clock.waitUntil(500, interrupt, seen), WaitEnd::Interrupted);
    QCOMPARE(clock.now(), Ticks{0});
    QCOMPARE(realTime.waitUntil(3600 * TicksPerSecond, interrupt, seen), WaitEnd::Interrupted);
}

void SimulationClocksTest::runUntilSteersAThread()
{
    FreeRunningClock clock(0);
    Clock::Interrupt interrupt;
    int waits = 0; // read by this thread only while the other one is blocked
    std::mutex mutex;
    std::thread thread([&] {
        while (clock.waitUntil(clock.now() + 300, interrupt, 0) == WaitEnd::DeadlineReached) {
            const std::lock_guard lock(mutex);
            ++waits;
        }
    });
    const auto waitCount = [&] {
        const std::lock_guard lock(mutex);
        return waits;
    };
    QVERIFY(clock.runUntil(1000));
    QCOMPARE(clock.now(), Ticks{1000});
    QCOMPARE(waitCount(), 3);
    // The fourth wait has the deadline 1200.
    QVERIFY(clock.runUntil(1199));
    QCOMPARE(waitCount(), 3);
    QVERIFY(clock.runUntil(1200));
    QCOMPARE(waitCount(), 4);
    QVERIFY(clock.runUntil(1200 + 30'000));
    QCOMPARE(waitCount(), 104);
    clock.release();
    thread.join();
    QCOMPARE(clock.now(), Ticks{31'200});
}

void SimulationClocksTest::runUntilGivesUpWithoutAWaiter()
{
    FreeRunningClock clock(0);
    QVERIFY(!clock.runUntil(1000, 1, std::chrono::milliseconds(1)));
    QCOMPARE(clock.now(), Ticks{0});
}

void SimulationClocksTest::releaseEndsBlockedWaits()
{
    FreeRunningClock clock(100);
    Clock::Interrupt interrupt;
    WaitEnd end = WaitEnd::DeadlineReached;
    std::thread thread([&] { end = clock.waitUntil(101, interrupt, 0); });
    clock.release();
    thread.join();
    QCOMPARE(end, WaitEnd::Released);
    QCOMPARE(clock.waitUntil(5000, interrupt, 0), WaitEnd::Released);
    QCOMPARE(clock.waitUntil(100, interrupt, 0), WaitEnd::DeadlineReached);
    QCOMPARE(clock.now(), Ticks{100});
}

void SimulationClocksTest::raiseEndsABlockedWait()
{
    FreeRunningClock clock(100);
    Clock::Interrupt interrupt;
    WaitEnd end = WaitEnd::DeadlineReached;
    std::thread thread([&] { end = clock.waitUntil(101, interrupt, 0); });
    QVERIFY(clock.runUntil(100));
    clock.raise(interrupt);
    thread.join();
    QCOMPARE(end, WaitEnd::Interrupted);
}

void SimulationClocksTest::runUntilCountsNoRaisedWaiter()
{
    FreeRunningClock clock(0);
    Clock::Interrupt interrupt;
    // So many that at least one is still asleep when the raise is followed at once.
    constexpr std::size_t Waiters = 16;
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < Waiters; ++i)
        threads.emplace_back([&] { clock.waitUntil(5000, interrupt, 0); });
    QVERIFY(clock.runUntil(0, Waiters));
    clock.raise(interrupt);
    const bool blocked = clock.runUntil(1000, 1, std::chrono::milliseconds(0));
    for (std::thread &thread : threads)
        thread.join();
    QVERIFY(!blocked);
    QCOMPARE(clock.now(), Ticks{0});
}

void SimulationClocksTest::advanceMovesTimeAndLimit()
{
    FreeRunningClock clock(0);
    Clock::Interrupt interrupt;
    std::thread thread([&] { clock.waitUntil(250, interrupt, 0); });
    clock.advance(400);
    thread.join();
    QCOMPARE(clock.now(), Ticks{400});
}

void SimulationClocksTest::sharedClockServesTheEarliestFirst()
{
    FreeRunningClock clock(0);
    Clock::Interrupt interrupt;
    std::mutex mutex;
    std::vector<Ticks> order;
    const auto wait = [&](Ticks deadline) {
        clock.waitUntil(deadline, interrupt, 0);
        const std::lock_guard lock(mutex);
        order.push_back(deadline);
    };
    std::thread late(wait, Ticks{900});
    QVERIFY(clock.runUntil(0));
    std::thread early([&] {
        wait(300);
        wait(1500);
    });
    QVERIFY(clock.runUntil(500, 2));
    {
        const std::lock_guard lock(mutex);
        QCOMPARE(order, (std::vector<Ticks>{300}));
    }
    QVERIFY(clock.runUntil(1000));
    late.join();
    clock.release();
    early.join();
    QCOMPARE(order, (std::vector<Ticks>{300, 900, 1500}));
}

void SimulationClocksTest::realTimeWaitLastsAsLongAsAsked()
{
    RealTimeClock clock;
    Clock::Interrupt interrupt;
    const auto begin = std::chrono::steady_clock::now();
    const Ticks deadline = clock.now() + 3 * TicksPerMillisecond;
    QCOMPARE(clock.waitUntil(deadline, interrupt, 0), WaitEnd::DeadlineReached);
    QVERIFY(clock.now() >= deadline);
    QVERIFY(std::chrono::steady_clock::now() - begin >= std::chrono::milliseconds(3));
}

void SimulationClocksTest::realTimeWaitIsInterrupted()
{
    RealTimeClock clock;
    Clock::Interrupt interrupt;
    WaitEnd end = WaitEnd::DeadlineReached;
    std::thread thread([&] { end = clock.waitUntil(FreeRunningClock::NoLimit, interrupt, 0); });
    clock.raise(interrupt);
    thread.join();
    QCOMPARE(end, WaitEnd::Interrupted);
}

QTEST_APPLESS_MAIN(SimulationClocksTest)
#include "SimulationClocksTest.moc"

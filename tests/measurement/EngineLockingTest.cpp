#include "tests/measurement/EngineFixture.h"

#include <QtTest>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

using Line = CxCameraLineData;

namespace {

/// Runs one call on a thread of its own and tells whether it has returned.
class CallOnAThread
{
public:
    explicit CallOnAThread(std::function<int()> call)
        : m_thread([this, call = std::move(call)] {
            enter(Began);
            const int result = call();
            const std::lock_guard lock(m_mutex);
            m_result = result;
            m_state = Returned;
            m_changed.notify_all();
        })
    {
    }

    ~CallOnAThread()
    {
        if (m_thread.joinable())
            m_thread.join();
    }

    CallOnAThread(const CallOnAThread &) = delete;
    CallOnAThread &operator=(const CallOnAThread &) = delete;

    /// Waits for the thread to be about to call, then gives the call time to
    /// return. A call that waits for nothing needs a tiny part of it.
    bool returnsSoon()
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_state != Idle; });
        return m_changed.wait_for(lock, std::chrono::milliseconds(20),
                                  [this] { return m_state == Returned; });
    }

    int result()
    {
        m_thread.join();
        return m_result;
    }

private:
    enum State { Idle, Began, Returned };

    void enter(State state)
    {
        const std::lock_guard lock(m_mutex);
        m_state = state;
        m_changed.notify_all();
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    State m_state = Idle;
    int m_result = -1;
    std::thread m_thread; // last: it uses the others
};

} // namespace

class EngineLockingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void counterValueWaitsForTheMutex();
    void runningStateWaitsForTheMutex();
};

void EngineLockingTest::counterValueWaitsForTheMutex()
{
    EngineFixture engine;
    Line::CxCounterInfo *const counter = engine.line->counterInfos[3];
    counter->value = 7;

    engine.line->mutex.lock();
    CallOnAThread call([&engine] { return engine.line->GetCounterValue(ZU_CNT_SEL_MISSED_TRG_OVERLAP); });
    const bool returned = call.returnsSoon();
    counter->value = 8;
    engine.line->mutex.unlock();

    QCOMPARE(call.result(), 8); // what the holder of the mutex left
    QVERIFY(!returned);
    QVERIFY(engine.line->mutex.tryLock());
    engine.line->mutex.unlock();
}

void EngineLockingTest::runningStateWaitsForTheMutex()
{
    EngineFixture engine;
    engine.line->mutex.lock();
    CallOnAThread call([&engine] { return int(engine.line->isMeasurementRunning()); });
    const bool returned = call.returnsSoon();
    engine.line->running = true;
    engine.line->mutex.unlock();

    const int result = call.result();
    engine.line->running = false; // nothing was started
    QCOMPARE(result, 1);
    QVERIFY(!returned);
    QVERIFY(engine.line->mutex.tryLock());
    engine.line->mutex.unlock();
}

QTEST_APPLESS_MAIN(EngineLockingTest)
#include "EngineLockingTest.moc"

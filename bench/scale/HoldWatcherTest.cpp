#include "bench/scale/HoldWatcher.h"

#include <QMutex>
#include <QTest>

using namespace scale;

Q_DECLARE_METATYPE(std::vector<bool>)

class HoldWatcherTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void seesAHold_data();
    void seesAHold();
    void aHoldThatLastsCounts();
    void freeMutexesHaveNone();
    void takesTheLongest();

private:
    /// Answers of the GUI thread, one a look; the last one stays.
    bool isBusy()
    {
        const auto look = static_cast<std::size_t>(m_looks++);
        return look < m_answers.size() ? static_cast<bool>(m_answers[look]) : m_answers.back();
    }
    void waitForLooks(int more)
    {
        const int wanted = m_looks + more;
        while (m_looks < wanted)
            std::this_thread::yield();
    }
    /// \return how long the mutex was held at least, and how long at most
    HoldWatcher::Hold holdFor(QMutex &mutex, int looks);

    std::vector<bool> m_answers;
    std::atomic<int> m_looks{0};
};

HoldWatcher::Hold HoldWatcherTest::holdFor(QMutex &mutex, int looks)
{
    const auto before = Time::now();
    mutex.lock();
    const auto taken = Time::now();
    m_looks = 0;
    waitForLooks(looks);
    const auto end = Time::now();
    mutex.unlock();
    return {milliseconds(end - taken), milliseconds(Time::now() - before)};
}

void HoldWatcherTest::seesAHold_data()
{
    QTest::addColumn<int>("pause");
    QTest::addColumn<std::vector<bool>>("answers");
    QTest::addColumn<bool>("gui");
    QTest::newRow("the GUI's") << 20 << std::vector<bool>{true} << true;
    QTest::newRow("without a pause") << 0 << std::vector<bool>{true} << true;
    QTest::newRow("another's") << 20 << std::vector<bool>{false} << false;
    QTest::newRow("GUI idle in between") << 20 << std::vector<bool>{true, true, true, false, true} << false;
}

void HoldWatcherTest::seesAHold()
{
    QFETCH(int, pause);
    QFETCH(std::vector<bool>, answers);
    QFETCH(bool, gui);
    m_answers = answers;
    QMutex mutex;
    HoldWatcher watcher(
        {&mutex}, [this] { return isBusy(); }, pause);
    const HoldWatcher::Hold truth = holdFor(mutex, 10);
    waitForLooks(2); // the first free one has been noted
    const HoldWatcher::Result seen = watcher.take();
    const HoldWatcher::Hold &hold = gui ? seen.gui : seen.other;
    const HoldWatcher::Hold &none = gui ? seen.other : seen.gui;
    QVERIFY(hold.atLeast > 0.0);
    QVERIFY(hold.atLeast <= truth.atMost);
    QVERIFY(hold.atMost >= truth.atLeast);
    QCOMPARE(none.atMost, 0.0);
    QVERIFY(seen.pollGapMedian >= pause);
}

void HoldWatcherTest::aHoldThatLastsCounts()
{
    m_answers = {true};
    QMutex mutex;
    HoldWatcher watcher(
        {&mutex}, [this] { return isBusy(); }, 0);
    mutex.lock();
    const auto taken = Time::now();
    waitForLooks(10);
    const double held = milliseconds(Time::now() - taken);
    QVERIFY(watcher.take().gui.atMost >= held);
    // What was taken is forgotten, but not that the mutex is held.
    waitForLooks(10);
    QVERIFY(watcher.take().gui.atLeast > 0.0);
    mutex.unlock();
}

void HoldWatcherTest::freeMutexesHaveNone()
{
    m_answers = {true};
    QMutex first;
    QMutex second;
    HoldWatcher watcher(
        {&first, &second}, [this] { return isBusy(); }, 0);
    waitForLooks(100);
    QCOMPARE(watcher.take().gui.atMost, 0.0);
    QVERIFY(first.tryLock());
    first.unlock();
}

void HoldWatcherTest::takesTheLongest()
{
    m_answers = {true};
    QMutex first;
    QMutex second;
    HoldWatcher watcher(
        {&first, &second}, [this] { return isBusy(); }, 0);
    holdFor(first, 4);
    const HoldWatcher::Hold longest = holdFor(second, 2000);
    waitForLooks(4);
    QVERIFY(watcher.take().gui.atMost >= longest.atLeast);
    waitForLooks(4);
    QCOMPARE(watcher.take().gui.atMost, 0.0);
}

QTEST_APPLESS_MAIN(HoldWatcherTest)
#include "HoldWatcherTest.moc"

#include "host/app/LogStore.h"

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace host;

namespace {

std::atomic<int> passedOn{0};

/// Stands for the handler of before; Qt Test's own would print and count all.
void previous(QtMsgType, const QMessageLogContext &, const QString &)
{
    ++passedOn;
}

} // namespace

class LogStoreThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void takesMessagesFromManyThreads();
    void countsWhatAFloodLoses();
    void comesAndGoesWhileThreadsLog();

private:
    QtMessageHandler m_testHandler = nullptr;
};

void LogStoreThreadsTest::init()
{
    passedOn = 0;
    m_testHandler = qInstallMessageHandler(previous);
}

void LogStoreThreadsTest::cleanup()
{
    qInstallMessageHandler(m_testHandler);
}

void LogStoreThreadsTest::takesMessagesFromManyThreads()
{
    constexpr int threadCount = 4;
    constexpr int messages = 200;
    LogStore store;
    store.install();
    std::atomic<int> running{threadCount};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([t, &running] {
            for (int i = 0; i < messages; ++i)
                qInfo("%d %d", t, i);
            --running;
        });
    }
    while (running > 0)
        store.deliver();
    for (std::thread &thread : threads)
        thread.join();
    store.deliver();

    QCOMPARE(store.rowCount(), threadCount * messages);
    QCOMPARE(passedOn.load(), threadCount * messages);
    std::vector<int> next(threadCount, 0);
    std::vector<quintptr> ids(threadCount, 0);
    for (int row = 0; row < store.rowCount(); ++row) {
        const QStringList parts = store.line(row).text.split(' ');
        const auto thread = static_cast<std::size_t>(parts.at(0).toInt());
        QCOMPARE(parts.at(1).toInt(), next[thread]++);
        if (ids[thread] == 0)
            ids[thread] = store.line(row).thread;
        QCOMPARE(store.line(row).thread, ids[thread]);
    }
}

void LogStoreThreadsTest::countsWhatAFloodLoses()
{
    constexpr int threadCount = 3;
    constexpr int messages = 400;
    LogLimits limits;
    limits.lines = 100;
    LogStore store(nullptr, limits);
    store.install();
    std::atomic<int> running{threadCount};
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&running] {
            for (int i = 0; i < messages; ++i)
                qInfo("flood");
            --running;
        });
    }
    while (running > 0) {
        store.deliver();
        QVERIFY(store.rowCount() <= limits.lines);
    }
    for (std::thread &thread : threads)
        thread.join();
    store.deliver();
    QCOMPARE(store.rowCount(), limits.lines);
    QCOMPARE(store.dropped(), quint64(threadCount * messages - limits.lines));
}

void LogStoreThreadsTest::comesAndGoesWhileThreadsLog()
{
    std::atomic<bool> stop{false};
    std::atomic<int> sent{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 2; ++t) {
        threads.emplace_back([&] {
            while (!stop) {
                qInfo("in between");
                ++sent;
                std::this_thread::yield();
            }
        });
    }
    int kept = 0;
    for (int round = 0; round < 20 || kept == 0; ++round) {
        LogStore store;
        store.install();
        const int before = sent;
        while (sent < before + 4)
            std::this_thread::yield();
        store.deliver();
        kept += store.rowCount();
    }
    stop = true;
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(passedOn.load(), sent.load());
    QVERIFY(kept <= sent);
}

QTEST_GUILESS_MAIN(LogStoreThreadsTest)
#include "LogStoreThreadsTest.moc"

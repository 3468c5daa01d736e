#include "tests/measurement/EngineFixture.h"

#include <QtTest>

using Line = CxCameraLineData;

class CameraCountersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void readsOnlySupportedCounters();
    void failedSelectorSkipsTheRead();
    void failedReadKeepsTheLastValue();
    void readingTakesNoMutex();
    void isCounterSupported();
    void valueOfACounter();
    void firstOfTwoEntriesCounts();

private:
    QList<int> values() const;

    std::unique_ptr<EngineFixture> m_engine;
};

void CameraCountersTest::init()
{
    m_engine = std::make_unique<EngineFixture>();
    for (int selector = 0; selector < 6; ++selector)
        m_engine->host.setValue(m_engine->camera, "counter_value[" + std::to_string(selector) + "]",
                                10 + selector);
    for (Line::CxCounterInfo *info : qAsConst(m_engine->line->counterInfos))
        info->supported = true;
}

void CameraCountersTest::cleanup()
{
    QVERIFY(m_engine->log.entries().isEmpty());
    m_engine.reset();
}

QList<int> CameraCountersTest::values() const
{
    QList<int> list;
    for (const Line::CxCounterInfo *info : qAsConst(m_engine->line->counterInfos))
        list.append(info->value);
    return list;
}

void CameraCountersTest::readsOnlySupportedCounters()
{
    m_engine->line->counterInfos[1]->supported = false;
    m_engine->line->counterInfos[4]->supported = false;
    m_engine->line->ReadCounterValues();
    QCOMPARE(values(), QList<int>({10, 0, 12, 13, 0, 15}));
    QCOMPARE(m_engine->calls(),
             QStringList({QStringLiteral("set counter_selector 0"), QStringLiteral("get counter_value 10"),
                          QStringLiteral("set counter_selector 2"), QStringLiteral("get counter_value 12"),
                          QStringLiteral("set counter_selector 3"), QStringLiteral("get counter_value 13"),
                          QStringLiteral("set counter_selector 5"), QStringLiteral("get counter_value 15")}));
}

void CameraCountersTest::failedSelectorSkipsTheRead()
{
    m_engine->line->counterInfos[3]->value = 99;
    m_engine->host.fail(scripted::Failure::write("counter_selector", 3));
    m_engine->line->ReadCounterValues();
    QCOMPARE(values(), QList<int>({10, 11, 12, 99, 14, 15}));
    QCOMPARE(m_engine->calls().mid(6, 3),
             QStringList({QStringLiteral("set counter_selector 3 failed"),
                          QStringLiteral("set counter_selector 4"), QStringLiteral("get counter_value 14")}));
}

void CameraCountersTest::failedReadKeepsTheLastValue()
{
    m_engine->line->ReadCounterValues();
    m_engine->host.setValue(m_engine->camera, "counter_value[0]", 100);
    m_engine->host.setValue(m_engine->camera, "counter_value[1]", 101);
    scripted::Failure second = scripted::Failure::read("counter_value");
    second.nth = 2;
    m_engine->host.fail(second);
    m_engine->line->ReadCounterValues();
    QCOMPARE(values(), QList<int>({100, 11, 12, 13, 14, 15}));
}

void CameraCountersTest::readingTakesNoMutex()
{
    m_engine->line->mutex.lock(); // a second lock would never return
    m_engine->line->ReadCounterValues();
    QVERIFY(m_engine->line->IsCounterSupported(ZU_CNT_SEL_TRANSFERRED));
    m_engine->line->mutex.unlock();
    QCOMPARE(values().first(), 10);
}

void CameraCountersTest::isCounterSupported()
{
    m_engine->line->counterInfos[2]->supported = false;
    QVERIFY(m_engine->line->IsCounterSupported(ZU_CNT_SEL_TRANSPORT_SKIP));
    QVERIFY(m_engine->line->IsCounterSupported(ZU_CNT_SEL_BUFFER_OVERFLOW));
    QVERIFY(!m_engine->line->IsCounterSupported(ZU_CNT_SEL_TRANSFERRED));
    QVERIFY(!m_engine->line->IsCounterSupported(ZU_COUNTER_SELECTOR(6)));
    QVERIFY(!m_engine->line->IsCounterSupported(ZU_COUNTER_SELECTOR(-1)));
}

void CameraCountersTest::valueOfACounter()
{
    m_engine->line->counterInfos[3]->value = 33;
    m_engine->line->counterInfos[3]->supported = false;
    QCOMPARE(m_engine->line->GetCounterValue(ZU_CNT_SEL_MISSED_TRG_OVERLAP), 33);
    QCOMPARE(m_engine->line->GetCounterValue(ZU_CNT_SEL_API_SKIP), 0);
    QCOMPARE(m_engine->line->GetCounterValue(ZU_COUNTER_SELECTOR(6)), 0);

    // No call has left the mutex locked.
    QVERIFY(m_engine->line->mutex.tryLock());
    m_engine->line->mutex.unlock();
}

void CameraCountersTest::firstOfTwoEntriesCounts()
{
    auto *twin = new Line::CxCounterInfo(ZU_CNT_SEL_API_SKIP, QStringLiteral("Twin"));
    twin->supported = true;
    twin->value = 77;
    m_engine->line->counterInfos.append(twin);
    m_engine->line->counterInfos[1]->supported = false;
    m_engine->line->counterInfos[1]->value = 5;
    QCOMPARE(m_engine->line->GetCounterValue(ZU_CNT_SEL_API_SKIP), 5);
    QVERIFY(!m_engine->line->IsCounterSupported(ZU_CNT_SEL_API_SKIP));
}

QTEST_APPLESS_MAIN(CameraCountersTest)
#include "CameraCountersTest.moc"

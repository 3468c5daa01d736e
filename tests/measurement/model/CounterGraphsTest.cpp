#include "measurement/PlotLibrary.h"

#include "measurement/CameraLineData.h"

#include <QMutexLocker>
#include <QTest>

#include <array>
#include <memory>
#include <thread>

/// The camera's counters as the plot's graphs hold them.
class CounterGraphsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void nothingRecorded();
    void oneRecord();
    void recordsOutsideTheWindow();
    void mutexIsFreeAfterwards();
    void countersBecomeGraphData();
    void frameRate();
    void graphsMayBeAbsent();
    void pixelColumns();
    void marginOfTenIntervals();
    void computerTime();
    void whileCapturing();

private:
    void addRecord(qint64 timestamp, qint32 value);
    bool calculate(const QCPRange &range, double msPerPixel = 0.0);
    QVector<double> keys(int graph) const;
    QVector<double> values(int graph) const;

    std::unique_ptr<QCustomPlot> m_plot;
    std::unique_ptr<CxCameraLineData> m_line;
    std::array<QCPGraph *, 6> m_graphs = {}; ///< five counters and the frame rate
    qint64 m_from = 0;
    qint64 m_to = 0;
};

void CounterGraphsTest::init()
{
    m_plot = std::make_unique<QCustomPlot>();
    for (QCPGraph *&graph : m_graphs)
        graph = m_plot->addGraph();
    m_line = std::make_unique<CxCameraLineData>();
    m_line->measureMode = MeasureModeAcquisition;
    m_from = 0;
    m_to = 4000000;
}

void CounterGraphsTest::cleanup()
{
    m_line.reset();
    m_plot.reset();
}

/// Each counter differs from the others.
void CounterGraphsTest::addRecord(qint64 timestamp, qint32 value)
{
    auto *record = new CxCameraLineData::CxCounterData;
    record->cameraTimestamp = timestamp;
    record->computerTimestamp = timestamp + Q_INT64_C(1000000000000);
    record->transportSkip = value;
    record->apiSkip = value + 10;
    record->missedTrgOverlap = value + 20;
    record->missedTrgOverflow = value + 30;
    record->bufferOverflow = -value;
    m_line->counterData.append(record);
}

bool CounterGraphsTest::calculate(const QCPRange &range, double msPerPixel)
{
    return m_line->calculateGraphsAcquisition(m_graphs[0], m_graphs[1], m_graphs[2], m_graphs[3], m_graphs[4],
                                              m_graphs[5], &range, m_from, m_to, TimestampOriginCamera,
                                              msPerPixel);
}

QVector<double> CounterGraphsTest::keys(int graph) const
{
    QVector<double> all;
    for (const QCPGraphData &point : *m_graphs[static_cast<std::size_t>(graph)]->data())
        all.append(point.key);
    return all;
}

QVector<double> CounterGraphsTest::values(int graph) const
{
    QVector<double> all;
    for (const QCPGraphData &point : *m_graphs[static_cast<std::size_t>(graph)]->data())
        all.append(point.value);
    return all;
}

void CounterGraphsTest::nothingRecorded()
{
    QVERIFY(!calculate(QCPRange(-4.0, 0.0)));
    QCOMPARE(keys(0), QVector<double>());
}

void CounterGraphsTest::oneRecord()
{
    addRecord(1000000, 1);
    QVERIFY(calculate(QCPRange(-4.0, 0.0)));
    for (int graph = 0; graph < 6; ++graph)
        QCOMPARE(keys(graph), QVector<double>());
}

/// The frame rate goes over all records, wherever the window lies.
void CounterGraphsTest::recordsOutsideTheWindow()
{
    addRecord(1000000, 1);
    addRecord(2000000, 2);
    for (const qint64 from : {Q_INT64_C(-90000000), Q_INT64_C(90000000)}) {
        for (QCPGraph *graph : m_graphs)
            graph->data()->clear();
        m_from = from;
        m_to = from + 1000000;
        QVERIFY(calculate(QCPRange(-1.0, 0.0)));
        for (int graph = 0; graph < 5; ++graph)
            QCOMPARE(keys(graph), QVector<double>());
        QCOMPARE(values(5), QVector<double>{1.0});
    }
}

void CounterGraphsTest::mutexIsFreeAfterwards()
{
    const QCPRange range(-4.0, 0.0);
    const auto isFree = [this] {
        const bool taken = m_line->mutex.tryLock();
        if (taken)
            m_line->mutex.unlock();
        return taken;
    };
    QVERIFY(!calculate(range));
    QVERIFY(isFree());
    addRecord(1000000, 1);
    QVERIFY(calculate(range));
    QVERIFY(isFree());
    m_from = m_to = 90000000;
    QVERIFY(calculate(range));
    QVERIFY(isFree());
}

void CounterGraphsTest::countersBecomeGraphData()
{
    for (int i = 1; i <= 4; ++i)
        addRecord(i * 1000, i);
    // The window's end, 4 s, lies at the upper bound of the axis.
    QVERIFY(calculate(QCPRange(-0.75, 3.25)));
    const QVector<double> x = {-3998000.0 / 1000000.0 + 3.25, -3997000.0 / 1000000.0 + 3.25,
                               -3996000.0 / 1000000.0 + 3.25};
    for (int graph = 0; graph < 5; ++graph)
        QCOMPARE(keys(graph), x);
    QCOMPARE(values(0), (QVector<double>{2, 3, 4}));
    QCOMPARE(values(1), (QVector<double>{12, 13, 14}));
    QCOMPARE(values(2), (QVector<double>{22, 23, 24}));
    QCOMPARE(values(3), (QVector<double>{32, 33, 34}));
    QCOMPARE(values(4), (QVector<double>{-2, -3, -4}));
    QCOMPARE(values(5), QVector<double>());
}

void CounterGraphsTest::frameRate()
{
    for (int i = 0; i < 7; ++i)
        addRecord(1000000 + i * 500000, i);
    m_to = 2000000; // the rate is drawn beyond it
    m_from = 1900000;
    QVERIFY(calculate(QCPRange(-0.1, 1.0)));
    QCOMPARE(keys(5), (QVector<double>{1.0, 2.0, 3.0}));
    QCOMPARE(values(5), (QVector<double>{2, 2, 2}));
    QCOMPARE(values(0), QVector<double>()); // only one record in the margins
}

void CounterGraphsTest::graphsMayBeAbsent()
{
    for (int i = 1; i <= 3; ++i)
        addRecord(i * 1000000, i);
    const QCPRange range(-4.0, 0.0);
    const auto all = m_graphs;
    for (std::size_t graph = 0; graph < all.size(); ++graph) {
        m_graphs = {};
        m_graphs[graph] = all[graph];
        QVERIFY(calculate(range));
        QCOMPARE(m_graphs[graph]->data()->size(), 2);
    }
    for (QCPGraph *graph : all)
        QCOMPARE(graph->data()->size(), 2);
    m_graphs = {};
    QVERIFY(calculate(range));
}

void CounterGraphsTest::pixelColumns()
{
    for (int i = 0; i < 100; ++i)
        addRecord(1000000 + i * 1000, i);
    QVERIFY(calculate(QCPRange(-4.0, 0.0), 9.5));
    QCOMPARE(values(0), (QVector<double>{10, 20, 30, 40, 50, 60, 70, 80, 90}));
}

void CounterGraphsTest::marginOfTenIntervals()
{
    for (int i = 0; i < 100; ++i)
        addRecord(1000000 + i * 1000, i);
    m_line->statAvg = 1000.9;
    m_from = m_to = 1050000;
    QVERIFY(calculate(QCPRange(-4.0, 0.0)));
    QCOMPARE(values(0).first(), 41.0);
    QCOMPARE(values(0).last(), 59.0);
}

void CounterGraphsTest::computerTime()
{
    for (int i = 1; i <= 3; ++i)
        addRecord(i * 1000000, i);
    constexpr qint64 shift = 1000000000000;
    const QCPRange range(-4.0, 0.0);
    QVERIFY(m_line->calculateGraphsAcquisition(m_graphs[0], nullptr, nullptr, nullptr, nullptr, m_graphs[5],
                                               &range, shift, shift + 4000000, TimestampOriginComputer, 0.0));
    QCOMPARE(keys(0), (QVector<double>{-2.0, -1.0}));
    QCOMPARE(keys(5), (QVector<double>{-2.0, -1.0}));
}

/// Records come and go under the mutex, as in a running measurement.
void CounterGraphsTest::whileCapturing()
{
    constexpr int appended = 3000;
    constexpr int kept = 50;
    addRecord(1000, 1);
    std::thread capture([this] {
        for (int i = 1; i < appended; ++i) {
            std::unique_ptr<CxCameraLineData::CxCounterData> dropped;
            const QMutexLocker locker(&m_line->mutex);
            addRecord(1000 + i * 1000, 1);
            if (m_line->counterData.size() > kept)
                dropped.reset(m_line->counterData.takeFirst());
        }
    });
    const QCPRange range(-4.0, 0.0);
    int wrong = 0; // judged after the thread has ended
    for (int pass = 0; pass < 200; ++pass) {
        m_graphs[0]->data()->clear();
        wrong += !m_line->calculateGraphsAcquisition(m_graphs[0], nullptr, nullptr, nullptr, nullptr, nullptr,
                                                     &range, 0, 4000000, TimestampOriginCamera, 0.0);
        wrong += m_graphs[0]->data()->size() > kept;
        for (const QCPGraphData &point : *m_graphs[0]->data())
            wrong += point.value != 1.0;
    }
    capture.join();
    QCOMPARE(wrong, 0);
    QCOMPARE(m_line->counterData.size(), kept);
}

QTEST_MAIN(CounterGraphsTest)
#include "CounterGraphsTest.moc"

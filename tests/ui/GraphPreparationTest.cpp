#include "tests/ui/MeasuringCameras.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QTest>

using rig::MeasuringCameras;

namespace {

/// Frames of a million stamps, one every eight bytes, whose level goes up and down.
class LargeFrames
{
public:
    static constexpr std::size_t words = 1 << 20;

    LargeFrames()
        : m_words(words)
    {
        quint64 stamp = 1000;
        for (std::size_t i = 0; i < words; ++i) {
            m_words[i] = stamp;
            stamp += i / 1000 % 2 == 0 ? 4 : 6; // 500 and 333 MB/s
        }
    }

    bool operator()(ZU_IMG &image)
    {
        constexpr quint64 framePeriod = 25000; // microseconds; a frame takes 21 ms
        const quint64 time = 1000000 + m_frame++ * framePeriod;
        image.filledSize = quint32(words * 8);
        image.data = m_words.data();
        image.width = 2048;
        image.height = quint32(words * 4 / 2048);
        image.frameNumber = quint32(m_frame);
        image.timestampSeconds = quint32(time / 1000000);
        image.timestampMicroseconds = quint32(time % 1000000);
        return true;
    }

private:
    std::vector<quint64> m_words;
    quint64 m_frame = 0;
};

} // namespace

/// A refresh that needs more work than the user may be kept waiting for: what is
/// shown stays, events come in, and the refresh is completed by itself.
class GraphPreparationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup() { m_cameras.reset(); }
    void editOfLongRecording();
    void editOfShortRecording();
    void statisticsOfLongRecording();
    void graphsAreWantedMeanwhile();
    void windowGoesMeanwhile();

private:
    void record(int frames);
    QLineEdit *edit(int column) const;
    /// Highest value of the level's curve.
    double highestLevel() const;

    std::unique_ptr<MeasuringCameras> m_cameras;
};

void GraphPreparationTest::init()
{
    m_cameras = std::make_unique<MeasuringCameras>(1);
    m_cameras->rig.loadSettings({{"DTGTSamplePeriod", 8}, {"DTGTMaxSamples", 100000000}});
    m_cameras->host.setImageSource((*m_cameras)[0], LargeFrames());
    m_cameras->liveGraph()->setChecked(false);
    // The axis follows the time: frames stay in view however long they take.
    m_cameras->showTime(-15.0, 3.0);
}

void GraphPreparationTest::record(int frames)
{
    edit(8)->setText("410"); // MB/s
    edit(9)->setText("20");  // kB
    QVERIFY(m_cameras->measure(0, frames));
    m_cameras->refresh();
    for (int turn = 0; turn < 1000 && m_cameras->points(0).empty(); ++turn)
        QCoreApplication::processEvents();
    QVERIFY(!m_cameras->points(0).empty());
}

double GraphPreparationTest::highestLevel() const
{
    double highest = 0.0;
    for (const QCPGraphData &point : m_cameras->points(0, "Max buffer level"))
        highest = std::max(highest, point.value);
    return highest;
}

QLineEdit *GraphPreparationTest::edit(int column) const
{
    return m_cameras->rig.cellWidget<QLineEdit>(m_cameras->row(0), column);
}

void GraphPreparationTest::editOfLongRecording()
{
    record(20);
    const double before = highestLevel();
    const QString row = m_cameras->cell(0, 5);
    edit(8)->setText("450");
    QSignalSpy replots(m_cameras->rig.plot(), &QCustomPlot::afterReplot);
    m_cameras->refresh();
    QCOMPARE(replots.size(), 0);
    QCOMPARE(highestLevel(), before);
    QCOMPARE(m_cameras->cell(0, 5), row);

    for (int turn = 0; turn < 1000 && replots.isEmpty(); ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(replots.size(), 1);
    QVERIFY(highestLevel() > before);
    // Once is enough.
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
    QCOMPARE(replots.size(), 1);
    m_cameras->refresh();
    QCOMPARE(replots.size(), 2);
}

void GraphPreparationTest::editOfShortRecording()
{
    record(5);
    const double before = highestLevel();
    edit(8)->setText("450");
    QSignalSpy replots(m_cameras->rig.plot(), &QCustomPlot::afterReplot);
    m_cameras->refresh();
    QCOMPARE(replots.size(), 1);
    QVERIFY(highestLevel() > before);
}

void GraphPreparationTest::statisticsOfLongRecording()
{
    record(20);
    edit(8)->setText("450");
    const QString row = m_cameras->cell(0, 5);
    m_cameras->tick();
    QCOMPARE(m_cameras->cell(0, 5), row);
    QTRY_VERIFY(m_cameras->cell(0, 5) != row);
}

/// A refresh of the statistics under way must not swallow one of the graphs.
void GraphPreparationTest::graphsAreWantedMeanwhile()
{
    record(36);
    const double before = highestLevel();
    edit(8)->setText("450");
    QSignalSpy replots(m_cameras->rig.plot(), &QCustomPlot::afterReplot);
    m_cameras->tick();
    m_cameras->refresh();
    QCOMPARE(replots.size(), 0);
    QTRY_COMPARE(replots.size(), 1);
    QVERIFY(highestLevel() > before);
}

void GraphPreparationTest::windowGoesMeanwhile()
{
    record(20);
    m_cameras->clickMeasure(0);
    edit(8)->setText("450");
    m_cameras->refresh();
    m_cameras->rig.destroyForm();
    for (int turn = 0; turn < 10; ++turn)
        QCoreApplication::processEvents();
}

QTEST_MAIN(GraphPreparationTest)
#include "GraphPreparationTest.moc"

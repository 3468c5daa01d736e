// A camera that loses frames in every way there is, watched in the viewer: what
// the plug-in's graphs and table show against what happened in the simulation.

#include "host/app/Viewer.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulatedCamera.h"
#include "host/core/simulation/SimulationBackend.h"
#include "measurement/PlotLibrary.h"

#include <QPushButton>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <thread>

Q_DECLARE_METATYPE(host::LedgerEntryKind)

class LossViewTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void counter_data();
    void counter();
    void frameRate();

private:
    struct Watched;
    Watched *m_watched = nullptr;
};

namespace {

using Kind = host::LedgerEntryKind;

constexpr double measuredSeconds = 4.0;
constexpr int transferredColumn = 4;

std::vector<host::LedgerEntry> entriesOf(const host::Ledger &ledger, Kind kind)
{
    std::vector<host::LedgerEntry> entries;
    std::copy_if(ledger.entries().begin(), ledger.entries().end(), std::back_inserter(entries),
                 [kind](const host::LedgerEntry &entry) { return entry.kind == kind; });
    return entries;
}

/// What the counter showed at a time, from the simulation's own record.
int counterAt(const host::Ledger &ledger, Kind kind, host::Ticks tick)
{
    const auto entries = entriesOf(ledger, kind);
    return int(std::count_if(entries.begin(), entries.end(),
                             [tick](const host::LedgerEntry &entry) { return entry.tick <= tick; }));
}

host::Scenario everyLoss()
{
    const host::ScenarioResult found = host::builtinScenario("every-loss");
    if (!found.scenario)
        qFatal("%s", found.error.c_str());
    return *found.scenario;
}

} // namespace

/// A measurement in acquisition mode, over, with its view.
struct LossViewTest::Watched
{
    Watched()
        : clock(std::make_shared<host::FreeRunningClock>(0))
    {
        QSettings settings(folder.filePath("settings.ini"), QSettings::IniFormat);
        settings.setValue("DataThroughputGraphPlugin/DTGTMeasMode", 1);
        settings.sync();
        auto backend = std::make_unique<host::SimulationBackend>(everyLoss(), clock);
        camera = backend->cameras().front();
        std::vector<std::unique_ptr<host::CameraBackend>> backends;
        backends.push_back(std::move(backend));
        host::ViewerOptions options;
        options.pluginPaths = QStringList{QStringLiteral(PLUGIN_FOLDER)};
        options.settingsFile = folder.filePath("settings.ini");
        options.openAll = true;
        viewer = std::make_unique<host::Viewer>(options, std::move(backends));
        form = viewer->window().findChild<QWidget *>("CxDataGraphForm");
        if (!form)
            qFatal("no plug-in");
    }

    QTableWidget *table() const { return form->findChild<QTableWidget *>("table"); }
    QCustomPlot *plot() const { return form->findChild<QCustomPlot *>("plot"); }
    int cell(int column) const { return table()->item(0, column)->text().toInt(); }

    bool measure()
    {
        // Pixel columns narrower than a frame's period: every frame has a point.
        plot()->axisRect()->axis(QCPAxis::atBottom)->setRange(-5.0, 0.0);
        auto *start = qobject_cast<QPushButton *>(table()->cellWidget(0, 3));
        start->click();
        if (start->text() != "Stop")
            return false;
        const bool reached = clock->runUntil(host::Ticks(measuredSeconds * host::TicksPerSecond));
        // The last capture waits for a frame that does not come any more.
        std::atomic<bool> stopped{false};
        std::thread releaser([&] {
            while (!stopped) {
                clock->release();
                std::this_thread::yield();
            }
        });
        start->click();
        stopped = true;
        releaser.join();
        QMetaObject::invokeMethod(form, "updateGraph");
        return reached && start->text() == "Start";
    }

    std::vector<QCPGraphData> points(const QString &name) const
    {
        for (int i = 0; i < plot()->graphCount(); ++i) {
            if (plot()->graph(i)->name() == name)
                return {plot()->graph(i)->data()->constBegin(), plot()->graph(i)->data()->constEnd()};
        }
        return {};
    }

    QTemporaryDir folder;
    std::shared_ptr<host::FreeRunningClock> clock;
    std::shared_ptr<host::SimulatedCamera> camera;
    std::unique_ptr<host::Viewer> viewer;
    QWidget *form = nullptr;
};

void LossViewTest::initTestCase()
{
    m_watched = new Watched;
    QVERIFY(m_watched->measure());
}

void LossViewTest::cleanupTestCase()
{
    delete m_watched;
}

void LossViewTest::counter_data()
{
    QTest::addColumn<QString>("graph");
    QTest::addColumn<int>("column");
    QTest::addColumn<Kind>("kind");
    QTest::newRow("frames lost on the link") << "Transport skip" << 5 << Kind::TransportSkip;
    QTest::newRow("frames the host did not fetch") << "API skip" << 6 << Kind::ApiSkip;
    QTest::newRow("triggers during a readout") << "Missed trg. overlap" << 7 << Kind::MissedOverlap;
    QTest::newRow("triggers before a full buffer") << "Missed trg overflow" << 8 << Kind::MissedOverflow;
    QTest::newRow("frames that overran the buffer") << "Buffer overflow" << 9 << Kind::BufferOverflow;
}

void LossViewTest::counter()
{
    QFETCH(QString, graph);
    QFETCH(int, column);
    QFETCH(Kind, kind);
    const host::Ledger ledger = m_watched->camera->ledger();
    const auto fetched = entriesOf(ledger, Kind::Fetched);
    QVERIFY(fetched.size() > 100);

    // The counters are read after each frame; the first one has no point.
    const auto points = m_watched->points(graph);
    QCOMPARE(points.size(), fetched.size() - 1);
    for (std::size_t i = 0; i < points.size(); ++i)
        QCOMPARE(int(points[i].value), counterAt(ledger, kind, fetched[i + 1].tick));

    const int last = counterAt(ledger, kind, fetched.back().tick);
    QCOMPARE(m_watched->cell(column), last);
    QCOMPARE(m_watched->cell(transferredColumn), counterAt(ledger, Kind::Transferred, fetched.back().tick));
    // The scenario shows what it is for, and the curve moves.
    QVERIFY(last > 0);
    QVERIFY(points.front().value < last);
}

void LossViewTest::frameRate()
{
    const host::Ledger ledger = m_watched->camera->ledger();
    std::vector<host::Ticks> triggers;
    for (const host::LedgerEntry &frame : entriesOf(ledger, Kind::Fetched)) {
        for (const host::LedgerEntry &trigger : entriesOf(ledger, Kind::TriggerAccepted)) {
            if (trigger.frame == frame.frame)
                triggers.push_back(trigger.tick);
        }
    }
    const auto points = m_watched->points("FPS");
    QCOMPARE(points.size(), std::size_t(measuredSeconds - 1));
    std::size_t begin = 0;
    std::size_t end = 0;
    for (const QCPGraphData &point : points) {
        while (triggers[end] - triggers[begin] < host::TicksPerSecond)
            ++end;
        const double seconds = double(triggers[end] - triggers[begin]) / host::TicksPerSecond;
        // Time stamps are whole microseconds.
        QVERIFY(std::abs(point.value - double(end - begin) / seconds) < 0.001);
        begin = end;
    }
}

QTEST_MAIN(LossViewTest)
#include "LossViewTest.moc"

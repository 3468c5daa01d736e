#include "tests/measurement/LogCapture.h"
#include "tests/scriptedhost/ScriptedGui.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "ui/DataGraphForm.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>
#include <QTime>

#include <cmath>

/// The window's operations that nothing outside reaches, on a window of the
/// linked library instead of the loaded plug-in's.
class PlotFactoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void plotOfACamera();
    void makesGraphs_data();
    void makesGraphs();
    void refusesOtherNames_data();
    void refusesOtherNames();
    void graphWithoutAPlotArea_data();
    void graphWithoutAPlotArea();
    void addsAPlotArea();
    void configuresAnAxis();
    void emptyLabelKeepsTheOld();
    void connectsTheTimeAxis();
    void plotNames();
    void unknownModes_data();
    void unknownModes();
    void unknownModeHasNoMeasureButtons();
    void unknownModeEndsTheBoxWithoutAreas();
    void visibleTime_data();
    void visibleTime();
    void visibleTimeAtFirst();
    void viewThatIsShownAlready();
    void editsWithoutAPlotArea();
    void originStandsStillWithoutAMeasurement();
    void originFollowsAMeasurement_data();
    void originFollowsAMeasurement();

private:
    QCustomPlot *plot() const { return m_form->findChild<QCustomPlot *>("plot"); }
    QTableWidget *table() const { return m_form->findChild<QTableWidget *>("table"); }
    void setMode(int mode);
    qint64 origin() const
    {
        qint64 from = 0;
        qint64 to = 0;
        return m_form->GetTimeAxisRange(&from, &to);
    }

    scripted::Host &m_host = scripted::Host::instance();
    ZUCORE_HANDLE m_camera = nullptr;
    std::unique_ptr<CxDataGraphForm> m_form;
    std::unique_ptr<LogCapture> m_log;
};

namespace {

qint64 microsecondsOfDay()
{
    return QTime::currentTime().msecsSinceStartOfDay() * Q_INT64_C(1000);
}

/// Waits for the next millisecond, the clock's step.
void waitUntilNot(qint64 time)
{
    while (microsecondsOfDay() == time) {
    }
}

} // namespace

void PlotFactoryTest::init()
{
    m_host.reset();
    scripted::Gui::instance().reset();
    m_camera = m_host.openCamera({"Alpha", "A-1", {}});
    m_log = std::make_unique<LogCapture>();
    m_form = std::make_unique<CxDataGraphForm>();
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
    plot()->clearGraphs();
    m_log->clear();
}

void PlotFactoryTest::cleanup()
{
    m_form.reset();
    m_log.reset();
}

void PlotFactoryTest::setMode(int mode)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    settings.setValue("DTGTMeasMode", mode);
    m_form->loadSettings(&settings);
}

void PlotFactoryTest::plotOfACamera()
{
    QCOMPARE(m_form->GetCameraPlot(m_camera), plot()->axisRect(0));
    QVERIFY(!m_form->GetCameraPlot(&m_host));
    table()->cellWidget(0, 10)->findChild<QCheckBox *>()->click();
    QVERIFY(!m_form->GetCameraPlot(m_camera));
}

void PlotFactoryTest::makesGraphs_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("valueAxis");
    QTest::addColumn<int>("alpha");
    QTest::newRow("rate") << "Min throughput" << int(QCPAxis::atLeft) << 255;
    QTest::newRow("level") << "Max buffer level" << int(QCPAxis::atRight) << 150;
}

void PlotFactoryTest::makesGraphs()
{
    QFETCH(QString, name);
    QFETCH(int, valueAxis);
    QFETCH(int, alpha);
    const QCPGraph *graph = m_form->AddThrougputPlot(m_camera, name, QColor(1, 2, 3));
    QVERIFY(graph);
    QCOMPARE(graph->name(), name);
    QCOMPARE(graph->keyAxis()->axisType(), QCPAxis::atBottom);
    QCOMPARE(int(graph->valueAxis()->axisType()), valueAxis);
    QCOMPARE(graph->keyAxis()->axisRect(), m_form->GetCameraPlot(m_camera));
    QCOMPARE(graph->pen(), QPen(QBrush(QColor(1, 2, 3, alpha)), 1.0));
    QCOMPARE(graph->brush(), alpha == 255 ? QBrush() : QBrush(QColor(1, 2, 3, alpha)));
    QCOMPARE(m_form->GetCameraPlot(m_camera)->graphs(), QList<QCPGraph *>({const_cast<QCPGraph *>(graph)}));
    QVERIFY(m_log->entries().isEmpty());
}

void PlotFactoryTest::refusesOtherNames_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("of another mode") << "Transport skip";
    QTest::newRow("other case") << "min throughput";
    QTest::newRow("longer") << "Max buffer level ";
    QTest::newRow("empty") << "";
}

void PlotFactoryTest::refusesOtherNames()
{
    QFETCH(QString, name);
    QVERIFY(!m_form->AddThrougputPlot(m_camera, name, Qt::red));
    QCOMPARE(m_log->messages(), QStringList("CxDataGraphForm::AddThrougputPlot(): Unknown througput plot"));
    QCOMPARE(plot()->graphCount(), 0);
}

void PlotFactoryTest::graphWithoutAPlotArea_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("message");
    QTest::newRow("rate") << "Min throughput"
                          << "Failed to allocate min throughput plot";
    QTest::newRow("level") << "Max buffer level"
                           << "Failed to allocate buffer fill plot";
}

void PlotFactoryTest::graphWithoutAPlotArea()
{
    QFETCH(QString, name);
    QFETCH(QString, message);
    QVERIFY(!m_form->AddThrougputPlot(&m_host, name, Qt::red));
    QCOMPARE(m_log->messages(), QStringList("CxDataGraphForm::AddThrougputPlot(): " + message));
}

void PlotFactoryTest::addsAPlotArea()
{
    QVERIFY(m_form->AddCameraPlotThroughput(&m_host, 6, "Some title"));
    const auto *title = qobject_cast<QCPTextElement *>(plot()->plotLayout()->element(6, 0));
    QVERIFY(title);
    QCOMPARE(title->text(), QString("Some title"));
    QCOMPARE(plot()->plotLayout()->element(7, 0), m_form->GetCameraPlot(&m_host));
}

void PlotFactoryTest::configuresAnAxis()
{
    QCPAxisRect *rect = m_form->GetCameraPlot(m_camera);
    QCPAxis *top = rect->axis(QCPAxis::atTop);
    m_form->ConfigurePlotAxis(rect, QCPAxis::atTop, 3.0, 8.0, "Label");
    QCOMPARE(top->range().lower, 3.0);
    QCOMPARE(top->range().upper, 8.0);
    QCOMPARE(top->label(), QString("Label"));
    QVERIFY(top->visible());
    QCOMPARE(top->basePen(), QPen(Qt::white));
    QVERIFY(!qSharedPointerDynamicCast<QCPAxisTickerTime>(top->ticker()));
    QVERIFY(!rect->rangeDragAxes(Qt::Horizontal).contains(top));
}

void PlotFactoryTest::emptyLabelKeepsTheOld()
{
    QCPAxisRect *rect = m_form->GetCameraPlot(m_camera);
    m_form->ConfigurePlotAxis(rect, QCPAxis::atLeft, 1.0, 2.0, QString());
    QCOMPARE(rect->axis(QCPAxis::atLeft)->label(), QString("Avg. rate [MB/s]"));
    QCOMPARE(rect->axis(QCPAxis::atLeft)->range().upper, 2.0);
}

void PlotFactoryTest::connectsTheTimeAxis()
{
    m_form->AddCameraPlotThroughput(&m_host, 2, "Second");
    QCPAxisRect *second = m_form->GetCameraPlot(&m_host);
    QCOMPARE(second->rangeDragAxes(Qt::Horizontal), QList<QCPAxis *>({second->axis(QCPAxis::atBottom)}));
    second->axis(QCPAxis::atBottom)->setRange(-3.0, 4.0);
    QCOMPARE(m_form->GetCameraPlot(m_camera)->axis(QCPAxis::atBottom)->range().lower, -3.0);
}

void PlotFactoryTest::plotNames()
{
    QVERIFY(m_form->IsPlotEnabled("Min throughput"));
    QVERIFY(m_form->IsPlotEnabled("Max buffer level"));
    QVERIFY(!m_form->IsPlotEnabled("max buffer level"));
    QVERIFY(!m_form->IsPlotEnabled("FPS"));
    QVERIFY(!m_form->IsPlotEnabled(QString()));
    m_form->findChild<QTableWidget *>("tablePlotCheck")->cellWidget(1, 0)->findChild<QCheckBox *>()->click();
    QVERIFY(m_form->IsPlotEnabled("Min throughput"));
    QVERIFY(!m_form->IsPlotEnabled("Max buffer level"));
}

void PlotFactoryTest::unknownModes_data()
{
    QTest::addColumn<QByteArray>("slot");
    QTest::newRow("tick") << QByteArray("timerSignal");
    QTest::newRow("refresh") << QByteArray("updateGraph");
    QTest::newRow("list") << QByteArray("updateCameraList");
}

void PlotFactoryTest::unknownModes()
{
    QFETCH(QByteArray, slot);
    setMode(5);
    table()->setRowCount(1);
    m_log->clear();
    const QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    QVERIFY(QMetaObject::invokeMethod(m_form.get(), slot.constData()));
    QCOMPARE(replots.size(), 0);
    QCOMPARE(m_log->messages(),
             QStringList(QString("CxDataGraphForm::%1(): Unknown measurement mode is selected")
                             .arg(QString::fromLatin1(slot))));
}

void PlotFactoryTest::unknownModeHasNoMeasureButtons()
{
    setMode(5);
    m_log->clear();
    m_form->UpdateMeasureButtonText(m_camera, "Stop");
    QCOMPARE(m_log->messages(),
             QStringList("CxDataGraphForm::UpdateMeasureButtonText(): Unknown measurement mode is selected"));
}

void PlotFactoryTest::unknownModeEndsTheBoxWithoutAreas()
{
    setMode(5);
    table()->setRowCount(1);
    QCheckBox box;
    box.setProperty("hCam", qulonglong(reinterpret_cast<quintptr>(m_camera)));
    connect(&box, SIGNAL(clicked(bool)), m_form.get(), SLOT(onChkCamPlotData(bool)));
    m_log->clear();
    box.click();
    QCOMPARE(m_log->messages(),
             QStringList("CxDataGraphForm::onChkCamPlotData(): Unknown measurement mode is selected"));
    QCOMPARE(plot()->axisRectCount(), 0);
    QVERIFY(QMetaObject::invokeMethod(m_form.get(), "updateCameraList")); // the lock is free again
}

void PlotFactoryTest::visibleTime_data()
{
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::addColumn<qint64>("from");
    QTest::addColumn<qint64>("to");
    QTest::newRow("whole seconds") << -5.0 << 2.0 << Q_INT64_C(-5000000) << Q_INT64_C(2000000);
    QTest::newRow("rounded outwards")
        << -1.00000049 << 2.00000051 << Q_INT64_C(-1000001) << Q_INT64_C(2000001);
    QTest::newRow("rounded outwards from 0")
        << 0.00000051 << 1.00000149 << Q_INT64_C(0) << Q_INT64_C(1000002);
}

void PlotFactoryTest::visibleTime()
{
    QFETCH(double, lower);
    QFETCH(double, upper);
    m_form->GetCameraPlot(m_camera)->axis(QCPAxis::atBottom)->setRange(lower, upper);
    qint64 from = 0;
    qint64 to = 0;
    const qint64 zero = m_form->GetTimeAxisRange(&from, &to);
    QTEST(from - zero, "from");
    QTEST(to - zero, "to");
}

void PlotFactoryTest::visibleTimeAtFirst()
{
    const qint64 before = microsecondsOfDay();
    CxDataGraphForm form;
    const qint64 after = microsecondsOfDay();
    qint64 from = 0;
    qint64 to = 0;
    const qint64 zero = form.GetTimeAxisRange(&from, &to);
    QVERIFY(before <= zero && zero <= after);
    QCOMPARE(zero % 1000, Q_INT64_C(0));
    QCOMPARE(to, zero);
    QCOMPARE(from, zero - 20000000);
}

/// Setting the axes to the view comes back here.
void PlotFactoryTest::viewThatIsShownAlready()
{
    const QPointer<QCPGraph> graph = m_form->AddThrougputPlot(m_camera, "Min throughput", Qt::red);
    QVERIFY(graph);
    QSignalSpy replots(plot(), &QCustomPlot::afterReplot);
    m_form->on_plotChangeZoom(QCPRange(-20.0, 0.0));
    QVERIFY(graph);
    QCOMPARE(replots.size(), 0);
    m_form->on_plotChangeZoom(QCPRange(-20.0, 1.0));
    QVERIFY(!graph); // made anew for the other view
}

void PlotFactoryTest::editsWithoutAPlotArea()
{
    QWidget *cell = table()->cellWidget(0, 11);
    cell->findChild<QCheckBox *>()->click();
    const QList<QLineEdit *> edits = cell->findChildren<QLineEdit *>();
    table()->cellWidget(0, 10)->findChild<QCheckBox *>()->click();
    QVERIFY(!m_form->GetCameraPlot(m_camera));
    edits[0]->setText("5");
    edits[1]->setText("9");
    table()->cellWidget(0, 10)->findChild<QCheckBox *>()->click();
    // Nothing was kept for the new area either.
    QCOMPARE(m_form->GetCameraPlot(m_camera)->axis(QCPAxis::atLeft)->range().lower, 0.0);
    QCOMPARE(m_form->GetCameraPlot(m_camera)->axis(QCPAxis::atLeft)->range().upper, 1000.0);
}

void PlotFactoryTest::originStandsStillWithoutAMeasurement()
{
    const qint64 first = origin();
    waitUntilNot(first);
    m_form->updateGraph();
    m_form->updateStats();
    m_form->timerSignal();
    m_form->GetCameraPlot(m_camera)->axis(QCPAxis::atBottom)->setRange(-3.0, 4.0);
    QCOMPARE(origin(), first);
}

void PlotFactoryTest::originFollowsAMeasurement_data()
{
    QTest::addColumn<bool>("withGraphs");
    QTest::newRow("refresh") << true;
    QTest::newRow("statistics") << false;
}

void PlotFactoryTest::originFollowsAMeasurement()
{
    QFETCH(bool, withGraphs);
    const auto refresh = [&] { withGraphs ? m_form->updateGraph() : m_form->updateStats(); };
    m_host.openCamera({"Beta", "B-2", {}}); // does not measure
    auto *button = qobject_cast<QPushButton *>(table()->cellWidget(0, 2));
    button->click();
    QVERIFY(m_host.isStreaming(m_camera));
    for (int repetition = 0; repetition < 3; ++repetition) {
        waitUntilNot(origin());
        const qint64 before = microsecondsOfDay();
        refresh();
        const qint64 after = microsecondsOfDay();
        QVERIFY(before <= origin() && origin() <= after);
    }

    qobject_cast<QPushButton *>(table()->cellWidget(0, 2))->click();
    const qint64 last = origin();
    waitUntilNot(last);
    refresh();
    QCOMPARE(origin(), last);
}

QTEST_MAIN(PlotFactoryTest)
#include "PlotFactoryTest.moc"

#include "tests/ui/MeasuringCameras.h"
#include "ui/DataGraphForm.h"

#include <QHBoxLayout>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using rig::PluginRig;

/// The window's operations that acquisition mode adds, called directly.
class AcquisitionFactoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void addsAPlotArea();
    void graphOnTheRight();
    void graphOnTheRightWithoutAPlotArea();
    void counterGraph();
    void counterGraphOfAnUnsupportedCounter_data();
    void counterGraphOfAnUnsupportedCounter();
    void counterGraphWithoutAPlotArea();
    void counterGraphOfAnUnknownCamera();
    void plotNames();
    void counterCellsAtFirst();
    void columnSevenIsTheOneThatIsDisabled();
    void leftAxisIsNotFittedToARow();

private:
    void setMode(int mode);
    /// Has the camera prepared once, which finds its counters.
    bool prepareCamera();
    QCustomPlot *plot() const { return m_form->findChild<QCustomPlot *>("plot"); }
    QTableWidget *table() const { return m_form->findChild<QTableWidget *>("table"); }

    scripted::Host &m_host = scripted::Host::instance();
    ZUCORE_HANDLE m_camera = nullptr;
    std::unique_ptr<LogCapture> m_log;
    std::unique_ptr<CxDataGraphForm> m_form;
};

void AcquisitionFactoryTest::init()
{
    m_host.reset();
    scripted::Gui::instance().reset();
    m_camera = m_host.openCamera({"Alpha", "A-1", {}});
    m_log = std::make_unique<LogCapture>();
    m_form = std::make_unique<CxDataGraphForm>();
    m_form->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_form.get()));
    setMode(1);
}

void AcquisitionFactoryTest::cleanup()
{
    m_form.reset();
    m_log.reset();
}

void AcquisitionFactoryTest::setMode(int mode)
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    settings.setValue("DTGTMeasMode", mode);
    m_form->loadSettings(&settings);
    plot()->clearGraphs();
    m_log->clear();
}

bool AcquisitionFactoryTest::prepareCamera()
{
    auto *button = qobject_cast<QPushButton *>(table()->cellWidget(0, 3));
    PluginRig::click(button);
    const bool started = m_host.isStreaming(m_camera);
    PluginRig::click(button);
    plot()->clearGraphs();
    m_log->clear();
    return started;
}

void AcquisitionFactoryTest::addsAPlotArea()
{
    QVERIFY(m_form->AddCameraPlotAcquisition(&m_host, 6, "Some title"));
    const auto *title = qobject_cast<QCPTextElement *>(plot()->plotLayout()->element(6, 0));
    QVERIFY(title);
    QCOMPARE(title->text(), QString("Some title"));
    QCPAxisRect *rect = m_form->GetCameraPlot(&m_host);
    QVERIFY(rect);
    QCOMPARE(plot()->plotLayout()->element(7, 0), rect);
    QCOMPARE(rect->axis(QCPAxis::atLeft)->label(), QString("Counter value"));
}

void AcquisitionFactoryTest::graphOnTheRight()
{
    const QCPGraph *graph = m_form->AddAcqPlotToRight(m_camera, "Any name", QColor(1, 2, 3));
    QVERIFY(graph);
    QCOMPARE(graph->name(), QString("Any name"));
    const QCPAxisRect *rect = m_form->GetCameraPlot(m_camera);
    QCOMPARE(graph->keyAxis(), rect->axis(QCPAxis::atBottom));
    QCOMPARE(graph->valueAxis(), rect->axis(QCPAxis::atRight));
    QCOMPARE(graph->pen(), QPen(QBrush(QColor(1, 2, 3)), 1.0));
    QVERIFY(m_log->entries().isEmpty());
}

void AcquisitionFactoryTest::graphOnTheRightWithoutAPlotArea()
{
    QVERIFY(!m_form->AddAcqPlotToRight(&m_host, "FPS", Qt::red));
    QCOMPARE(m_log->messages(), QStringList("CxDataGraphForm::AddAcqPlotToRight(): Failed to allocate plot"));
}

void AcquisitionFactoryTest::counterGraph()
{
    QVERIFY(prepareCamera());
    for (int selector = 0; selector <= 5; ++selector) {
        const QString name = QString("Counter %1").arg(selector);
        const QCPGraph *graph =
            m_form->AddStandardAcqPlot(m_camera, name, ZU_COUNTER_SELECTOR(selector), QColor(1, 2, 3));
        QVERIFY(graph);
        QCOMPARE(graph->name(), name);
        const QCPAxisRect *rect = m_form->GetCameraPlot(m_camera);
        QCOMPARE(graph->keyAxis(), rect->axis(QCPAxis::atBottom));
        QCOMPARE(graph->valueAxis(), rect->axis(QCPAxis::atLeft));
        QCOMPARE(graph->pen(), QPen(QBrush(QColor(1, 2, 3)), 1.0));
    }
    QCOMPARE(plot()->graphCount(), 6);
    QVERIFY(m_log->entries().isEmpty());
}

void AcquisitionFactoryTest::counterGraphOfAnUnsupportedCounter_data()
{
    QTest::addColumn<bool>("prepared");
    QTest::addColumn<int>("selector");
    QTest::newRow("never prepared") << false << 0;
    QTest::newRow("not settable") << true << 3;
    QTest::newRow("no counter") << true << 6;
}

void AcquisitionFactoryTest::counterGraphOfAnUnsupportedCounter()
{
    QFETCH(bool, prepared);
    QFETCH(int, selector);
    m_host.fail(scripted::Failure::write("counter_selector:settable", 3));
    QVERIFY(!prepared || prepareCamera());
    QVERIFY(!m_form->AddStandardAcqPlot(m_camera, "Name", ZU_COUNTER_SELECTOR(selector), Qt::red));
    QVERIFY(m_log->entries().isEmpty());
    QCOMPARE(plot()->graphCount(), 0);
}

void AcquisitionFactoryTest::counterGraphWithoutAPlotArea()
{
    QVERIFY(prepareCamera());
    table()->cellWidget(0, 11)->findChild<QCheckBox *>()->click();
    QVERIFY(!m_form->GetCameraPlot(m_camera));
    QVERIFY(!m_form->AddStandardAcqPlot(m_camera, "API skip", ZU_CNT_SEL_API_SKIP, Qt::red));
    QCOMPARE(m_log->messages(),
             QStringList("CxDataGraphForm::AddStandardAcqPlot(): Failed to allocate plot"));
}

void AcquisitionFactoryTest::counterGraphOfAnUnknownCamera()
{
    QVERIFY(!m_form->AddStandardAcqPlot(&m_host, "API skip", ZU_CNT_SEL_API_SKIP, Qt::red));
    QVERIFY(m_log->entries().isEmpty());
    QVERIFY(QMetaObject::invokeMethod(m_form.get(), "updateGraph")); // it is still unknown
}

void AcquisitionFactoryTest::plotNames()
{
    for (const char *name : {"Transport skip", "API skip", "Missed trg. overlap", "Missed trg overflow",
                             "Buffer overflow", "FPS"})
        QVERIFY2(m_form->IsPlotEnabled(name), name);
    for (const char *name : {"Transferred", "Min throughput", "fps", "Missed trg overlap", ""})
        QVERIFY2(!m_form->IsPlotEnabled(name), name);
    const auto *boxes = m_form->findChild<QTableWidget *>("tablePlotCheck");
    boxes->cellWidget(3, 0)->findChild<QCheckBox *>()->click();
    QVERIFY(!m_form->IsPlotEnabled("Missed trg overflow"));
    QVERIFY(m_form->IsPlotEnabled("Buffer overflow"));
    setMode(0);
    QVERIFY(!m_form->IsPlotEnabled("API skip"));
}

/// Before anything is known of the camera; rows are not refreshed in a mode that
/// the window does not have.
void AcquisitionFactoryTest::counterCellsAtFirst()
{
    setMode(5);
    m_form->AddTableItemsAcquisition();
    for (int column = 4; column <= 9; ++column) {
        const QTableWidgetItem *item = table()->item(0, column);
        QVERIFY(item);
        QCOMPARE(item->text(), QString());
        QCOMPARE(item->foreground().color(), QColor(255, 255, 255));
        QCOMPARE(item->textAlignment(), 132);
    }
}

/// Here it holds a counter, so that a measuring camera's row stays as it is.
void AcquisitionFactoryTest::columnSevenIsTheOneThatIsDisabled()
{
    m_form->DisableUiForMeasurement(m_camera, true);
    for (int column = 0; column < 12; ++column) {
        const QWidget *cell = table()->cellWidget(0, column);
        QVERIFY(!cell || cell->isEnabled());
    }
    auto *widget = new QWidget;
    widget->setProperty("hCam", qulonglong(reinterpret_cast<quintptr>(m_camera)));
    table()->setCellWidget(0, 7, widget);
    m_form->DisableUiForMeasurement(m_camera, true);
    QVERIFY(!widget->isEnabled());
    m_form->DisableUiForMeasurement(m_camera, false);
    QVERIFY(widget->isEnabled());
}

/// Even if its row had what throughput mode's rows have.
void AcquisitionFactoryTest::leftAxisIsNotFittedToARow()
{
    QVERIFY(prepareCamera());
    auto *cell = new QWidget;
    auto *layout = new QHBoxLayout(cell);
    auto *automatic = new QCheckBox;
    automatic->setChecked(true);
    automatic->setProperty("hCam", qulonglong(reinterpret_cast<quintptr>(m_camera)));
    auto *minimum = new QLineEdit("0");
    layout->addWidget(automatic);
    layout->addWidget(minimum);
    layout->addWidget(new QLineEdit("0"));
    table()->setCellWidget(0, 11, cell);

    QCPAxisRect *rect = m_form->GetCameraPlot(m_camera);
    rect->axis(QCPAxis::atLeft)->setRange(-0.1, 1.0);
    QCPGraph *graph = m_form->AddStandardAcqPlot(m_camera, "API skip", ZU_CNT_SEL_API_SKIP, Qt::red);
    graph->addData({0.0, 1.0}, {50.0, 70.0});
    m_form->UpdateVertAxisInformation(m_camera, rect);
    QCOMPARE(rect->axis(QCPAxis::atLeft)->range(), QCPRange(-0.1, 1.0));
    QCOMPARE(minimum->text(), QString("0"));
}

QTEST_MAIN(AcquisitionFactoryTest)
#include "AcquisitionFactoryTest.moc"

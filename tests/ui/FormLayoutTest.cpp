#include "tests/ui/PluginRig.h"

#include <QBoxLayout>
#include <QGridLayout>
#include <QHeaderView>
#include <QMenu>
#include <QMetaMethod>
#include <QtTest>

using rig::PluginRig;
using scripted::Gui;
using scripted::Host;

class FormLayoutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void window();
    void widgets_data();
    void widgets();
    void sizes_data();
    void sizes();
    void grid();
    void columns_data();
    void columns();
    void startAllButton();
    void cameraTable();
    void plot();
    void exportButton();
    void slotsOfTheWindow_data();
    void slotsOfTheWindow();
    void orderOfSlots();
    void noSignals();

private:
    QGridLayout *gridLayout() const { return qobject_cast<QGridLayout *>(m_rig->form()->layout()); }
    QWidget *child(const QString &name) const { return m_rig->form()->findChild<QWidget *>(name); }

    std::unique_ptr<PluginRig> m_rig;
};

namespace {

constexpr int anyPolicy = -1;

struct SlotRow
{
    const char *signature;
    const char *parameters; ///< names, joined by commas
};

/// In the order of the meta-object.
const SlotRow slotRows[] = {
    {"updateCameraList()", ""},
    {"updateCameraListRow(ZUCORE_HANDLE)", "hCam"},
    {"removeCameraListRow(ZUCORE_HANDLE)", "hCam"},
    {"updateTableItem(int,int,QString)", "row,col,val"},
    {"updateTableCounterItem(ZUCORE_HANDLE,int,int,ZU_COUNTER_SELECTOR)", "hCam,row,col,sel"},
    {"updateGraph()", ""},
    {"timerSignal()", ""},
    {"updateColumnNames()", ""},
    {"onComboboxFormatChanged(int)", "newSel"},
    {"onComboboxFormatChangedExt(ZUCORE_HANDLE)", "hCam"},
    {"onBtnMeasure()", ""},
    {"onBtnCamExportData()", ""},
    {"onChkCamPlotData(bool)", "state"},
    {"onChkCamAutoTransport(bool)", "state"},
    {"onEditCamTransportChanged(QString)", "text"},
    {"onChkCamAutoInternalBuffer(bool)", "state"},
    {"onEditCamInternalBufferChanged(QString)", "text"},
    {"clearFocusAfterEditReturnPressed()", ""},
    {"onChkCamAutoVertAxis(bool)", "state"},
    {"onEditVertScaleMinChanged(QString)", "text"},
    {"onEditVertScaleMaxChanged(QString)", "text"},
    {"onBtnExport(int)", "iExportType"},
    {"on_btnSetup_clicked()", ""},
    {"on_btnResetZoom_clicked()", ""},
    {"on_resetPan_clicked()", ""},
    {"on_refreshGraph_clicked()", ""},
    {"on_btnStartAll_clicked()", ""},
    {"on_plotChangeZoom(QCPRange)", "range"},
};

} // namespace

void FormLayoutTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
}

void FormLayoutTest::cleanup()
{
    m_rig.reset();
}

void FormLayoutTest::window()
{
    QWidget *form = m_rig->form();
    QCOMPARE(form->objectName(), "CxDataGraphForm");
    QCOMPARE(form->metaObject()->className(), "CxDataGraphForm");
    QCOMPARE(form->windowTitle(), "Data Throughput Graph");
    QCOMPARE(form->size(), QSize(878, 396));
}

void FormLayoutTest::widgets_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("focusPolicy");
    const int strong = 11;
    QTest::newRow("table") << "QTableWidget" << QString() << int(Qt::NoFocus);
    QTest::newRow("btnSetup") << "QPushButton"
                              << "Setup..." << strong;
    QTest::newRow("btnStartAll") << "QPushButton"
                                 << "Start All" << strong;
    QTest::newRow("plot") << "QCustomPlot" << QString() << anyPolicy;
    QTest::newRow("btnResetZoom") << "QPushButton"
                                  << "Reset Zoom" << strong;
    QTest::newRow("resetPan") << "QPushButton"
                              << "Reset Pan" << strong;
    QTest::newRow("checkBoxLiveGraph") << "QCheckBox"
                                       << "Live Graph" << strong;
    QTest::newRow("refreshGraph") << "QPushButton"
                                  << "Refresh" << strong;
    QTest::newRow("btnExport") << "CxExportToolButton"
                               << "Export Graph" << anyPolicy;
    QTest::newRow("labelPlotEn") << "QLabel"
                                 << "Enable or disable plot:" << anyPolicy;
    QTest::newRow("tablePlotCheck") << "QTableWidget" << QString() << anyPolicy;
}

void FormLayoutTest::widgets()
{
    QFETCH(QString, className);
    QFETCH(QString, text);
    QFETCH(int, focusPolicy);
    QCOMPARE(m_rig->form()->findChildren<QWidget *>(QTest::currentDataTag()).size(), 1);
    const QWidget *widget = child(QTest::currentDataTag());
    QCOMPARE(widget->metaObject()->className(), className);
    QCOMPARE(widget->property("text").toString(), text);
    if (focusPolicy != anyPolicy)
        QCOMPARE(int(widget->focusPolicy()), focusPolicy);
    QVERIFY(widget->isVisible());
    QVERIFY(widget->isEnabled() || widget->objectName() == "btnStartAll");
    if (className == "QCheckBox")
        QVERIFY(widget->property("checked").toBool());
}

void FormLayoutTest::sizes_data()
{
    QTest::addColumn<int>("horizontal");
    QTest::addColumn<int>("vertical");
    QTest::addColumn<QSize>("minimum");
    QTest::addColumn<QSize>("maximum");
    const int expanding = QSizePolicy::Expanding;
    const int fixed = QSizePolicy::Fixed;
    const int unlimited = 16777215;
    // The table's height follows its rows: see the tests of the camera table.
    QTest::newRow("table") << expanding << fixed << QSize(0, -1) << QSize(unlimited, -1);
    QTest::newRow("plot") << expanding << expanding << QSize(514, 100) << QSize(unlimited, unlimited);
    QTest::newRow("btnExport") << int(QSizePolicy::Preferred) << fixed << QSize(0, 0)
                               << QSize(unlimited, unlimited);
    QTest::newRow("tablePlotCheck") << fixed << expanding << QSize(150, 50) << QSize(150, 125);
}

void FormLayoutTest::sizes()
{
    QFETCH(int, horizontal);
    QFETCH(int, vertical);
    QFETCH(QSize, minimum);
    QFETCH(QSize, maximum);
    const QWidget *widget = child(QTest::currentDataTag());
    QCOMPARE(int(widget->sizePolicy().horizontalPolicy()), horizontal);
    QCOMPARE(int(widget->sizePolicy().verticalPolicy()), vertical);
    QCOMPARE(widget->minimumWidth(), minimum.width());
    QCOMPARE(widget->maximumWidth(), maximum.width());
    if (minimum.height() < 0)
        return;
    QCOMPARE(widget->minimumHeight(), minimum.height());
    QCOMPARE(widget->maximumHeight(), maximum.height());
}

void FormLayoutTest::grid()
{
    QVERIFY(gridLayout());
    QCOMPARE(gridLayout()->objectName(), "gridLayout");
    QCOMPARE(gridLayout()->count(), 4);
    QCOMPARE(gridLayout()->itemAtPosition(0, 0)->widget(), child("table"));
    QCOMPARE(gridLayout()->itemAtPosition(1, 0)->widget(), child("plot"));
}

void FormLayoutTest::columns_data()
{
    QTest::addColumn<int>("gridRow");
    QTest::addColumn<QStringList>("items");
    QTest::addColumn<int>("spacerPolicy");
    QTest::newRow("verticalLayout") << 0 << QStringList({"btnSetup", "btnStartAll", "(spacer)"})
                                    << int(QSizePolicy::Minimum);
    QTest::newRow("verticalLayout_2")
        << 1
        << QStringList({"btnResetZoom", "resetPan", "checkBoxLiveGraph", "refreshGraph", "btnExport",
                        "labelPlotEn", "tablePlotCheck", "(spacer)"})
        << int(QSizePolicy::Expanding);
}

void FormLayoutTest::columns()
{
    QFETCH(int, gridRow);
    QFETCH(QStringList, items);
    QFETCH(int, spacerPolicy);
    const auto *column = qobject_cast<QVBoxLayout *>(gridLayout()->itemAtPosition(gridRow, 1)->layout());
    QVERIFY(column);
    QCOMPARE(column->objectName(), QTest::currentDataTag());
    if (gridRow == 1)
        QCOMPARE(column->spacing(), 6);
    QStringList found;
    for (int i = 0; i < column->count(); ++i) {
        const QWidget *widget = column->itemAt(i)->widget();
        found.append(widget ? widget->objectName() : "(spacer)");
    }
    QCOMPARE(found, items);
    QSpacerItem *spacer = column->itemAt(column->count() - 1)->spacerItem();
    QVERIFY(spacer);
    QCOMPARE(spacer->sizeHint().width(), 20);
    QCOMPARE(int(spacer->sizePolicy().horizontalPolicy()), int(QSizePolicy::Minimum));
    QCOMPARE(int(spacer->sizePolicy().verticalPolicy()), spacerPolicy);
}

void FormLayoutTest::startAllButton()
{
    const auto *button = m_rig->find<QPushButton>("btnStartAll");
    QVERIFY(!button->autoDefault());
    QVERIFY(!button->isEnabled()); // no camera
    rig::openCamera("Model", "1");
    QVERIFY(button->isEnabled());
}

void FormLayoutTest::cameraTable()
{
    const QTableWidget *table = m_rig->table();
    QCOMPARE(int(table->editTriggers()), int(QAbstractItemView::NoEditTriggers));
    QCOMPARE(table->selectionMode(), QAbstractItemView::NoSelection);
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), 24); // even where the style's minimum is larger
    QCOMPARE(table->rowCount(), 0);
}

void FormLayoutTest::plot()
{
    const QCustomPlot *plot = m_rig->plot();
    QCOMPARE(int(plot->interactions()), int(QCP::iRangeDrag | QCP::iRangeZoom));
    QVERIFY(plot->noAntialiasingOnDrag());
    QCOMPARE(Gui::instance().plots(), QList<QCustomPlot *>({m_rig->plot()}));
}

void FormLayoutTest::exportButton()
{
    auto *button = m_rig->find<CxExportToolButton>("btnExport");
    QCOMPARE(button->exportType(), CxExportToolButton::eExportFile);
    QCOMPARE(int(button->exportType()), 1);
    QStringList offered;
    for (const QAction *action : button->menu()->actions())
        offered.append(action->text());
    QCOMPARE(offered, QStringList({"Export type 1", "Export type 2"}));
}

void FormLayoutTest::slotsOfTheWindow_data()
{
    QTest::addColumn<QString>("parameters");
    for (const SlotRow &row : slotRows)
        QTest::newRow(row.signature) << row.parameters;
}

void FormLayoutTest::slotsOfTheWindow()
{
    QFETCH(QString, parameters);
    const QMetaObject *meta = m_rig->form()->metaObject();
    const int index = meta->indexOfSlot(QTest::currentDataTag());
    QVERIFY(index >= meta->methodOffset());
    const QMetaMethod method = meta->method(index);
    QCOMPARE(method.returnType(), int(QMetaType::Void));
    QCOMPARE(method.parameterNames().join(','), parameters.toLatin1());
}

/// All there are.
void FormLayoutTest::orderOfSlots()
{
    const QMetaObject *meta = m_rig->form()->metaObject();
    QStringList expected;
    for (const SlotRow &row : slotRows)
        expected.append(row.signature);
    QStringList found;
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        found.append(meta->method(i).methodSignature());
    QCOMPARE(found, expected);
}

void FormLayoutTest::noSignals()
{
    const QMetaObject *meta = m_rig->form()->metaObject();
    for (int i = meta->methodOffset(); i < meta->methodCount(); ++i)
        QCOMPARE(meta->method(i).methodType(), QMetaMethod::Slot);
    QCOMPARE(meta->propertyCount(), meta->propertyOffset());
}

QTEST_MAIN(FormLayoutTest)
#include "FormLayoutTest.moc"

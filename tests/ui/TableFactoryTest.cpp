#include "tests/scriptedhost/ScriptedGui.h"
#include "tests/scriptedhost/ScriptedHost.h"
#include "ui/DataGraphForm.h"

#include <QCheckBox>
#include <QSettings>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTest>

/// The operations on the window's tables, called directly.
class TableFactoryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void headerOfAColumn();
    void headerWithoutAToolTip();
    void quantity();
    void widgetOfAnotherCameraStaysEnabled();
    void overflowCount_data();
    void overflowCount();
    void settingsOfAnEngine();

private:
    QTableWidget *table(const char *name = "table") const
    {
        return m_form->findChild<QTableWidget *>(QString::fromLatin1(name));
    }

    scripted::Host &m_host = scripted::Host::instance();
    ZUCORE_HANDLE m_camera = nullptr;
    std::unique_ptr<CxDataGraphForm> m_form;
};

namespace {

using Lines = QMap<void *, CxCameraLineData *>;

/// The window's engines, private to it: no test can record 2^32 frames.
Lines &linesOf(CxDataGraphForm &form);
template <Lines CxDataGraphForm::*lines> struct Opener
{
    friend Lines &linesOf(CxDataGraphForm &form) { return form.*lines; }
};
template struct Opener<&CxDataGraphForm::m_cameraLines>;

} // namespace

void TableFactoryTest::init()
{
    m_host.reset();
    scripted::Gui::instance().reset();
    m_camera = m_host.openCamera({"Alpha", "A-1", {}});
    m_form = std::make_unique<CxDataGraphForm>();
}

void TableFactoryTest::cleanup()
{
    m_form.reset();
}

void TableFactoryTest::headerOfAColumn()
{
    m_form->AddTableItem(4, "Header", "Tool tip");
    QCOMPARE(table()->horizontalHeaderItem(4)->text(), "Header");
    QCOMPARE(table()->horizontalHeaderItem(4)->data(Qt::ToolTipRole), QVariant("Tool tip"));
}

/// None is left of the header before either.
void TableFactoryTest::headerWithoutAToolTip()
{
    QVERIFY(!table()->horizontalHeaderItem(4)->toolTip().isEmpty());
    m_form->AddTableItem(4, "Header", "");
    QCOMPARE(table()->horizontalHeaderItem(4)->text(), "Header");
    QVERIFY(!table()->horizontalHeaderItem(4)->data(Qt::ToolTipRole).isValid());
}

void TableFactoryTest::quantity()
{
    m_form->AddPlotTableItem(1, "Any name", "Any tip", QColor(1, 2, 3));
    const QTableWidgetItem *item = table("tablePlotCheck")->item(1, 1);
    QCOMPARE(item->text(), "Any name");
    QCOMPARE(item->toolTip(), "Any tip");
    QCOMPARE(item->foreground().color(), QColor(1, 2, 3));
    QCOMPARE(item->textAlignment(), 132);
    auto *box = table("tablePlotCheck")->cellWidget(1, 0)->findChild<QCheckBox *>();
    QVERIFY(m_form->IsPlotEnabled("Any name"));
    box->setChecked(false);
    QVERIFY(!m_form->IsPlotEnabled("Any name"));
}

void TableFactoryTest::widgetOfAnotherCameraStaysEnabled()
{
    const QWidget *button = table()->cellWidget(0, 7);
    m_form->DisableTableWidget(0, 7, &m_host, true);
    QVERIFY(button->isEnabled());
    m_form->DisableTableWidget(0, 7, m_camera, true);
    QVERIFY(!button->isEnabled());
    m_form->DisableTableWidget(0, 7, &m_host, false);
    QVERIFY(!button->isEnabled());
    m_form->DisableTableWidget(0, 7, m_camera, false);
    QVERIFY(button->isEnabled());
    m_form->DisableTableWidget(0, 3, m_camera, true); // an item, no widget
    m_form->DisableTableWidget(9, 7, m_camera, true);
}

void TableFactoryTest::overflowCount_data()
{
    QTest::addColumn<quint64>("count");
    QTest::addColumn<QString>("text");
    QTest::newRow("none") << Q_UINT64_C(0) << "0";
    QTest::newRow("beyond 31 bits") << Q_UINT64_C(2147483648) << "2147483648";
    QTest::newRow("beyond 32 bits") << Q_UINT64_C(4294967297) << "4294967297";
    QTest::newRow("largest") << Q_UINT64_C(18446744073709551615) << "18446744073709551615";
}

/// The others fit into 32 bits.
void TableFactoryTest::overflowCount()
{
    QFETCH(quint64, count);
    CxCameraLineData *line = linesOf(*m_form).value(m_camera);
    QVERIFY(line);
    line->bufferOverflowCount = count;
    line->maxBufferLevel = 1e10;
    m_form->updateCameraListRow(m_camera);
    QTEST(table()->item(0, 6)->text(), "text");
    QCOMPARE(table()->item(0, 5)->text(), "2147483647 %");
}

void TableFactoryTest::settingsOfAnEngine()
{
    const QTemporaryDir folder;
    QSettings settings(folder.filePath("host.ini"), QSettings::IniFormat);
    settings.setValue("DTGTSamplePeriod", 8192);
    settings.setValue("DTGTMaxSamples", 9000000000LL);
    const CxCameraLineData *known = linesOf(*m_form).value(m_camera);
    QCOMPARE(known->sampleInterval, 1024U);
    QCOMPARE(known->maxSamples, 10000000LL);
    m_form->loadSettings(&settings);
    QCOMPARE(linesOf(*m_form).value(m_camera), known);
    ZUCORE_HANDLE later = m_host.openCamera({"Beta", "B-2", {}});
    const CxCameraLineData *added = linesOf(*m_form).value(later);
    for (const CxCameraLineData *line : {known, added}) {
        QCOMPARE(line->sampleInterval, 8192U);
        QCOMPARE(line->maxSamples, 9000000000LL);
    }
}

QTEST_MAIN(TableFactoryTest)
#include "TableFactoryTest.moc"

#include "tests/ui/MeasuringCameras.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QHeaderView>
#include <QtTest>

using rig::MeasuringCameras;
using rig::Mode;

/// What the cells of both tables are made of in acquisition mode.
class AcquisitionCellsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void headers_data();
    void headers();
    void headersWithoutCamera();
    void columnNamesStay();
    void items();
    void buttons_data();
    void buttons();
    void plotCell();
    void everyInputBearsTheCamera();
    void plotCheckTable();
    void plotCheckTableFitsItsNames();
    void plotCheckRows_data();
    void plotCheckRows();
    void plotCheckRowsAfterRebuilds();
};

namespace {

constexpr int firstCounter = 4;

} // namespace

void AcquisitionCellsTest::headers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    const auto row = [](const char *column, const char *text, const char *toolTip) {
        QTest::newRow(column) << QString(text) << QString(toolTip);
    };
    row("0", "Camera", "");
    row("1", "Status", "Data gap measurement status");
    row("2", "Data Format", "Output data format.");
    row("3", "Measure", "Start/Stop Measurement");
    row("4", "Transferred", "Number of transferred frames");
    row("5", "Transport skip", "Number of skipped frames on transport layer");
    row("6", "API skip", "Number of skipped frames on API layer");
    row("7", "Missed trg. overlap", "Number of missed triggers due to overlap");
    row("8", "Missed trg overflow", "Number of missed triggers due to frame buffer full");
    row("9", "Buffer overflow", "Frame buffer full counter");
    row("10", "Export data", "Export data to .csv report");
    row("11", "Graph", "Enable/Disable plotting of measured data");
}

void AcquisitionCellsTest::headers()
{
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    const MeasuringCameras cameras(1, Mode::Acquisition);
    QCOMPARE(cameras.rig.table()->columnCount(), 12);
    const QTableWidgetItem *header =
        cameras.rig.table()->horizontalHeaderItem(QByteArray(QTest::currentDataTag()).toInt());
    QVERIFY(header);
    QCOMPARE(header->text(), text);
    QCOMPARE(header->data(Qt::ToolTipRole).isValid(), !toolTip.isEmpty());
    QCOMPARE(header->toolTip(), toolTip);
}

void AcquisitionCellsTest::headersWithoutCamera()
{
    const MeasuringCameras cameras(0, Mode::Acquisition);
    QCOMPARE(cameras.rig.table()->rowCount(), 0);
    QCOMPARE(cameras.rig.table()->columnCount(), 12);
    QCOMPARE(cameras.rig.table()->horizontalHeaderItem(2)->text(), "Data Format");
    QVERIFY(!cameras.startAll()->isEnabled());
}

/// Units belong to the other mode's columns.
void AcquisitionCellsTest::columnNamesStay()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    QStringList before;
    for (int column = 0; column < 12; ++column) {
        cameras.rig.table()->horizontalHeaderItem(column)->setText(QString("Column %1").arg(column));
        before.append(QString("Column %1").arg(column));
    }
    cameras.rig.call("updateColumnNames");
    QStringList after;
    for (int column = 0; column < 12; ++column)
        after.append(cameras.rig.table()->horizontalHeaderItem(column)->text());
    QCOMPARE(after, before);
}

void AcquisitionCellsTest::items()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const QTableWidgetItem *name = cameras.rig.table()->item(0, 0);
    QVERIFY(name);
    QCOMPARE(name->text(), MeasuringCameras::name(0));
    QCOMPARE(name->data(Qt::UserRole).toULongLong(), qulonglong(reinterpret_cast<quintptr>(cameras[0])));
    for (int column : {1, 4, 5, 6, 7, 8, 9}) {
        const QTableWidgetItem *item = cameras.rig.table()->item(0, column);
        QVERIFY2(item, qPrintable(QString::number(column)));
        QCOMPARE(item->textAlignment(), 132);
        QVERIFY(!cameras.rig.table()->cellWidget(0, column));
        // A counter can neither be selected nor edited.
        QCOMPARE(item->flags() == Qt::NoItemFlags, column >= firstCounter);
    }
}

void AcquisitionCellsTest::buttons_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("3") << "Start";
    QTest::newRow("10") << "Export Data...";
}

void AcquisitionCellsTest::buttons()
{
    QFETCH(QString, text);
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const auto *button = qobject_cast<QPushButton *>(
        cameras.rig.table()->cellWidget(0, QByteArray(QTest::currentDataTag()).toInt()));
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QVERIFY(button->isEnabled());
}

void AcquisitionCellsTest::plotCell()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const QWidget *cell = cameras.rig.table()->cellWidget(0, 11);
    QVERIFY(cell);
    QCOMPARE(cell->children().size(), 2);
    const auto *layout = qobject_cast<QHBoxLayout *>(cell->children()[0]);
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(int(layout->alignment()), int(Qt::AlignCenter));
    const auto *box = qobject_cast<QCheckBox *>(cell->children()[1]);
    QVERIFY(box);
    QVERIFY(box->isChecked());
    QCOMPARE(box->maximumWidth(), box->sizeHint().width());
}

void AcquisitionCellsTest::everyInputBearsTheCamera()
{
    const MeasuringCameras cameras(2, Mode::Acquisition);
    int inputs = 0;
    for (int camera = 0; camera < 2; ++camera) {
        for (int column = 0; column < 12; ++column) {
            QWidget *cell = cameras.rig.table()->cellWidget(cameras.row(camera), column);
            if (!cell)
                continue;
            for (const QWidget *widget : QList<QWidget *>{cell} + cell->findChildren<QWidget *>()) {
                if (!qobject_cast<const QAbstractButton *>(widget) &&
                    !qobject_cast<const QComboBox *>(widget))
                    continue;
                ++inputs;
                QCOMPARE(rig::handleOf(widget), cameras[camera]);
                QCOMPARE(int(widget->property("hCam").type()), int(QMetaType::ULongLong));
            }
        }
    }
    QCOMPARE(inputs, 2 * 4); // a format, two buttons, a box
}

void AcquisitionCellsTest::plotCheckTable()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const auto *table = cameras.rig.find<QTableWidget>("tablePlotCheck");
    QCOMPARE(table->columnCount(), 2);
    QCOMPARE(table->rowCount(), 6);
    QVERIFY(table->horizontalHeader()->isHidden());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), 24);
    QCOMPARE(table->verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
}

/// The table is narrow: in neither mode is a name cut off or to be scrolled to.
void AcquisitionCellsTest::plotCheckTableFitsItsNames()
{
    MeasuringCameras cameras(1);
    auto *table = cameras.rig.find<QTableWidget>("tablePlotCheck");
    const QAbstractItemView *view = table;
    for (const Mode mode : {Mode::Throughput, Mode::Acquisition}) {
        cameras.setMode(mode);
        for (int column = 0; column < 2; ++column)
            QCOMPARE(table->columnWidth(column), view->sizeHintForColumn(column));
        for (int row = 0; row < table->rowCount(); ++row)
            QVERIFY(table->rowHeight(row) >= view->sizeHintForRow(row));
        QVERIFY(table->horizontalHeader()->length() <= table->viewport()->width());
    }
}

void AcquisitionCellsTest::plotCheckRows_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QColor>("colour");
    const auto row = [](const char *number, const char *name, const char *toolTip, const QColor &colour) {
        QTest::newRow(number) << QString(name) << QString(toolTip) << colour;
    };
    row("0", "Transport skip", "Number of skipped frames on transport layer", QColor(255, 165, 0));
    row("1", "API skip", "Number of skipped frames on API layer", QColor(255, 0, 0));
    row("2", "Missed trg. overlap", "Number of missed triggers due to overlap", QColor(255, 255, 0));
    row("3", "Missed trg overflow", "Number of missed triggers due to frame buffer full", QColor(0, 255, 0));
    row("4", "Buffer overflow", "Frame buffer full counter", QColor(80, 80, 255));
    row("5", "FPS", "Frames per second", QColor(144, 200, 255));
}

void AcquisitionCellsTest::plotCheckRows()
{
    QFETCH(QString, name);
    QFETCH(QString, toolTip);
    QFETCH(QColor, colour);
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const auto *table = cameras.rig.find<QTableWidget>("tablePlotCheck");
    const int row = QByteArray(QTest::currentDataTag()).toInt();
    const QTableWidgetItem *item = table->item(row, 1);
    QVERIFY(item);
    QCOMPARE(item->text(), name);
    QCOMPARE(item->toolTip(), toolTip);
    QCOMPARE(item->textAlignment(), 132);
    QCOMPARE(item->foreground().color(), colour);
    const QWidget *cell = table->cellWidget(row, 0);
    QVERIFY(cell);
    const auto *layout = qobject_cast<QHBoxLayout *>(cell->layout());
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    QCOMPARE(int(layout->alignment()), int(Qt::AlignCenter));
    const QList<QCheckBox *> boxes = cell->findChildren<QCheckBox *>();
    QCOMPARE(boxes.size(), 1);
    QVERIFY(boxes[0]->isChecked());
    QCOMPARE(boxes[0]->property("plotName").toString(), name);
    QCOMPARE(boxes[0]->maximumWidth(), boxes[0]->sizeHint().width());
}

void AcquisitionCellsTest::plotCheckRowsAfterRebuilds()
{
    const MeasuringCameras cameras(1, Mode::Acquisition);
    const auto *table = cameras.rig.find<QTableWidget>("tablePlotCheck");
    rig::PluginRig::click(table->cellWidget(0, 0)->findChild<QCheckBox *>());
    for (int i = 0; i < 3; ++i)
        cameras.rig.call("updateCameraList");
    QCOMPARE(table->rowCount(), 6);
    QVERIFY(table->cellWidget(0, 0)->findChild<QCheckBox *>()->isChecked());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(table->findChildren<QCheckBox *>().size(), 6);
}

QTEST_MAIN(AcquisitionCellsTest)
#include "AcquisitionCellsTest.moc"

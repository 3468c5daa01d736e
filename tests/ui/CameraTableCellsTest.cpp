#include "tests/ui/PluginRig.h"

#include <QBoxLayout>
#include <QHeaderView>
#include <QIntValidator>
#include <QtTest>

using rig::PluginRig;
using scripted::Host;

/// What the cells of both tables are made of.
class CameraTableCellsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void headers_data();
    void headers();
    void headersWithoutCamera();
    void columnNamesAgain();
    void headerModes();
    void cameraItem();
    void centredItems();
    void buttons_data();
    void buttons();
    void autoCells_data();
    void autoCells();
    void autoValues_data();
    void autoValues();
    void plotCell();
    void axisCell();
    void everyInputBearsTheCamera();
    void plotCheckTable();
    void plotCheckRows_data();
    void plotCheckRows();
    void plotCheckRowsAfterRebuilds();

private:
    static const QIntValidator *validator(const QLineEdit *edit)
    {
        return qobject_cast<const QIntValidator *>(edit->validator());
    }

    Host &m_host = Host::instance();
    std::unique_ptr<PluginRig> m_rig;
    ZUCORE_HANDLE m_camera = nullptr;
};

void CameraTableCellsTest::init()
{
    m_rig = std::make_unique<PluginRig>();
    m_rig->createForm();
    m_camera = rig::openCamera("Model", "1");
}

void CameraTableCellsTest::cleanup()
{
    m_rig.reset();
}

void CameraTableCellsTest::headers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("toolTip");
    QTest::newRow("0") << "Camera" << QString();
    QTest::newRow("1") << "Status"
                       << "Data gap measurement status";
    QTest::newRow("2") << "Measure"
                       << "Start/Stop Measurement";
    QTest::newRow("3") << "Average\nthroughput [MB/s]"
                       << "Average data rate";
    QTest::newRow("4") << "Minimum\nthroughput [MB/s]"
                       << "Minimum data rate in whole data set";
    QTest::newRow("5") << "Max buffer level"
                       << "Internal camera buffer fill percentage";
    QTest::newRow("6") << "Buffer overflow\ncount"
                       << "Number of times internal camera buffer was totally filled";
    QTest::newRow("7") << "Export data"
                       << "Export data to .csv report";
    QTest::newRow("8") << "Required\nthroughput [MB/s]"
                       << "Expected sensor speed for evaluation";
    QTest::newRow("9") << "Camera buffer\nsize [kB]"
                       << "Size of internal camera buffer in bytes";
    QTest::newRow("10") << "Graph"
                        << "Enable/Disable plotting of measured data";
    QTest::newRow("11") << "Y Axis scaling"
                        << "Enable/Disable Y axis automatic scaling or set manual axis range";
}

void CameraTableCellsTest::headers()
{
    QFETCH(QString, text);
    QFETCH(QString, toolTip);
    QCOMPARE(m_rig->table()->columnCount(), 12);
    const QTableWidgetItem *header =
        m_rig->table()->horizontalHeaderItem(QByteArray(QTest::currentDataTag()).toInt());
    QVERIFY(header);
    QCOMPARE(header->text(), text);
    QCOMPARE(header->data(Qt::ToolTipRole).isValid(), !toolTip.isEmpty());
    QCOMPARE(header->toolTip(), toolTip);
}

void CameraTableCellsTest::headersWithoutCamera()
{
    m_host.closeCamera(m_camera);
    m_rig->call("updateCameraList");
    QCOMPARE(m_rig->table()->columnCount(), 12);
    QCOMPARE(m_rig->table()->horizontalHeaderItem(9)->text(), "Camera buffer\nsize [kB]");
}

void CameraTableCellsTest::columnNamesAgain()
{
    m_rig->table()->horizontalHeaderItem(6)->setText("changed");
    // A width that the header does not correct by itself.
    m_rig->table()->horizontalHeader()->setSectionResizeMode(3, QHeaderView::Interactive);
    m_rig->table()->setColumnWidth(3, 500);
    QCOMPARE(m_rig->table()->columnWidth(3), 500);
    m_rig->call("updateColumnNames");
    QCOMPARE(m_rig->table()->horizontalHeaderItem(6)->text(), "Buffer overflow\ncount");
    QCOMPARE(m_rig->table()->horizontalHeaderItem(3)->text(), "Average\nthroughput [MB/s]");
    QVERIFY(m_rig->table()->columnWidth(3) < 500);
}

void CameraTableCellsTest::headerModes()
{
    const QTableWidget *table = m_rig->table();
    for (int column = 0; column < 12; ++column)
        QCOMPARE(table->horizontalHeader()->sectionResizeMode(column), QHeaderView::ResizeToContents);
    QCOMPARE(table->verticalHeader()->sectionResizeMode(0), QHeaderView::ResizeToContents);
}

void CameraTableCellsTest::cameraItem()
{
    const QTableWidgetItem *item = m_rig->table()->item(0, 0);
    QVERIFY(item);
    QCOMPARE(item->text(), "Model (1)");
    QCOMPARE(item->data(Qt::UserRole).toULongLong(), qulonglong(reinterpret_cast<quintptr>(m_camera)));
}

void CameraTableCellsTest::centredItems()
{
    for (int column : {1, 3, 4, 5, 6}) {
        const QTableWidgetItem *item = m_rig->table()->item(0, column);
        QVERIFY2(item, qPrintable(QString::number(column)));
        QCOMPARE(item->textAlignment(), 132);
        QVERIFY(!m_rig->table()->cellWidget(0, column));
    }
}

void CameraTableCellsTest::buttons_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("2") << "Start";
    QTest::newRow("7") << "Export Data...";
}

void CameraTableCellsTest::buttons()
{
    QFETCH(QString, text);
    const auto *button = qobject_cast<QPushButton *>(
        m_rig->table()->cellWidget(0, QByteArray(QTest::currentDataTag()).toInt()));
    QVERIFY(button);
    QCOMPARE(button->text(), text);
    QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    QVERIFY(button->isEnabled());
    QCOMPARE(rig::handleOf(button), m_camera);
}

void CameraTableCellsTest::autoCells_data()
{
    QTest::addColumn<int>("maximum");
    QTest::addColumn<QString>("text");
    QTest::newRow("8") << 10000 << "380";
    QTest::newRow("9") << 100000000 << "67108";
}

void CameraTableCellsTest::autoCells()
{
    QFETCH(int, maximum);
    QFETCH(QString, text);
    const QWidget *cell = m_rig->table()->cellWidget(0, QByteArray(QTest::currentDataTag()).toInt());
    QVERIFY(cell);
    QCOMPARE(cell->children().size(), 3);
    const auto *layout = qobject_cast<QHBoxLayout *>(cell->children()[0]);
    QVERIFY(layout);
    QCOMPARE(layout->contentsMargins(), QMargins());
    const auto *box = qobject_cast<QCheckBox *>(cell->children()[1]);
    const auto *edit = qobject_cast<QLineEdit *>(cell->children()[2]);
    QVERIFY(box && edit);
    QVERIFY(layout->indexOf(const_cast<QCheckBox *>(box)) == 0);
    QVERIFY(layout->indexOf(const_cast<QLineEdit *>(edit)) == 1);
    QVERIFY(box->isChecked());
    QVERIFY(box->isEnabled());
    QVERIFY(!edit->isEnabled());
    QCOMPARE(edit->text(), text);
    QCOMPARE(int(edit->alignment()), int(Qt::AlignCenter));
    QVERIFY(validator(edit));
    QCOMPARE(validator(edit)->bottom(), 0);
    QCOMPARE(validator(edit)->top(), maximum);
}

void CameraTableCellsTest::autoValues_data()
{
    QTest::addColumn<int>("column");
    QTest::addColumn<QString>("parameter");
    QTest::addColumn<bool>("fails");
    QTest::addColumn<long long>("value");
    QTest::addColumn<QString>("text");
    const QString speed = "device_unit_register_value[8,4096]";
    const QString size = "dp_param_value[1,5,7]";
    QTest::newRow("speed") << 8 << speed << false << 1250LL << "1250";
    QTest::newRow("speed 0") << 8 << speed << false << 0LL << "0";
    QTest::newRow("speed negative") << 8 << speed << false << -3LL << "0";
    QTest::newRow("speed unreadable") << 8 << speed << true << 0LL << "0";
    QTest::newRow("speed beyond the edit's range") << 8 << speed << false << 20000LL << "20000";
    QTest::newRow("size 0") << 9 << size << false << 0LL << "0";
    QTest::newRow("size 999") << 9 << size << false << 999LL << "0";
    QTest::newRow("size 1999") << 9 << size << false << 1999LL << "1";
    QTest::newRow("size 5 GB") << 9 << size << false << 5000000000LL << "5000000";
    QTest::newRow("size unreadable") << 9 << size << true << 0LL << "32";
}

void CameraTableCellsTest::autoValues()
{
    QFETCH(int, column);
    QFETCH(QString, parameter);
    QFETCH(bool, fails);
    QFETCH(long long, value);
    QFETCH(QString, text);
    ZUCORE_HANDLE camera = m_host.addCamera({"Another", "2", {}});
    m_host.setValue(camera, parameter.toStdString(), value);
    if (fails)
        m_host.removeValue(camera, parameter.toStdString());
    m_rig->call("updateCameraList");
    QCOMPARE(m_rig->cellWidget<QLineEdit>(1, column)->text(), text);
    QVERIFY(m_rig->cellWidget<QCheckBox>(1, column)->isChecked());
    QVERIFY(!m_rig->cellWidget<QLineEdit>(1, column)->isEnabled());
}

void CameraTableCellsTest::plotCell()
{
    const QWidget *cell = m_rig->table()->cellWidget(0, 10);
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

void CameraTableCellsTest::axisCell()
{
    const QWidget *cell = m_rig->table()->cellWidget(0, 11);
    QVERIFY(cell);
    QCOMPARE(cell->children().size(), 4);
    QVERIFY(qobject_cast<QHBoxLayout *>(cell->children()[0]));
    const auto *box = qobject_cast<QCheckBox *>(cell->children()[1]);
    QVERIFY(box);
    QVERIFY(box->isChecked());
    for (int i : {2, 3}) {
        const auto *edit = qobject_cast<QLineEdit *>(cell->children()[i]);
        QVERIFY(edit);
        // The range of axes without data, shown as the plot area is made.
        QCOMPARE(edit->text(), i == 2 ? "0" : "1000");
        QVERIFY(!edit->isEnabled());
        QCOMPARE(int(edit->alignment()), int(Qt::AlignCenter));
        QCOMPARE(edit->minimumSize(), QSize(50, 23));
        QCOMPARE(edit->maximumSize(), QSize(50, 23));
        QVERIFY(validator(edit));
        QCOMPARE(validator(edit)->bottom(), 0);
        QCOMPARE(validator(edit)->top(), 10000);
    }
}

void CameraTableCellsTest::everyInputBearsTheCamera()
{
    rig::openCamera("Another", "2");
    const QTableWidget *table = m_rig->table();
    int inputs = 0;
    for (int row = 0; row < table->rowCount(); ++row) {
        ZUCORE_HANDLE camera = reinterpret_cast<ZUCORE_HANDLE>(
            static_cast<quintptr>(table->item(row, 0)->data(Qt::UserRole).toULongLong()));
        for (int column = 0; column < table->columnCount(); ++column) {
            QWidget *cell = table->cellWidget(row, column);
            if (!cell)
                continue;
            for (const QWidget *widget : QList<QWidget *>{cell} + cell->findChildren<QWidget *>()) {
                const bool isInput =
                    qobject_cast<const QAbstractButton *>(widget) || qobject_cast<const QLineEdit *>(widget);
                if (!isInput)
                    continue;
                ++inputs;
                QCOMPARE(rig::handleOf(widget), camera);
                QCOMPARE(int(widget->property("hCam").type()), int(QMetaType::ULongLong));
            }
        }
    }
    QCOMPARE(inputs, 2 * 10); // two buttons, four boxes, four edits
}

void CameraTableCellsTest::plotCheckTable()
{
    const auto *table = m_rig->find<QTableWidget>("tablePlotCheck");
    QCOMPARE(table->columnCount(), 2);
    QCOMPARE(table->rowCount(), 2);
    QVERIFY(table->horizontalHeader()->isHidden());
    QVERIFY(table->verticalHeader()->isHidden());
    QCOMPARE(table->verticalHeader()->defaultSectionSize(), 24);
    QCOMPARE(table->verticalHeader()->sectionResizeMode(0), QHeaderView::Fixed);
}

void CameraTableCellsTest::plotCheckRows_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("toolTip");
    QTest::addColumn<QColor>("colour");
    QTest::newRow("0") << "Min throughput"
                       << "Minimum data rate in whole data set" << QColor(255, 165, 0);
    QTest::newRow("1") << "Max buffer level"
                       << "Internal camera buffer fill percentage" << QColor(30, 144, 255);
}

void CameraTableCellsTest::plotCheckRows()
{
    QFETCH(QString, name);
    QFETCH(QString, toolTip);
    QFETCH(QColor, colour);
    const auto *table = m_rig->find<QTableWidget>("tablePlotCheck");
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
    QCOMPARE(cell->findChildren<QCheckBox *>().size(), 1);
    const auto *box = cell->findChild<QCheckBox *>();
    QVERIFY(box->isChecked());
    QCOMPARE(box->property("plotName").toString(), name);
    QCOMPARE(box->maximumWidth(), box->sizeHint().width());
}

void CameraTableCellsTest::plotCheckRowsAfterRebuilds()
{
    const auto *table = m_rig->find<QTableWidget>("tablePlotCheck");
    PluginRig::click(table->cellWidget(0, 0)->findChild<QCheckBox *>());
    for (int i = 0; i < 3; ++i)
        m_rig->call("updateCameraList");
    QCOMPARE(table->rowCount(), 2);
    // The rebuild makes the boxes anew; old ones do not linger.
    QVERIFY(table->cellWidget(0, 0)->findChild<QCheckBox *>()->isChecked());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCOMPARE(table->findChildren<QCheckBox *>().size(), 2);
}

QTEST_MAIN(CameraTableCellsTest)
#include "CameraTableCellsTest.moc"

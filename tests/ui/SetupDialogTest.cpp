#include "tests/ui/SetupDialog.h"

#include "tests/measurement/LogCapture.h"

#include <QGroupBox>
#include <QLabel>
#include <QScreen>
#include <QStyleOptionSpinBox>
#include <QtTest>

using rig::SetupDialog;
using rig::withSetup;

/// The setup dialog's widgets, and which of them a mode leaves in use.
class SetupDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void dialog();
    void widgets_data();
    void widgets();
    void layouts_data();
    void layouts();
    void spacers();
    void orderOfCreation();
    void tabOrder();
    void ranges_data();
    void ranges();
    void items();
    void periodTakesArrowsOnly();
    void fixedSize();
    void parent_data();
    void parent();
    void modes_data();
    void modes();
    void switchesModesAtOnce();

private:
    void use(const rig::SetupUse &use) { QVERIFY(withSetup(*m_rig, use)); }

    std::unique_ptr<rig::PluginRig> m_rig;
};

namespace {

/// "LAYOUT ROW,COLUMN ROWSxCOLUMNS" in a grid, "LAYOUT INDEX" in a box.
QString placeIn(const QLayout *layout, int index)
{
    if (const auto *grid = qobject_cast<const QGridLayout *>(layout)) {
        int row = 0;
        int column = 0;
        int rows = 0;
        int columns = 0;
        grid->getItemPosition(index, &row, &column, &rows, &columns);
        return QString("%1 %2,%3 %4x%5")
            .arg(layout->objectName())
            .arg(row)
            .arg(column)
            .arg(rows)
            .arg(columns);
    }
    return QString("%1 %2").arg(layout->objectName()).arg(index);
}

QString placeOf(const QDialog *dialog, QWidget *widget)
{
    for (const QLayout *layout : dialog->findChildren<QLayout *>()) {
        const int index = layout->indexOf(widget);
        if (index >= 0)
            return placeIn(layout, index);
    }
    return "none";
}

/// Names of the children that the form's description makes.
QStringList namedChildren(const QObject *object)
{
    QStringList names;
    for (const QObject *child : object->children()) {
        if (!child->objectName().isEmpty() && !child->objectName().startsWith("qt_"))
            names.append(child->objectName());
    }
    return names;
}

void compareEnabled(const SetupDialog &setup, bool throughputOnly)
{
    for (const char *name : {"spinSamplePeriod", "label_samplePeriod", "label_bytes", "chkResetBuffeLevel"})
        QVERIFY2(setup.find<QWidget>(name)->isEnabled() == throughputOnly, name);
    for (const char *name : {"label_mode", "measureMode", "label_capacity", "spinCapacity",
                             "label_sampleDescription", "label_refreshPeriod", "graphRefreshPeriod",
                             "label_refreshDescription", "label", "cbTimeStampOrigin", "buttonBox"})
        QVERIFY2(setup.find<QWidget>(name)->isEnabled(), name);
}

} // namespace

void SetupDialogTest::init()
{
    m_rig = std::make_unique<rig::PluginRig>();
    m_rig->createForm();
}

void SetupDialogTest::cleanup()
{
    m_rig.reset();
}

void SetupDialogTest::dialog()
{
    QPointer<QDialog> seen;
    use([&](const SetupDialog &setup) {
        seen = setup.dialog();
        QCOMPARE(setup->metaObject()->className(), "CxDataGraphSetupDlg");
        QCOMPARE(setup->windowTitle(), "Data Throughput Test Setup");
        QCOMPARE(setup->windowModality(), Qt::ApplicationModal);
        const Qt::WindowFlags flags = setup->windowFlags();
        QCOMPARE(int(flags & Qt::WindowType_Mask), int(Qt::Dialog));
        QVERIFY(!(flags & (Qt::WindowMaximizeButtonHint | Qt::WindowContextHelpButtonHint)));
        QVERIFY(flags & Qt::CustomizeWindowHint);
        QVERIFY(flags & Qt::MSWindowsFixedSizeDialogHint);
        QVERIFY(flags & Qt::WindowTitleHint);
        QVERIFY(flags & Qt::WindowCloseButtonHint);
    });
    QVERIFY(!seen); // it lives for one click
}

void SetupDialogTest::widgets_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("place");
    QTest::addColumn<QString>("text");
    const auto row = [](const char *name, const char *className, const char *place, const char *text) {
        QTest::newRow(name) << className << place << text;
    };
    row("boxMeas", "QGroupBox", "gridLayout_2 0,0 1x1", "Measurement");
    row("label_samplePeriod", "QLabel", "gridLayout 2,0 1x1", "Sample period:");
    row("label_mode", "QLabel", "gridLayout 1,0 1x1", "Mode:");
    row("label_bytes", "QLabel", "gridLayout 2,2 1x1", "Bytes");
    row("label_capacity", "QLabel", "gridLayout 3,0 1x1", "Capacity:");
    row("spinSamplePeriod", "QSpinBox", "gridLayout 2,1 1x1", "4096");
    row("label_sampleDescription", "QLabel", "gridLayout 3,2 1x1", "million samples per camera");
    row("spinCapacity", "QSpinBox", "gridLayout 3,1 1x1", "10");
    row("measureMode", "QComboBox", "gridLayout 1,1 1x3", "Data Throughput measurement");
    row("buttonBox", "QDialogButtonBox", "gridLayout_2 2,0 1x1", "");
    row("boxDisplay", "QGroupBox", "gridLayout_2 1,0 1x1", "Display");
    row("label_refreshPeriod", "QLabel", "horizontalLayout 0", "Refresh period:");
    row("graphRefreshPeriod", "QSpinBox", "horizontalLayout 1", "1");
    row("label_refreshDescription", "QLabel", "horizontalLayout 2", "seconds");
    row("label", "QLabel", "horizontalLayout_2 0", "Frame timestamps used in graph:");
    row("cbTimeStampOrigin", "QComboBox", "horizontalLayout_2 1", "Camera");
    row("chkResetBuffeLevel", "QCheckBox", "verticalLayout 2",
        "Reset calculated buffer level after each frame");
}

void SetupDialogTest::widgets()
{
    QFETCH(QString, className);
    QFETCH(QString, place);
    QFETCH(QString, text);
    use([&](const SetupDialog &setup) {
        const QString name = QTest::currentDataTag();
        QCOMPARE(setup->findChildren<QWidget *>(name).size(), 1);
        auto *widget = setup->findChild<QWidget *>(name);
        QCOMPARE(widget->metaObject()->className(), className);
        QCOMPARE(placeOf(setup.dialog(), widget), place);
        const char *property = className == "QGroupBox"   ? "title"
                               : className == "QComboBox" ? "currentText"
                                                          : "text";
        QCOMPARE(widget->property(property).toString(), text);
        QVERIFY(widget->isVisible());
        QVERIFY(widget->isEnabled());
        // Nothing is cut off at the fixed size.
        QVERIFY(widget->width() >= widget->minimumSizeHint().width());
        QVERIFY(widget->height() >= widget->minimumSizeHint().height());
    });
}

void SetupDialogTest::layouts_data()
{
    QTest::addColumn<QString>("className");
    QTest::addColumn<QString>("parent");
    QTest::newRow("gridLayout_2") << "QGridLayout"
                                  << "CxDataGraphSetupDlg";
    QTest::newRow("gridLayout") << "QGridLayout"
                                << "boxMeas";
    QTest::newRow("verticalLayout") << "QVBoxLayout"
                                    << "boxDisplay";
    QTest::newRow("horizontalLayout") << "QHBoxLayout"
                                      << "verticalLayout";
    QTest::newRow("horizontalLayout_2") << "QHBoxLayout"
                                        << "verticalLayout";
}

void SetupDialogTest::layouts()
{
    QFETCH(QString, className);
    QFETCH(QString, parent);
    use([&](const SetupDialog &setup) {
        const auto *layout = setup.find<QLayout>(QTest::currentDataTag());
        QCOMPARE(layout->metaObject()->className(), className);
        QCOMPARE(layout->parent()->objectName(), parent);
    });
}

void SetupDialogTest::spacers()
{
    use([](const SetupDialog &setup) {
        QLayoutItem *item = setup.find<QGridLayout>("gridLayout")->itemAtPosition(3, 3);
        QVERIFY(item && item->spacerItem());
        QCOMPARE(int(item->expandingDirections()), int(Qt::Horizontal));
        const auto *line = setup.find<QHBoxLayout>("horizontalLayout_2");
        QCOMPARE(line->count(), 3);
        QVERIFY(line->itemAt(2)->spacerItem());
        QCOMPARE(int(line->itemAt(2)->expandingDirections()), int(Qt::Horizontal));
        QCOMPARE(setup.find<QHBoxLayout>("horizontalLayout")->count(), 3);
        QCOMPARE(setup.find<QVBoxLayout>("verticalLayout")->count(), 3);
    });
}

void SetupDialogTest::orderOfCreation()
{
    use([](const SetupDialog &setup) {
        QCOMPARE(namedChildren(setup.dialog()),
                 QStringList({"gridLayout_2", "boxMeas", "buttonBox", "boxDisplay"}));
        QCOMPARE(
            namedChildren(setup.find<QGroupBox>("boxMeas")),
            QStringList({"gridLayout", "label_samplePeriod", "label_mode", "label_bytes", "label_capacity",
                         "spinSamplePeriod", "label_sampleDescription", "spinCapacity", "measureMode"}));
        QCOMPARE(
            namedChildren(setup.find<QGroupBox>("boxDisplay")),
            QStringList({"verticalLayout", "label_refreshPeriod", "graphRefreshPeriod",
                         "label_refreshDescription", "label", "cbTimeStampOrigin", "chkResetBuffeLevel"}));
    });
}

/// The keyboard goes through the dialog from its top to its bottom.
void SetupDialogTest::tabOrder()
{
    use([](const SetupDialog &setup) {
        QVERIFY(QTest::qWaitForWindowActive(setup.dialog()));
        QStringList order;
        for (int i = 0; i < 6; ++i) {
            QWidget *widget = setup->focusWidget();
            QVERIFY(widget);
            order.append(widget->objectName());
            QTest::keyClick(widget, Qt::Key_Tab);
        }
        QCOMPARE(order, QStringList({"measureMode", "spinSamplePeriod", "spinCapacity", "graphRefreshPeriod",
                                     "cbTimeStampOrigin", "chkResetBuffeLevel"}));
    });
}

void SetupDialogTest::ranges_data()
{
    QTest::addColumn<int>("minimum");
    QTest::addColumn<int>("maximum");
    QTest::addColumn<int>("step");
    QTest::newRow("spinSamplePeriod") << 4096 << 51200 << 1024;
    QTest::newRow("spinCapacity") << 1 << 2000 << 1;
    QTest::newRow("graphRefreshPeriod") << 1 << 1000 << 1;
}

void SetupDialogTest::ranges()
{
    QFETCH(int, minimum);
    QFETCH(int, maximum);
    QFETCH(int, step);
    use([&](const SetupDialog &setup) {
        const auto *box = setup.find<QSpinBox>(QTest::currentDataTag());
        QCOMPARE(box->minimum(), minimum);
        QCOMPARE(box->maximum(), maximum);
        QCOMPARE(box->singleStep(), step);
        QCOMPARE(box->specialValueText(), QString());
    });
}

void SetupDialogTest::items()
{
    use([](const SetupDialog &setup) {
        QCOMPARE(setup.mode()->count(), 2);
        QCOMPARE(setup.mode()->itemText(0), "Data Throughput measurement");
        QCOMPARE(setup.mode()->itemText(1), "Standard Sensor Acquisition");
        QCOMPARE(setup.origin()->count(), 2);
        QCOMPARE(setup.origin()->itemText(0), "Camera");
        QCOMPARE(setup.origin()->itemText(1), "Computer");
        const auto *buttons = setup.find<QDialogButtonBox>("buttonBox");
        QCOMPARE(buttons->orientation(), Qt::Horizontal);
        QCOMPARE(int(buttons->standardButtons()), int(QDialogButtonBox::Ok | QDialogButtonBox::Cancel));
        const QSizePolicy policy = setup.find<QLabel>("label_refreshDescription")->sizePolicy();
        QCOMPARE(policy.horizontalPolicy(), QSizePolicy::Preferred);
        QCOMPARE(policy.verticalPolicy(), QSizePolicy::Preferred);
    });
}

void SetupDialogTest::periodTakesArrowsOnly()
{
    use([](const SetupDialog &setup) {
        QSpinBox *box = setup.samplePeriod();
        auto *edit = box->findChild<QLineEdit *>();
        QVERIFY(edit->isReadOnly());
        QTest::keyClicks(edit, "12");
        QTest::keyClick(edit, Qt::Key_Backspace);
        QCOMPARE(box->text(), "4096");

        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(box->value(), 5120);
        QStyleOptionSpinBox option;
        option.initFrom(box);
        option.subControls = QStyle::SC_All;
        const QRect arrow =
            box->style()->subControlRect(QStyle::CC_SpinBox, &option, QStyle::SC_SpinBoxUp, box);
        QTest::mouseClick(box, Qt::LeftButton, Qt::NoModifier, arrow.center());
        QCOMPARE(box->value(), 6144);
        QTest::keyClick(box, Qt::Key_Down);
        QCOMPARE(box->value(), 5120);
        box->setValue(51200);
        QTest::keyClick(box, Qt::Key_Up);
        QCOMPARE(box->value(), 51200);

        QTest::keyClick(setup.capacity(), Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(setup.capacity(), "123"); // other numbers can be typed
        QCOMPARE(setup.capacity()->value(), 123);
    });
}

void SetupDialogTest::fixedSize()
{
    use([](const SetupDialog &setup) {
        const QSize size = setup->size();
        QCOMPARE(setup->minimumSize(), size);
        QCOMPARE(setup->maximumSize(), size);
        // As large as it wants to be, short of two thirds of the test's tiny screen.
        QCOMPARE(size, setup->sizeHint().boundedTo(setup->screen()->availableSize() * 2 / 3));
        setup->resize(900, 700);
        QCOMPARE(setup->size(), size);
    });
}

void SetupDialogTest::parent_data()
{
    QTest::addColumn<bool>("docked");
    QTest::newRow("window of its own") << false;
    QTest::newRow("docked") << true;
}

void SetupDialogTest::parent()
{
    QFETCH(bool, docked);
    QWidget dock;
    if (docked) {
        m_rig->form()->setParent(&dock);
        dock.show();
    }
    use([&](const SetupDialog &setup) { QCOMPARE(setup->parentWidget(), docked ? &dock : nullptr); });
    QVERIFY(dock.findChildren<QDialog *>().isEmpty());
    m_rig->form()->setParent(nullptr);
}

void SetupDialogTest::modes_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("throughput") << 0 << true;
    QTest::newRow("acquisition") << 1 << false;
    QTest::newRow("unknown") << 7 << false;
}

void SetupDialogTest::modes()
{
    QFETCH(int, mode);
    QFETCH(bool, enabled);
    const LogCapture log; // complains of the unknown mode
    m_rig->loadSettings({{"DTGTMeasMode", mode}});
    use([&](const SetupDialog &setup) {
        QCOMPARE(setup.mode()->currentIndex(), mode == 7 ? -1 : mode);
        compareEnabled(setup, enabled);
    });
}

void SetupDialogTest::switchesModesAtOnce()
{
    m_rig->loadSettings({{"DTGTMeasMode", 1}});
    use([](const SetupDialog &setup) {
        for (int mode : {0, 1, 0, -1, 0}) {
            setup.mode()->setCurrentIndex(mode);
            compareEnabled(setup, mode == 0);
        }
    });
    QCOMPARE(m_rig->savedSettings()["DTGTMeasMode"].toInt(), 1);
}

QTEST_MAIN(SetupDialogTest)
#include "SetupDialogTest.moc"

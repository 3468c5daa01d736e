#include "host/app/ParameterPanel.h"

#include "host/app/CameraControl.h"
#include "host/app/ParameterModel.h"
#include "host/core/HostCore.h"
#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulationBackend.h"
#include "tests/host/core/FakeCamera.h"
#include "zuCore/CxCameraManager.h"

#include <QComboBox>
#include <QLabel>
#include <QSpinBox>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

using host::CameraControl;
using host::HostCore;
using host::ParameterModel;
using host::ParameterPanel;

/// A fake camera A with a few parameters of every kind.
class ParameterPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void showsTheParametersInTheirGroups();
    void showsUnusualValues_data();
    void showsUnusualValues();
    void editsChoicesInAComboBox();
    void editsNumbersInASpinBox();
    void readOnlyParametersCannotBeEdited();
    void anUnchangedValueIsNotWritten();
    void tellsARefusedWriteAndShowsTheValueInForce();
    void showsTheValueThatTheCameraTook();
    void refusesWhatTheInterfaceCannotCarry();
    void isLockedWhileAPlugInMeasures();
    void refreshesWhenOthersWrite_data();
    void refreshesWhenOthersWrite();
    void readsAgainOnDemand();
    void keepsSelectionAndClosedGroups();
    void doesNotDisturbAnOpenEditor();
    void selectorsBringParametersIntoSight();
    void emptiesWithTheCamera();

private:
    QModelIndex find(const QString &name, int column = ParameterModel::Value) const;
    QString value(const QString &name) const { return find(name).data().toString(); }
    QStringList lines() const;
    template <typename Editor> Editor *edit(const QString &name);
    void openSimulated();

    HostCore &m_core = HostCore::instance();
    std::shared_ptr<FakeCamera> m_a;
    ZUCORE_HANDLE m_camera = nullptr;
    std::unique_ptr<CameraControl> m_control;
    std::unique_ptr<ParameterPanel> m_panel;
    QTreeView *m_tree = nullptr;
    QLabel *m_status = nullptr;
};

void ParameterPanelTest::init()
{
    m_a = std::make_shared<FakeCamera>("A");
    m_a->describe({"mode", "Image", "", 0, 0, true, {{"Fast", 1}, {"Slow", 5}}});
    m_a->describe({"gain", "Image", "dB", -10, 20, true, {}});
    m_a->describe({"size", "Memory", "B", 0, 0, false, {}});
    m_a->setValue("mode", 5);
    m_a->setValue("gain", 3);
    m_a->setValue("size", 64);
    plugIn({m_a});
    m_camera = m_core.open("A");
    QVERIFY(m_camera);
    m_a->clearLog();
    m_control = std::make_unique<CameraControl>();
    m_panel = std::make_unique<ParameterPanel>(*m_control);
    m_tree = m_panel->findChild<QTreeView *>("parameterTree");
    m_status = m_panel->findChild<QLabel *>("parameterStatus");
    QVERIFY(m_tree && m_status);
    m_panel->setCamera(m_camera);
}

void ParameterPanelTest::cleanup()
{
    m_panel.reset();
    m_control.reset();
    m_core.shutDown();
}

QModelIndex ParameterPanelTest::find(const QString &name, int column) const
{
    const QAbstractItemModel *model = m_tree->model();
    for (int group = 0; group < model->rowCount(); ++group) {
        const QModelIndex parent = model->index(group, 0);
        for (int row = 0; row < model->rowCount(parent); ++row) {
            if (model->index(row, 0, parent).data() == name)
                return model->index(row, column, parent);
        }
    }
    return {};
}

QStringList ParameterPanelTest::lines() const
{
    QStringList list;
    const QAbstractItemModel *model = m_tree->model();
    for (int group = 0; group < model->rowCount(); ++group) {
        const QModelIndex parent = model->index(group, 0);
        list << parent.data().toString();
        for (int row = 0; row < model->rowCount(parent); ++row) {
            QStringList cells;
            for (int column = 0; column < model->columnCount(parent); ++column)
                cells << model->index(row, column, parent).data().toString();
            list << cells.join('|');
        }
    }
    return list;
}

template <typename Editor> Editor *ParameterPanelTest::edit(const QString &name)
{
    const QModelIndex index = find(name);
    m_tree->setCurrentIndex(index);
    m_tree->edit(index);
    return m_tree->viewport()->findChild<Editor *>();
}

void ParameterPanelTest::openSimulated()
{
    host::Scenario scenario;
    scenario.cameras.resize(1);
    scenario.cameras[0].serial = "SIM-1";
    m_core.addBackend(
        std::make_unique<host::SimulationBackend>(scenario, std::make_shared<host::FreeRunningClock>()));
    m_camera = m_core.open("simulated:SIM-1");
    QVERIFY(m_camera);
    m_panel->setCamera(m_camera);
}

void ParameterPanelTest::showsTheParametersInTheirGroups()
{
    QCOMPARE(lines(), (QStringList{"Image", "mode|Slow|", "gain|3|dB", "Memory", "size|64|B"}));
    QVERIFY(m_tree->isExpanded(m_tree->model()->index(1, 0)));
    QVERIFY(find("gain").data(Qt::ToolTipRole).toString().contains("-10 to 20 dB"));
    QVERIFY(find("size").data(Qt::ToolTipRole).toString().contains("Read only"));
    QCOMPARE(m_status->text(), QString());
}

void ParameterPanelTest::showsUnusualValues_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<qlonglong>("stored");
    QTest::addColumn<QString>("shown");
    QTest::newRow("negative") << "gain" << -7LL << "-7";
    QTest::newRow("beyond 32 bits") << "size" << 5'000'000'000LL << "5000000000";
    QTest::newRow("no choice") << "mode" << 3LL << "3";
}

void ParameterPanelTest::showsUnusualValues()
{
    QFETCH(QString, name);
    QFETCH(qlonglong, stored);
    QFETCH(QString, shown);
    m_a->setValue(name.toStdString(), stored);
    m_panel->setCamera(nullptr);
    m_panel->setCamera(m_camera);
    QCOMPARE(value(name), shown);
    m_a->failReads(name.toStdString());
    m_panel->setCamera(nullptr);
    m_panel->setCamera(m_camera);
    QCOMPARE(value(name), QString("unreadable"));
}

void ParameterPanelTest::editsChoicesInAComboBox()
{
    auto *comboBox = edit<QComboBox>("mode");
    QVERIFY(comboBox);
    QCOMPARE(comboBox->count(), 2);
    QCOMPARE(comboBox->currentText(), QString("Slow"));
    comboBox->setCurrentIndex(0);
    Q_EMIT comboBox->activated(0); // at once, without another key
    QCOMPARE(m_a->log(), std::vector<std::string>{"write mode=1"});
    QCOMPARE(value("mode"), QString("Fast"));
    QCOMPARE(m_status->text(), QString());
}

void ParameterPanelTest::editsNumbersInASpinBox()
{
    auto *spinBox = edit<QSpinBox>("gain");
    QVERIFY(spinBox);
    QCOMPARE(spinBox->value(), 3);
    QCOMPARE(spinBox->minimum(), -10);
    QCOMPARE(spinBox->maximum(), 20);
    QTest::keyClick(spinBox, Qt::Key_Up);
    QVERIFY(m_a->log().empty());
    QTest::keyClick(spinBox, Qt::Key_Return);
    QTRY_COMPARE(m_a->log(), std::vector<std::string>{"write gain=4"});
    QCOMPARE(value("gain"), QString("4"));
}

void ParameterPanelTest::readOnlyParametersCannotBeEdited()
{
    QVERIFY(!(find("size").flags() & Qt::ItemIsEditable));
    QVERIFY(!(find("gain", ParameterModel::Name).flags() & Qt::ItemIsEditable));
    QVERIFY(!(find("gain", ParameterModel::Unit).flags() & Qt::ItemIsEditable));
    QVERIFY(!m_tree->model()->setData(find("size"), 1));
    QVERIFY(!m_tree->model()->setData(find("gain", ParameterModel::Name), 1));
    QVERIFY(!m_tree->model()->setData(m_tree->model()->index(0, ParameterModel::Value), 1));
    QVERIFY(m_a->log().empty());
}

void ParameterPanelTest::anUnchangedValueIsNotWritten()
{
    QVERIFY(m_tree->model()->setData(find("gain"), 3));
    QVERIFY(!m_tree->model()->setData(find("gain"), "much"));
    QVERIFY(m_a->log().empty());
}

void ParameterPanelTest::tellsARefusedWriteAndShowsTheValueInForce()
{
    m_a->failWrites("mode");
    m_a->setValue("gain", 9); // changed by itself meanwhile
    QTest::ignoreMessage(QtWarningMsg, "The camera refused mode = Fast.");
    QVERIFY(!m_tree->model()->setData(find("mode"), 1));
    QCOMPARE(m_status->text(), QString("The camera refused mode = Fast."));
    QCOMPARE(value("mode"), QString("Slow"));
    QCOMPARE(value("gain"), QString("9"));
    QVERIFY(m_tree->model()->setData(find("gain"), 4));
    QCOMPARE(m_status->text(), QString());

    QVERIFY(m_core.startAcquisition(m_core.cameras()[0].handle));
    const QString hint = "The camera refused mode = Fast. Stop the acquisition first.";
    QTest::ignoreMessage(QtWarningMsg, qPrintable(hint));
    QVERIFY(!m_tree->model()->setData(find("mode"), 1));
    QCOMPARE(m_status->text(), hint);
}

void ParameterPanelTest::showsTheValueThatTheCameraTook()
{
    m_a->limit("gain", 8);
    QVERIFY(m_tree->model()->setData(find("gain"), 15));
    QCOMPARE(value("gain"), QString("8"));
}

void ParameterPanelTest::refusesWhatTheInterfaceCannotCarry()
{
    QTest::ignoreMessage(QtWarningMsg, "The camera refused gain = 3000000000.");
    QVERIFY(!m_tree->model()->setData(find("gain"), 3'000'000'000LL));
    QVERIFY(m_a->log().empty());
}

void ParameterPanelTest::isLockedWhileAPlugInMeasures()
{
    auto *read = m_panel->findChild<QToolButton *>("btnReadParameters");
    auto *spinBox = edit<QSpinBox>("gain");
    QVERIFY(spinBox);
    spinBox->setValue(12);
    m_control->setEnabled(m_camera, false);
    QVERIFY(!m_tree->isEnabled());
    QVERIFY(!read->isEnabled());
    QVERIFY2(m_status->text().contains("plug-in"), qPrintable(m_status->text()));
    // Neither what is being edited nor anything else reaches the camera.
    QTest::keyClick(spinBox, Qt::Key_Return);
    QCoreApplication::processEvents();
    QVERIFY(!m_tree->model()->setData(find("mode"), 1));
    QVERIFY(m_a->log().empty());
    m_a->setValue("mode", 1);
    Q_EMIT m_core.parametersChanged(m_camera, {"mode"});
    QCOMPARE(value("mode"), QString("Slow"));

    m_control->setEnabled(m_camera, true);
    QVERIFY(m_tree->isEnabled());
    QVERIFY(read->isEnabled());
    QCOMPARE(m_status->text(), QString());
    QCOMPARE(value("mode"), QString("Fast"));
}

void ParameterPanelTest::refreshesWhenOthersWrite_data()
{
    QTest::addColumn<QString>("how");
    QTest::newRow("committed") << "parametersChanged";
    QTest::newRow("image format") << "imageFormatChanged";
}

void ParameterPanelTest::refreshesWhenOthersWrite()
{
    QFETCH(QString, how);
    m_a->setValue("gain", 11);
    const auto emitFor = [&](ZUCORE_HANDLE camera) {
        if (how == "parametersChanged")
            Q_EMIT m_core.parametersChanged(camera, {"gain"});
        else
            Q_EMIT CxCameraManager::instance()->imageFormatChanged(camera);
    };
    emitFor(nullptr);
    QCOMPARE(value("gain"), QString("3")); // another camera
    emitFor(m_camera);
    QCOMPARE(value("gain"), QString("11"));
}

void ParameterPanelTest::readsAgainOnDemand()
{
    m_a->setValue("gain", 11);
    m_panel->findChild<QToolButton *>("btnReadParameters")->click();
    QCOMPARE(value("gain"), QString("11"));
}

void ParameterPanelTest::keepsSelectionAndClosedGroups()
{
    const QPersistentModelIndex selected = find("size");
    m_tree->setCurrentIndex(selected);
    m_tree->collapse(m_tree->model()->index(0, 0));
    m_a->describe({"offset", "Image", "", 0, 9, true, {}});
    m_a->describe({"extra", "New", "", 0, 9, true, {}});
    m_a->setValue("offset", 1);
    m_a->setValue("extra", 2);
    m_panel->findChild<QToolButton *>("btnReadParameters")->click();
    QCOMPARE(lines(), (QStringList{"Image", "mode|Slow|", "gain|3|dB", "offset|1|", "Memory", "size|64|B",
                                   "New", "extra|2|"}));
    QVERIFY(selected.isValid());
    QCOMPARE(m_tree->currentIndex(), QModelIndex(selected));
    QVERIFY(!m_tree->isExpanded(m_tree->model()->index(0, 0)));
    QVERIFY(m_tree->isExpanded(m_tree->model()->index(2, 0)));
}

void ParameterPanelTest::doesNotDisturbAnOpenEditor()
{
    auto *spinBox = edit<QSpinBox>("gain");
    QVERIFY(spinBox);
    spinBox->setValue(12);
    m_a->setValue("mode", 1);
    Q_EMIT m_core.parametersChanged(m_camera, {"mode"});
    QCOMPARE(value("mode"), QString("Fast"));
    QCOMPARE(spinBox->value(), 12);
}

void ParameterPanelTest::selectorsBringParametersIntoSight()
{
    openSimulated();
    QVERIFY(!find("dp_param_value").isValid());
    QVERIFY(m_tree->model()->setData(find("dp_unit_selector"), 1));
    QVERIFY(m_tree->model()->setData(find("dp_proc_selector"), 5));
    QVERIFY(m_tree->model()->setData(find("dp_param_selector"), 6));
    QCOMPARE(value("dp_param_value"), QString("Enabled"));
    QVERIFY(edit<QComboBox>("dp_param_value"));
    QVERIFY(m_tree->model()->setData(find("dp_unit_selector"), 0));
    QVERIFY(!find("dp_param_value").isValid());
}

void ParameterPanelTest::emptiesWithTheCamera()
{
    QVERIFY(edit<QSpinBox>("gain"));
    m_core.close(m_camera);
    QCOMPARE(lines(), QStringList());
    QVERIFY(m_status->text().contains("No open camera"));
    QVERIFY(!m_tree->isEnabled());
    QCOMPARE(m_a->log(), std::vector<std::string>{"close"});
}

QTEST_MAIN(ParameterPanelTest)
#include "ParameterPanelTest.moc"

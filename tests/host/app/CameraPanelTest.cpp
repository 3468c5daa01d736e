#include "host/app/CameraPanel.h"

#include "host/app/CameraControl.h"
#include "host/app/CameraListModel.h"
#include "tests/host/core/FakeCamera.h"

#include <QAction>
#include <QLabel>
#include <QSignalSpy>
#include <QToolButton>
#include <QTreeView>
#include <QtTest>

using host::CameraControl;
using host::CameraListModel;
using host::CameraPanel;
using host::HostCore;

/// Three fake cameras: A, B and C.
class CameraPanelTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void listsEveryCamera();
    void namesWhatACameraHas_data();
    void namesWhatACameraHas();
    void offersWhatMakesSense_data();
    void offersWhatMakesSense();
    void offersNothingWithoutCameras();
    void buttonsDoWhatTheySay();
    void doubleClickOpens();
    void actionsHaveShortcutsAndToolTips();
    void tellsWhatACameraRefuses_data();
    void tellsWhatACameraRefuses();
    void aLostCameraVanishesAndTheOthersGoOn();
    void keepsTheSelection();
    void tellsWhichCameraIsSelected();
    void opensCamerasByTheirIds();
    void opensAll();
    void selectsTheCameraThatOpens();
    void fitsIntoASmallWindow();

private:
    QString cell(int row, int column) const;
    QStringList states() const;
    void select(int row);
    void click(const char *button);
    QString enabledActions() const;

    HostCore &m_core = HostCore::instance();
    std::shared_ptr<FakeCamera> m_a;
    std::shared_ptr<FakeCamera> m_b;
    std::shared_ptr<FakeCamera> m_c;
    std::shared_ptr<FakeBackend::Cameras> m_plugged;
    std::unique_ptr<CameraControl> m_control;
    std::unique_ptr<CameraPanel> m_panel;
    QTreeView *m_list = nullptr;
    QLabel *m_message = nullptr;
};

void CameraPanelTest::init()
{
    m_a = std::make_shared<FakeCamera>("A");
    m_b = std::make_shared<FakeCamera>("B");
    m_c = std::make_shared<FakeCamera>("C");
    m_plugged = plugIn({m_a, m_b, m_c});
    m_control = std::make_unique<CameraControl>();
    m_panel = std::make_unique<CameraPanel>(*m_control);
    m_list = m_panel->findChild<QTreeView *>("cameraList");
    m_message = m_panel->findChild<QLabel *>("cameraMessage");
    QVERIFY(m_list && m_message);
}

void CameraPanelTest::cleanup()
{
    m_panel.reset();
    m_control.reset();
    m_core.shutDown();
}

QString CameraPanelTest::cell(int row, int column) const
{
    return m_list->model()->index(row, column).data().toString();
}

QStringList CameraPanelTest::states() const
{
    QStringList list;
    for (int row = 0; row < m_list->model()->rowCount(); ++row)
        list << cell(row, CameraListModel::State);
    return list;
}

void CameraPanelTest::select(int row)
{
    m_list->setCurrentIndex(m_list->model()->index(row, 0));
}

void CameraPanelTest::click(const char *button)
{
    auto *found = m_panel->findChild<QToolButton *>(button);
    QVERIFY(found);
    found->click();
}

QString CameraPanelTest::enabledActions() const
{
    QStringList enabled;
    for (const QAction *action : m_panel->cameraActions()) {
        if (action->isEnabled())
            enabled << action->text().remove('&').toLower();
    }
    // A button is but another face of its action.
    QStringList buttons;
    for (const char *name :
         {"btnOpenCamera", "btnCloseCamera", "btnStartAcquisition", "btnStopAcquisition"}) {
        const auto *button = m_panel->findChild<QToolButton *>(name);
        if (button->isEnabled())
            buttons << button->text().toLower();
    }
    return enabled == buttons ? enabled.join(' ') : "buttons differ";
}

void CameraPanelTest::listsEveryCamera()
{
    QCOMPARE(states(), (QStringList{"Available", "Available", "Available"}));
    QVERIFY(cell(0, CameraListModel::Name).contains("Model A"));
    QVERIFY(cell(0, CameraListModel::Name).contains("SN-A"));
    m_a->setInfo({"A", "Model A", "SN-A", "Lid"});
    m_core.pollDevices();
    QVERIFY(cell(0, CameraListModel::Name).contains("Lid"));

    const ZUCORE_HANDLE b = m_core.open("B");
    const ZUCORE_HANDLE c = m_core.open("C");
    m_core.startAcquisition(c);
    QCOMPARE(states(), (QStringList{"Available", "Open", "Acquiring"}));
    m_control->setEnabled(b, false);
    QCOMPARE(states(), (QStringList{"Available", "Measured", "Acquiring"}));
    QVERIFY(m_list->model()->index(1, 0).data(Qt::ToolTipRole).toString().contains("measured by a plug-in"));
    m_control->setEnabled(b, true);
    m_core.stopAcquisition(c);
    m_core.close(b);
    QCOMPARE(states(), (QStringList{"Available", "Available", "Open"}));
}

void CameraPanelTest::namesWhatACameraHas_data()
{
    QTest::addColumn<QString>("serial");
    QTest::addColumn<QString>("userId");
    QTest::addColumn<QString>("shown");
    QTest::newRow("both") << "1"
                          << "Lid"
                          << "M\n1 (Lid)";
    QTest::newRow("no user id") << "1"
                                << ""
                                << "M\n1";
    QTest::newRow("no serial number") << ""
                                      << "Lid"
                                      << "M\nLid";
    QTest::newRow("neither") << ""
                             << ""
                             << "M\n";
}

void CameraPanelTest::namesWhatACameraHas()
{
    QFETCH(QString, serial);
    QFETCH(QString, userId);
    QFETCH(QString, shown);
    m_a->setInfo({"A", "M", serial.toStdString(), userId.toStdString()});
    m_core.pollDevices();
    QCOMPARE(cell(0, CameraListModel::Name), shown);
}

void CameraPanelTest::offersWhatMakesSense_data()
{
    QTest::addColumn<bool>("open");
    QTest::addColumn<bool>("acquiring");
    QTest::addColumn<bool>("measured");
    QTest::addColumn<QString>("offered");
    QTest::newRow("available") << false << false << false << "open";
    QTest::newRow("open") << true << false << false << "close start";
    QTest::newRow("acquiring") << true << true << false << "close stop";
    QTest::newRow("measured") << true << false << true << "";
    QTest::newRow("acquiring and measured") << true << true << true << "";
}

void CameraPanelTest::offersWhatMakesSense()
{
    QFETCH(bool, open);
    QFETCH(bool, acquiring);
    QFETCH(bool, measured);
    QFETCH(QString, offered);
    select(1);
    const ZUCORE_HANDLE b = open ? m_core.open("B") : nullptr;
    if (acquiring)
        m_core.startAcquisition(b);
    if (measured)
        m_control->setEnabled(b, false);
    QCOMPARE(enabledActions(), offered);
    // The same when the selection comes later.
    select(0);
    QCOMPARE(enabledActions(), QString("open"));
    select(1);
    QCOMPARE(enabledActions(), offered);
}

void CameraPanelTest::offersNothingWithoutCameras()
{
    m_plugged->clear();
    m_core.pollDevices();
    QCOMPARE(enabledActions(), QString());
    QVERIFY(!m_panel->selectedCamera());
    m_plugged->push_back(m_b);
    m_core.pollDevices();
    QCOMPARE(enabledActions(), QString("open"));
}

void CameraPanelTest::buttonsDoWhatTheySay()
{
    select(2);
    click("btnOpenCamera");
    click("btnStartAcquisition");
    click("btnStopAcquisition");
    click("btnCloseCamera");
    QCOMPARE(m_c->log(), (std::vector<std::string>{"open", "start", "stop", "close"}));
    QVERIFY(m_a->log().empty() && m_b->log().empty());
    QVERIFY(m_message->isHidden());
}

void CameraPanelTest::doubleClickOpens()
{
    m_panel->show();
    const QPoint row = m_list->visualRect(m_list->model()->index(1, 0)).center();
    const auto doubleClick = [&] {
        QTest::mouseClick(m_list->viewport(), Qt::LeftButton, {}, row);
        QTest::mouseDClick(m_list->viewport(), Qt::LeftButton, {}, row);
    };
    doubleClick();
    QVERIFY(m_b->isOpen());
    doubleClick();
    QCOMPARE(m_b->log(), std::vector<std::string>{"open"});
    QVERIFY(m_message->isHidden());
}

void CameraPanelTest::actionsHaveShortcutsAndToolTips()
{
    QSet<QString> shortcuts;
    for (const QAction *action : m_panel->cameraActions()) {
        const QString shortcut = action->shortcut().toString(QKeySequence::NativeText);
        QVERIFY(!shortcut.isEmpty());
        QVERIFY2(action->toolTip().contains(shortcut), qPrintable(action->toolTip()));
        shortcuts.insert(shortcut);
    }
    QCOMPARE(shortcuts.size(), 4);
}

void CameraPanelTest::tellsWhatACameraRefuses_data()
{
    QTest::addColumn<QString>("operation");
    QTest::addColumn<QString>("text");
    QTest::newRow("open") << "open"
                          << "Camera Model A SN-A cannot be opened.";
    QTest::newRow("start") << "start"
                           << "Camera Model A SN-A does not start.";
    QTest::newRow("stop") << "stop"
                          << "Camera Model A SN-A reported an error while it stopped.";
}

void CameraPanelTest::tellsWhatACameraRefuses()
{
    QFETCH(QString, operation);
    QFETCH(QString, text);
    m_a->failOpen(operation == "open");
    m_a->failStart(operation == "start");
    m_a->failStop(operation == "stop");
    QTest::ignoreMessage(QtWarningMsg, qPrintable(text));
    click("btnOpenCamera");
    click("btnStartAcquisition");
    click("btnStopAcquisition");
    if (operation != "start") // there, the stop that follows is not offered
        QVERIFY(m_core.cameras()[0].acquiring == false);
    QCOMPARE(m_message->text(), text);
    QVERIFY(!m_message->isHidden());
    // The next thing that the user does takes the text away.
    m_a->failOpen(false);
    click(operation == "open" ? "btnOpenCamera" : "btnCloseCamera");
    QVERIFY(m_message->isHidden());
}

void CameraPanelTest::aLostCameraVanishesAndTheOthersGoOn()
{
    m_panel->openAll();
    m_core.startAcquisition(m_core.cameras()[2].handle);
    select(1);
    const QString text = "Camera Model B SN-B was lost.";
    QTest::ignoreMessage(QtWarningMsg, qPrintable(text));
    const QSignalSpy told(m_panel.get(), &CameraPanel::problemTold);
    m_b->plug(false);
    QList<int> listed; // when another camera became the selected one
    connect(m_panel.get(), &CameraPanel::selectedCameraChanged, this,
            [&] { listed << m_list->model()->rowCount(); });
    m_core.pollDevices();
    QCOMPARE(listed, QList<int>{2});
    QCOMPARE(told.size(), 1);
    QCOMPARE(told[0][0].toString(), text);
    QCOMPARE(states(), (QStringList{"Open", "Acquiring"}));
    QVERIFY(!m_message->isHidden());
    QVERIFY(m_panel->selectedCamera());
    QVERIFY(m_c->isStreaming());
    m_b->plug(true);
    m_core.pollDevices();
    QCOMPARE(states(), (QStringList{"Open", "Available", "Acquiring"}));
}

void CameraPanelTest::keepsTheSelection()
{
    const ZUCORE_HANDLE b = m_core.open("B");
    select(1);
    const QSignalSpy spy(m_panel.get(), &CameraPanel::selectedCameraChanged);
    m_plugged->erase(m_plugged->begin());
    m_core.pollDevices();
    QCOMPARE(m_list->currentIndex().row(), 0);
    QCOMPARE(m_panel->selectedCamera(), b);
    m_plugged->insert(m_plugged->begin(), m_a);
    m_plugged->insert(m_plugged->begin(), std::make_shared<FakeCamera>("D"));
    m_core.pollDevices();
    QCOMPARE(m_list->currentIndex().row(), 2);
    QCOMPARE(m_list->selectionModel()->selectedRows().size(), 1);
    m_core.open("C");
    m_core.startAcquisition(b);
    QCOMPARE(m_panel->selectedCamera(), b);
    QCOMPARE(spy.size(), 0);
}

void CameraPanelTest::tellsWhichCameraIsSelected()
{
    QSignalSpy spy(m_panel.get(), &CameraPanel::selectedCameraChanged);
    const auto last = [&] { return spy.takeLast()[0].value<ZUCORE_HANDLE>(); };
    QVERIFY(!m_panel->selectedCamera());
    const ZUCORE_HANDLE a = m_core.open("A");
    QCOMPARE(spy.size(), 1);
    QCOMPARE(last(), a);
    select(1);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(last(), ZUCORE_HANDLE(nullptr));
    select(2);
    QCOMPARE(spy.size(), 0); // none is open there, either
    select(0);
    QCOMPARE(last(), a);
    m_core.close(a);
    QCOMPARE(spy.size(), 1);
    QCOMPARE(last(), ZUCORE_HANDLE(nullptr));
    QVERIFY(!m_panel->selectedCamera());
}

void CameraPanelTest::opensCamerasByTheirIds()
{
    m_core.open("A");
    m_b->failOpen(true);
    QTest::ignoreMessage(QtWarningMsg, "Camera Model B SN-B cannot be opened.");
    QTest::ignoreMessage(QtWarningMsg, "Camera X is not plugged in");
    m_panel->openCameras({"C", "X", "B", "A"});
    QCOMPARE(m_panel->openCameraIds(), (QStringList{"A", "C"}));
    QCOMPARE(m_a->log().size(), std::size_t(1));
}

void CameraPanelTest::opensAll()
{
    m_core.open("B");
    m_panel->openAll();
    QCOMPARE(m_panel->openCameraIds(), (QStringList{"A", "B", "C"}));
    QCOMPARE(m_b->log().size(), std::size_t(1));
}

void CameraPanelTest::selectsTheCameraThatOpens()
{
    m_panel->openCameras({"C", "B"});
    QCOMPARE(m_list->currentIndex().row(), 2);
    QCOMPARE(m_panel->selectedCamera(), m_core.cameras()[2].handle);
}

void CameraPanelTest::fitsIntoASmallWindow()
{
    QVERIFY(m_panel->minimumSizeHint().height() <= 160);
    QVERIFY(m_panel->sizeHint().width() <= 320);
}

QTEST_MAIN(CameraPanelTest)
#include "CameraPanelTest.moc"

#include "host/app/ViewerDelegate.h"

#include "host/app/CameraControl.h"
#include "host/app/PlotDecoration.h"
#include "host/app/PlotLibrary.h"
#include "host/app/ViewerSettings.h"
#include "host/gui/AppDelegateRegistration.h"

#include <QDockWidget>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

using host::ViewerDelegate;

class ViewerDelegateTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void registersItself();
    void docksTheWidget();
    void titleFollowsTheWidget();
    void areas_data();
    void areas();
    void dockNamesAreStableAndUnique();
    void sharesTheBottomWithOthers();
    void visibleBesideAnOlderLayout();
    void returnsToItsPlace();
    void deletedWidgetTakesItsDock();
    void tallWidgetScrolls();
    void focusReachesTheWidget();
    void nothingToDock();
    void widgetAfterTheWindow();
    void cameraControl();
    void interfaceLevel();
    void savePath();
    void decoratesPlotsOnce();

private:
    static QDockWidget *dock(const QWidget *widget)
    {
        QWidget *parent = widget->parentWidget();
        while (parent && !qobject_cast<QDockWidget *>(parent))
            parent = parent->parentWidget();
        return qobject_cast<QDockWidget *>(parent);
    }
    void add(QWidget *widget, Qt::DockWidgetArea area = Qt::BottomDockWidgetArea,
             Qt::DockWidgetAreas allowed = Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea)
    {
        IxAppDelegate::instance()->addPluginWidget(widget, area, allowed, 0);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<host::ViewerSettings> m_settings;
    std::unique_ptr<host::CameraControl> m_control;
    std::unique_ptr<ViewerDelegate> m_delegate;
    std::unique_ptr<QMainWindow> m_window;
};

void ViewerDelegateTest::init()
{
    qRegisterMetaType<QDockWidget *>(); // for the signal spy
    m_folder = std::make_unique<QTemporaryDir>();
    m_settings = std::make_unique<host::ViewerSettings>(m_folder->filePath("s.ini"));
    m_control = std::make_unique<host::CameraControl>();
    m_delegate = std::make_unique<ViewerDelegate>(*m_settings, *m_control);
    m_window = std::make_unique<QMainWindow>();
    m_window->resize(1000, 700);
    m_window->setCentralWidget(new QLabel("picture"));
    m_delegate->setWindow(m_window.get());
}

void ViewerDelegateTest::cleanup()
{
    m_window.reset();
    m_delegate.reset();
    m_control.reset();
    m_settings.reset();
}

void ViewerDelegateTest::registersItself()
{
    QCOMPARE(host::appDelegate(), static_cast<IxAppDelegate *>(m_delegate.get()));
    m_delegate.reset();
    QVERIFY(!host::appDelegate());
}

void ViewerDelegateTest::docksTheWidget()
{
    QSignalSpy added(m_delegate.get(), &ViewerDelegate::dockAdded);
    auto *widget = new QLabel("content");
    widget->setWindowTitle("Data Throughput Graph");
    add(widget);
    QVERIFY(dock(widget));
    QCOMPARE(dock(widget)->windowTitle(), QString("Data Throughput Graph"));
    QCOMPARE(dock(widget)->allowedAreas(), Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea);
    QCOMPARE(m_window->dockWidgetArea(dock(widget)), Qt::BottomDockWidgetArea);
    QCOMPARE(added.size(), 1);
    m_window->show();
    QVERIFY(widget->isVisible());
}

void ViewerDelegateTest::titleFollowsTheWidget()
{
    auto *widget = new QLabel;
    add(widget);
    widget->setWindowTitle("Later");
    QCOMPARE(dock(widget)->windowTitle(), QString("Later"));
}

void ViewerDelegateTest::areas_data()
{
    QTest::addColumn<int>("area");
    QTest::addColumn<int>("allowed");
    QTest::addColumn<int>("expected");
    QTest::newRow("allowed") << 1 << 3 << 1;
    QTest::newRow("not allowed") << 1 << 4 << 4;
    QTest::newRow("no area") << 0 << 12 << 8;
    QTest::newRow("none allowed") << 2 << 0 << 2;
    QTest::newRow("no such area") << 64 << 0xff0 << 8;
}

void ViewerDelegateTest::areas()
{
    QFETCH(int, area);
    QFETCH(int, allowed);
    QFETCH(int, expected);
    auto *widget = new QLabel;
    add(widget, static_cast<Qt::DockWidgetArea>(area), Qt::DockWidgetAreas(allowed));
    QCOMPARE(int(m_window->dockWidgetArea(dock(widget))), expected);
    QVERIFY(dock(widget)->isAreaAllowed(static_cast<Qt::DockWidgetArea>(expected)));
}

void ViewerDelegateTest::dockNamesAreStableAndUnique()
{
    auto *named = new QLabel;
    named->setObjectName("CxDataGraphForm");
    auto *namedAgain = new QLabel;
    namedAgain->setObjectName("CxDataGraphForm");
    auto *unnamed = new QLabel;
    for (QWidget *widget : {named, namedAgain, unnamed})
        add(widget);
    QCOMPARE(dock(named)->objectName(), QString("plugin.CxDataGraphForm"));
    QCOMPARE(dock(namedAgain)->objectName(), QString("plugin.CxDataGraphForm.2"));
    QCOMPARE(dock(unnamed)->objectName(), QString("plugin.QLabel"));
}

void ViewerDelegateTest::sharesTheBottomWithOthers()
{
    auto *log = new QDockWidget("Log", m_window.get());
    log->setWidget(new QLabel("log"));
    m_window->addDockWidget(Qt::BottomDockWidgetArea, log);
    auto *widget = new QLabel("content");
    add(widget);
    QCOMPARE(m_window->tabifiedDockWidgets(log), QList<QDockWidget *>{dock(widget)});
    m_window->show();
    QTRY_VERIFY(!dock(widget)->visibleRegion().isEmpty()); // in front
    QVERIFY(log->visibleRegion().isEmpty());
}

void ViewerDelegateTest::visibleBesideAnOlderLayout()
{
    QMainWindow older;
    const QByteArray layoutWithoutIt = older.saveState();
    auto *widget = new QLabel("content");
    add(widget);
    QVERIFY(m_window->restoreState(layoutWithoutIt));
    m_window->show();
    QVERIFY(widget->isVisible());
}

void ViewerDelegateTest::returnsToItsPlace()
{
    auto *widget = new QLabel("content");
    widget->setObjectName("tool");
    add(widget);
    m_window->addDockWidget(Qt::TopDockWidgetArea, dock(widget));
    m_window->show();
    const QByteArray layout = m_window->saveState();

    m_window = std::make_unique<QMainWindow>();
    m_window->setCentralWidget(new QLabel("picture"));
    m_window->resize(1000, 700);
    m_delegate->setWindow(m_window.get());
    m_window->show();
    QVERIFY(m_window->restoreState(layout)); // before the plug-in comes
    widget = new QLabel("content");
    widget->setObjectName("tool");
    add(widget);
    QCOMPARE(m_window->dockWidgetArea(dock(widget)), Qt::TopDockWidgetArea);
    QVERIFY(widget->isVisible());
}

void ViewerDelegateTest::deletedWidgetTakesItsDock()
{
    auto *widget = new QLabel("content");
    add(widget);
    const QPointer<QDockWidget> frame = dock(widget);
    delete widget;
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!frame);
}

void ViewerDelegateTest::tallWidgetScrolls()
{
    auto *widget = new QWidget;
    widget->setMinimumSize(5000, 100);
    add(widget);
    m_window->show();
    widget->setMinimumSize(5000, 5000); // grows later
    QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    QCoreApplication::processEvents();
    QVERIFY2(m_window->minimumSizeHint().height() < 768,
             qPrintable(QString::number(m_window->minimumSizeHint().height())));
    QCOMPARE(m_window->size(), QSize(1000, 700));
    QTRY_COMPARE(widget->size(), QSize(5000, 5000)); // all of it can be reached
}

void ViewerDelegateTest::focusReachesTheWidget()
{
    auto *widget = new QWidget;
    auto *button = new QPushButton("first", widget);
    auto *other = new QPushButton("other");
    m_window->setCentralWidget(other);
    add(widget);
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    other->setFocus();
    dock(widget)->widget()->setFocus(Qt::ShortcutFocusReason);
    QCOMPARE(m_window->focusWidget(), widget);
    QTest::keyClick(widget, Qt::Key_Tab);
    QCOMPARE(m_window->focusWidget(), static_cast<QWidget *>(button));
    delete widget; // the frame goes later and may be asked for focus until then
    m_window->findChild<QDockWidget *>()->widget()->setFocus();
}

void ViewerDelegateTest::nothingToDock()
{
    QTest::ignoreMessage(QtWarningMsg, "a plug-in asked to dock nothing");
    add(nullptr);
    auto *widget = new QLabel;
    add(widget);
    QTest::ignoreMessage(QtWarningMsg, "a plug-in asked to dock a widget twice");
    add(widget);
    QCOMPARE(m_window->findChildren<QDockWidget *>().size(), 1);
}

void ViewerDelegateTest::widgetAfterTheWindow()
{
    m_window.reset();
    const QPointer<QWidget> widget = new QLabel;
    add(widget);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!widget); // taken over all the same
}

void ViewerDelegateTest::cameraControl()
{
    int camera = 0;
    m_delegate->setCameraControlEnabled(&camera, false);
    QVERIFY(!m_control->isEnabled(&camera));
    m_delegate->setCameraControlEnabled(&camera, true);
    QVERIFY(m_control->isEnabled(&camera));
}

void ViewerDelegateTest::interfaceLevel()
{
    QCOMPARE(m_delegate->interfaceLevel(), 3);
    m_settings->setInterfaceLevel(1);
    QCOMPARE(m_delegate->interfaceLevel(), 1);
    m_settings->overrideInterfaceLevel(2);
    QCOMPARE(m_delegate->interfaceLevel(), 2);
}

void ViewerDelegateTest::savePath()
{
    m_delegate->setDefaultSavePath(m_folder->path());
    QCOMPARE(m_delegate->defaultSavePath(), m_folder->path());
    QCOMPARE(m_settings->savePath(), m_folder->path());
    m_delegate->setDefaultSavePath(m_folder->filePath("gone"));
    QVERIFY(QFileInfo(m_delegate->defaultSavePath()).isDir());
}

void ViewerDelegateTest::decoratesPlotsOnce()
{
    QCustomPlot plot;
    m_delegate->registerPlotWidget(&plot);
    m_delegate->registerPlotWidget(&plot);
    m_delegate->registerPlotWidget(nullptr);
    QCOMPARE(plot.findChildren<host::PlotDecoration *>().size(), 1);
}

QTEST_MAIN(ViewerDelegateTest)
#include "ViewerDelegateTest.moc"

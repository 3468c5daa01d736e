#include "host/app/MainWindow.h"

#include "host/app/CameraControl.h"
#include "host/app/CameraPanel.h"
#include "host/app/LogStore.h"
#include "host/app/PluginCatalog.h"
#include "host/app/ShortcutsDialog.h"
#include "host/app/Theme.h"
#include "host/app/ViewerDelegate.h"
#include "host/app/ViewerSettings.h"

#include <QAction>
#include <QDialog>
#include <QDockWidget>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStatusBar>
#include <QTableWidget>
#include <QtTest>

using host::MainWindow;

class MainWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startsWithoutCamerasAndPlugins();
    void smallScreenHoldsEverything_data();
    void smallScreenHoldsEverything();
    void layoutReturns();
    void damagedLayoutIsIgnored();
    void resetLayout();
    void levelMenu();
    void themeMenu();
    void goToShowsAPanel();
    void panelsOfPluginsAreInTheMenus();
    void shortcutsAreUnique();
    void shortcutsAreListed();
    void pluginDialog();
    void closingAsksForTheEnd();
    void settingsProblemIsShown();
    void cameraProblemIsShown();
};

namespace {

/// A window with everything it needs, on an own settings file.
struct Rig
{
    explicit Rig(const QString &settingsFile)
        : settings(settingsFile)
        , delegate(settings, control)
    {
        window = std::make_unique<MainWindow>(host::ViewerParts{settings, control, log, theme, plugins});
        delegate.setWindow(window.get());
        QObject::connect(&delegate, &host::ViewerDelegate::dockAdded, window.get(),
                         &MainWindow::addDockActions);
    }

    QAction *action(const char *name) const
    {
        auto *found = window->findChild<QAction *>(name);
        if (!found)
            qFatal("no action %s", name);
        return found;
    }
    QDockWidget *dock(const char *name) const { return window->findChild<QDockWidget *>(name); }
    /// Docks what a measuring plug-in would: wide and not very low.
    QDockWidget *addTool(const QSize &size = QSize(700, 330))
    {
        auto *tool = new QWidget;
        tool->setObjectName("tool");
        tool->setWindowTitle("Tool");
        tool->setMinimumSize(size);
        delegate.addPluginWidget(tool, Qt::BottomDockWidgetArea,
                                 Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea, 0);
        return dock("plugin.tool");
    }

    host::LogStore log;
    host::ViewerSettings settings;
    host::Theme theme;
    host::CameraControl control;
    host::ViewerDelegate delegate;
    host::PluginCatalog plugins;
    std::unique_ptr<MainWindow> window;
};

bool isInFront(const QDockWidget *dock)
{
    return dock->isVisible() && !dock->visibleRegion().isEmpty();
}

/// Tab bars are laid out in the event loop.
void settle(const QWidget &window)
{
    QVERIFY(QTest::qWaitForWindowExposed(const_cast<QWidget *>(&window)));
    QCoreApplication::processEvents();
}

} // namespace

void MainWindowTest::startsWithoutCamerasAndPlugins()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    rig.window->restoreLayout();
    rig.window->show();
    settle(*rig.window);
    QVERIFY(isInFront(rig.dock("dockCameras")));
    QVERIFY(!isInFront(rig.dock("dockParameters"))); // behind the cameras
    QVERIFY(isInFront(rig.dock("dockLog")));
    QVERIFY(rig.window->centralWidget()->isVisible());
    QCOMPARE(rig.window->findChild<QLabel *>("statusText")->text(), QString("Ready"));
}

void MainWindowTest::smallScreenHoldsEverything_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1280 x 800") << QSize(1280, 740); // without the desktop's own bars
    QTest::newRow("1024 x 768") << QSize(1024, 708);
}

void MainWindowTest::smallScreenHoldsEverything()
{
    QFETCH(QSize, size);
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    QDockWidget *tool = rig.addTool();
    rig.window->restoreLayout();
    rig.window->setWindowState(Qt::WindowNoState);
    rig.window->resize(size);
    rig.window->show();
    settle(*rig.window);
    QCOMPARE(rig.window->size(), size); // did not have to grow
    for (QWidget *part : {static_cast<QWidget *>(rig.dock("dockCameras")), static_cast<QWidget *>(tool),
                          rig.window->centralWidget()}) {
        const QRect place(part->mapTo(rig.window.get(), QPoint()), part->size());
        QVERIFY2(rig.window->rect().contains(place), qPrintable(part->objectName()));
    }
    QVERIFY(isInFront(tool));
    const auto *scrolled = qobject_cast<QScrollArea *>(tool->widget());
    QVERIFY(scrolled);
    QVERIFY(!scrolled->verticalScrollBar()->isVisible() && !scrolled->horizontalScrollBar()->isVisible());
    QVERIFY(isInFront(rig.dock("dockCameras")));
    QVERIFY(rig.window->centralWidget()->width() >= 500);
    QVERIFY(rig.window->centralWidget()->height() >= 150);
    QVERIFY(rig.window->tabifiedDockWidgets(tool).contains(rig.dock("dockLog")));
}

void MainWindowTest::layoutReturns()
{
    QTemporaryDir folder;
    {
        Rig rig(folder.filePath("s.ini"));
        rig.addTool({300, 120});
        rig.window->restoreLayout();
        rig.window->setWindowState(Qt::WindowNoState);
        rig.window->setGeometry(20, 40, 760, 540);
        rig.window->show();
        rig.dock("dockParameters")->hide();
        rig.dock("dockLog")->hide();
        rig.window->addDockWidget(Qt::TopDockWidgetArea, rig.dock("plugin.tool"));
        rig.window->close();
        QCOMPARE(rig.settings.save(), QString());
    }
    Rig rig(folder.filePath("s.ini"));
    rig.addTool({300, 120});
    rig.window->restoreLayout();
    rig.window->show();
    QCOMPARE(rig.window->geometry(), QRect(20, 40, 760, 540));
    QVERIFY(rig.dock("dockParameters")->isHidden());
    QCOMPARE(rig.window->dockWidgetArea(rig.dock("plugin.tool")), Qt::TopDockWidgetArea);
    QVERIFY(rig.dock("plugin.tool")->isVisible());
}

void MainWindowTest::damagedLayoutIsIgnored()
{
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    rig.settings.setWindowLayout("geometry", QByteArray(300, '\xfe'));
    rig.window->restoreLayout();
    rig.window->show();
    settle(*rig.window);
    QVERIFY(isInFront(rig.dock("dockCameras")));
    QVERIFY(rig.window->screen()->geometry().intersects(rig.window->geometry()));
}

void MainWindowTest::resetLayout()
{
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    QDockWidget *tool = rig.addTool();
    rig.window->restoreLayout();
    rig.window->show();
    rig.dock("dockCameras")->setFloating(true);
    tool->hide();
    rig.action("actionResetLayout")->trigger();
    settle(*rig.window);
    QVERIFY(!rig.dock("dockCameras")->isFloating());
    QVERIFY(isInFront(tool));
}

void MainWindowTest::levelMenu()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    QVERIFY(rig.action("actionLevel3")->isChecked());
    rig.action("actionLevel1")->trigger();
    QCOMPARE(rig.settings.interfaceLevel(), 1);
    QVERIFY(!rig.action("actionLevel3")->isChecked());
}

void MainWindowTest::themeMenu()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    rig.action("actionThemeDark")->trigger();
    QCOMPARE(rig.theme.choice(), host::Theme::Choice::Dark);
    QCOMPARE(rig.settings.theme(), QString("Dark"));
    QVERIFY(host::Theme::isDark(rig.window->palette()));
    rig.action("actionThemeLight")->trigger();
    QVERIFY(!host::Theme::isDark(rig.window->palette()));
    rig.action("actionThemeSystem")->trigger();
}

void MainWindowTest::goToShowsAPanel()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    rig.window->restoreLayout();
    rig.window->show();
    settle(*rig.window);
    rig.window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(rig.window.get()));
    QTest::keyClick(rig.window.get(), Qt::Key_2, Qt::ControlModifier);
    QTRY_VERIFY(isInFront(rig.dock("dockParameters")));
    rig.dock("dockLog")->hide();
    QTest::keyClick(rig.window.get(), Qt::Key_3, Qt::ControlModifier);
    QTRY_VERIFY(isInFront(rig.dock("dockLog")));
}

void MainWindowTest::panelsOfPluginsAreInTheMenus()
{
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    QDockWidget *tool = rig.addTool();
    auto *content = tool->findChild<QWidget *>("tool");
    content->setWindowTitle("Renamed tool");
    const auto entries = [&rig] {
        int count = 0;
        for (const QAction *action : rig.window->findChildren<QAction *>())
            count += action->text() == "Renamed tool";
        return count;
    };
    QCOMPARE(entries(), 2); // to show and hide it, and to go to it
    delete content;
    QTRY_COMPARE(entries(), 0);
}

void MainWindowTest::shortcutsAreUnique()
{
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    rig.addTool();
    QMap<QString, QString> owners;
    for (const QAction *action : rig.window->findChildren<QAction *>()) {
        if (action->shortcutContext() == Qt::WidgetShortcut ||
            action->shortcutContext() == Qt::WidgetWithChildrenShortcut)
            continue;
        for (const QKeySequence &keys : action->shortcuts()) {
            const QString name = keys.toString();
            QVERIFY2(!owners.contains(name), qPrintable(name + ": " + owners[name] + ", " + action->text()));
            owners[name] = action->text();
        }
    }
    QVERIFY(owners.size() >= 10);
}

void MainWindowTest::shortcutsAreListed()
{
    QTemporaryDir folder;
    Rig rig(folder.filePath("s.ini"));
    rig.addTool();
    const host::ShortcutsDialog dialog(*rig.window->menuBar());
    auto *table = dialog.findChild<QTableWidget *>("shortcutsTable");
    QMap<QString, QString> listed;
    for (int row = 0; row < table->rowCount(); ++row)
        listed[table->item(row, 0)->text()] = table->item(row, 1)->text();
    QCOMPARE(listed["Ctrl+Q"], QString("File > Quit"));
    QCOMPARE(listed["Ctrl+4"], QString("View > Go To > Tool"));
    QCOMPARE(listed["F11"], QString("View > Full Screen"));
}

void MainWindowTest::pluginDialog()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    rig.window->show();
    rig.action("actionPlugins")->trigger();
    const QPointer<QDialog> dialog = rig.window->findChild<QDialog *>("pluginManager");
    QVERIFY(dialog && dialog->isVisible());
    dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(!dialog);
}

void MainWindowTest::closingAsksForTheEnd()
{
    QTemporaryDir folder;
    const Rig rig(folder.filePath("s.ini"));
    QSignalSpy closed(rig.window.get(), &MainWindow::closed);
    rig.window->restoreLayout();
    rig.window->show();
    rig.action("actionQuit")->trigger();
    QCOMPARE(closed.size(), 1);
    const QByteArray stored = rig.settings.windowGeometry();
    QVERIFY(!stored.isEmpty());
    // A second close, by a signal, keeps what was stored.
    rig.window->resize(5, 5);
    rig.window->close();
    QCOMPARE(rig.settings.windowGeometry(), stored);
}

void MainWindowTest::settingsProblemIsShown()
{
    QTemporaryDir folder;
    QFile file(folder.filePath("s.ini"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("a mess\n") > 0);
    file.close();
    const Rig rig(folder.filePath("s.ini"));
    auto *status = rig.window->findChild<QLabel *>("statusText");
    QVERIFY2(status->text().contains("s.ini.bak"), qPrintable(status->text()));
    QVERIFY(rig.window->minimumSizeHint().width() < 800); // however long the text is
}

void MainWindowTest::cameraProblemIsShown()
{
    const QTemporaryDir folder;
    const Rig rig(folder.filePath("settings.ini"));
    Q_EMIT rig.window->cameras().problemTold("Camera A was lost.");
    QCOMPARE(rig.window->statusBar()->currentMessage(), QString("Camera A was lost."));
    Q_EMIT rig.window->cameras().problemTold({});
    QCOMPARE(rig.window->statusBar()->currentMessage(), QString());
}

QTEST_MAIN(MainWindowTest)
#include "MainWindowTest.moc"

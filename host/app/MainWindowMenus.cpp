// The menus of the main window, with the program's own keyboard shortcuts.

#include "host/app/CameraPanel.h"
#include "host/app/InterfaceLevel.h"
#include "host/app/MainWindow.h"
#include "host/app/PluginManagerDialog.h"
#include "host/app/ShortcutsDialog.h"
#include "host/app/Theme.h"
#include "host/app/ViewerSettings.h"

#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QMenuBar>
#include <QMessageBox>
#include <QMetaEnum>

#include <array>

namespace host {

namespace {

constexpr int maxNumberedDocks = 9;

} // namespace

void MainWindow::createMenus()
{
    QMenu *file = menuBar()->addMenu(tr("&File"));
    QAction *quit = file->addAction(tr("&Quit"), this, &QWidget::close);
    quit->setObjectName(QStringLiteral("actionQuit"));
    quit->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));

    createCameraMenu();
    createViewMenu();
    createToolsMenu();
    createHelpMenu();
}

void MainWindow::createCameraMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Cameras"));
    menu->addActions(m_cameras->cameraActions());
    menu->addSeparator();
    QAction *openAll = menu->addAction(tr("Open &All"), m_cameras, &CameraPanel::openAll);
    openAll->setObjectName(QStringLiteral("actionOpenAll"));
    openAll->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+O")));
}

void MainWindow::createViewMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&View"));
    m_goToMenu = menu->addMenu(tr("&Go To"));
    m_dockMenu = menu->addMenu(tr("&Panels"));
    menu->addSeparator();
    menu->addMenu(createLevelMenu());
    menu->addMenu(createThemeMenu());
    menu->addSeparator();
    menu->addAction(tr("&Reset Layout"), this, &MainWindow::resetLayout)
        ->setObjectName(QStringLiteral("actionResetLayout"));
    QAction *fullScreen = menu->addAction(tr("&Full Screen"));
    fullScreen->setObjectName(QStringLiteral("actionFullScreen"));
    fullScreen->setCheckable(true);
    fullScreen->setShortcut(QKeySequence(Qt::Key_F11));
    connect(menu, &QMenu::aboutToShow, this, [this, fullScreen] { fullScreen->setChecked(isFullScreen()); });
    connect(fullScreen, &QAction::triggered, this, [this] { setFullScreen(!isFullScreen()); });
}

void MainWindow::setFullScreen(bool on)
{
    setWindowState(on ? windowState() | Qt::WindowFullScreen : windowState() & ~Qt::WindowFullScreen);
}

void MainWindow::addDockActions(QDockWidget *dock)
{
    m_dockMenu->addAction(dock->toggleViewAction());

    QAction *goTo = m_goToMenu->addAction(dock->windowTitle());
    const int number = m_goToMenu->actions().size();
    if (number <= maxNumberedDocks)
        goTo->setShortcut(QKeySequence(QStringLiteral("Ctrl+%1").arg(number)));
    connect(dock, &QDockWidget::windowTitleChanged, goTo, &QAction::setText);
    connect(dock, &QObject::destroyed, goTo, &QObject::deleteLater);
    connect(goTo, &QAction::triggered, dock, [dock] {
        dock->show();
        dock->raise();
        dock->activateWindow(); // a floating one has a window of its own
        dock->widget()->setFocus(Qt::ShortcutFocusReason);
    });
}

QMenu *MainWindow::createLevelMenu()
{
    auto *menu = new QMenu(tr("&Interface Level"), this);
    auto *group = new QActionGroup(menu);
    const std::array<std::pair<InterfaceLevel, QString>, 3> levels{{
        {InterfaceLevel::Basic, tr("&Basic")},
        {InterfaceLevel::Advanced, tr("&Advanced")},
        {InterfaceLevel::Expert, tr("&Expert")},
    }};
    for (const auto &[level, text] : levels) {
        const int number = static_cast<int>(level);
        QAction *action = menu->addAction(text);
        action->setObjectName(QStringLiteral("actionLevel%1").arg(number));
        action->setCheckable(true);
        action->setChecked(m_parts.settings.interfaceLevel() == number);
        group->addAction(action);
        connect(action, &QAction::triggered, this,
                [this, number] { m_parts.settings.setInterfaceLevel(number); });
    }
    return menu;
}

QMenu *MainWindow::createThemeMenu()
{
    auto *menu = new QMenu(tr("&Theme"), this);
    auto *group = new QActionGroup(menu);
    const std::array<std::pair<Theme::Choice, QString>, 3> themes{{
        {Theme::Choice::System, tr("As the &System")},
        {Theme::Choice::Light, tr("&Light")},
        {Theme::Choice::Dark, tr("&Dark")},
    }};
    for (const auto &[theme, text] : themes) {
        const Theme::Choice choice = theme;
        const QString name = QLatin1String(QMetaEnum::fromType<Theme::Choice>().valueToKey(int(choice)));
        QAction *action = menu->addAction(text);
        action->setObjectName(QLatin1String("actionTheme") + name);
        action->setCheckable(true);
        action->setChecked(m_parts.theme.choice() == choice);
        group->addAction(action);
        connect(action, &QAction::triggered, this, [this, choice, name] {
            m_parts.theme.apply(choice);
            m_parts.settings.setTheme(name);
        });
    }
    return menu;
}

void MainWindow::createToolsMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Tools"));
    QAction *plugins = menu->addAction(tr("&Plug-ins..."));
    plugins->setObjectName(QStringLiteral("actionPlugins"));
    plugins->setShortcut(QKeySequence(QStringLiteral("Ctrl+Shift+P")));
    connect(plugins, &QAction::triggered, this, [this] {
        auto *dialog = new PluginManagerDialog(m_parts.plugins, m_parts.settings, this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
}

void MainWindow::createHelpMenu()
{
    QMenu *menu = menuBar()->addMenu(tr("&Help"));
    QAction *shortcuts = menu->addAction(tr("&Keyboard Shortcuts"));
    shortcuts->setObjectName(QStringLiteral("actionShortcuts"));
    shortcuts->setShortcut(QKeySequence(Qt::Key_F1));
    connect(shortcuts, &QAction::triggered, this, [this] {
        auto *dialog = new ShortcutsDialog(*menuBar(), this);
        dialog->setAttribute(Qt::WA_DeleteOnClose);
        dialog->open();
    });
    menu->addSeparator();
    menu->addAction(tr("About &Qt"), qApp, &QApplication::aboutQt);
    QAction *about = menu->addAction(tr("&About Velmora"));
    connect(about, &QAction::triggered, this, [this] {
        auto *box = new QMessageBox(QMessageBox::NoIcon, tr("About Velmora"),
                                    tr("<b>Velmora %1</b><p>Shows cameras and runs plug-ins that use "
                                       "them.</p><p>Licence: GPL-3.0-or-later</p>")
                                        .arg(QCoreApplication::applicationVersion()),
                                    QMessageBox::Ok, this);
        box->setAttribute(Qt::WA_DeleteOnClose);
        box->open();
    });
}

} // namespace host

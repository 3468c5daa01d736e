#include "host/app/PluginManagerDialog.h"

#include "host/app/CameraControl.h"
#include "host/app/PluginCatalog.h"
#include "host/app/ViewerDelegate.h"
#include "host/app/ViewerSettings.h"
#include "tests/host/app/PluginFiles.h"

#include <QLabel>
#include <QMainWindow>
#include <QTreeWidget>
#include <QtTest>

class PluginManagerDialogTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void showsEveryCandidate();
    void showsDetails();
    void switchesForTheNextStart();
    void emptyCatalog();
};

namespace {

/// A catalog of the fixtures, and what it needs.
struct Loaded
{
    Loaded()
    {
        delegate.setWindow(&window);
        catalog.load({QStringLiteral(PLUGIN_FIXTURES)}, settings.disabledPlugins());
    }

    QTemporaryDir folder;
    host::ViewerSettings settings{folder.filePath("s.ini")};
    host::CameraControl control;
    host::ViewerDelegate delegate{settings, control};
    QMainWindow window;
    host::PluginCatalog catalog;
};

QTreeWidgetItem *item(const QDialog &dialog, const QString &file)
{
    auto *list = dialog.findChild<QTreeWidget *>("pluginList");
    for (int row = 0; row < list->topLevelItemCount(); ++row) {
        if (list->topLevelItem(row)->text(4).endsWith('/' + file))
            return list->topLevelItem(row);
    }
    qFatal("no row for %s", qPrintable(file));
}

} // namespace

void PluginManagerDialogTest::showsEveryCandidate()
{
    Loaded loaded;
    const host::PluginManagerDialog dialog(loaded.catalog, loaded.settings);
    auto *list = dialog.findChild<QTreeWidget *>("pluginList");
    QCOMPARE(list->topLevelItemCount(), int(loaded.catalog.entries().size()));
    const QTreeWidgetItem *good = item(dialog, "TracingPlugin.so");
    QCOMPARE(good->text(0), QString("Tracing plug-in"));
    QCOMPARE(good->text(1), QString("loaded"));
    QCOMPARE(good->text(2), QString("1.2.3"));
    QCOMPARE(good->text(3), QString());
    QCOMPARE(item(dialog, "ForeignPlugin.so")->text(1), QString("foreign"));
    QCOMPARE(item(dialog, "ThrowingPlugin.so")->text(1), QString("init failed"));
    QVERIFY(item(dialog, "ThrowingPlugin.so")->text(3).contains("no more paper"));
    QVERIFY(item(dialog, "MissingSymbolPlugin.so")->text(3).contains("functionThatNobodyHas"));
}

void PluginManagerDialogTest::showsDetails()
{
    Loaded loaded;
    const host::PluginManagerDialog dialog(loaded.catalog, loaded.settings);
    auto *details = dialog.findChild<QLabel *>("pluginDetails");
    dialog.findChild<QTreeWidget *>("pluginList")->setCurrentItem(item(dialog, "TracingPlugin.so"));
    for (const char *text : {"Writes down", "Tester", "https://tester.example", "TracingPlugin.so"})
        QVERIFY2(details->text().contains(text), qPrintable(details->text()));
    dialog.findChild<QTreeWidget *>("pluginList")->setCurrentItem(item(dialog, "RefusingPlugin.so"));
    QVERIFY2(details->text().contains("init() returned false"), qPrintable(details->text()));
}

void PluginManagerDialogTest::switchesForTheNextStart()
{
    Loaded loaded;
    loaded.settings.setPluginEnabled("RefusingPlugin.so", false);
    const host::PluginManagerDialog dialog(loaded.catalog, loaded.settings);
    QCOMPARE(item(dialog, "TracingPlugin.so")->checkState(0), Qt::Checked);
    QCOMPARE(item(dialog, "RefusingPlugin.so")->checkState(0), Qt::Unchecked);
    item(dialog, "TracingPlugin.so")->setCheckState(0, Qt::Unchecked);
    item(dialog, "RefusingPlugin.so")->setCheckState(0, Qt::Checked);
    QCOMPARE(loaded.settings.disabledPlugins(), QStringList{"TracingPlugin.so"});
    // Files that are not ours have no switch.
    QVERIFY(!item(dialog, "ForeignPlugin.so")->data(0, Qt::CheckStateRole).isValid());
}

void PluginManagerDialogTest::emptyCatalog()
{
    QTemporaryDir folder;
    host::ViewerSettings settings(folder.filePath("s.ini"));
    const host::PluginCatalog catalog;
    const host::PluginManagerDialog dialog(catalog, settings);
    QCOMPARE(dialog.findChild<QLabel *>("pluginHint")->text(), QString("No plug-in was found."));
}

QTEST_MAIN(PluginManagerDialogTest)
#include "PluginManagerDialogTest.moc"

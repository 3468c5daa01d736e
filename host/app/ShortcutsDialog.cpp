#include "host/app/ShortcutsDialog.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QTableWidget>
#include <QVBoxLayout>

namespace host {

namespace {

QString plainText(const QAction &action)
{
    return action.text().remove(QLatin1Char('&'));
}

void addShortcuts(QTableWidget &table, const QList<QAction *> &actions, const QString &menuPath)
{
    for (const QAction *action : actions) {
        const QString path =
            menuPath.isEmpty() ? plainText(*action) : menuPath + QStringLiteral(" > ") + plainText(*action);
        if (action->menu()) {
            addShortcuts(table, action->menu()->actions(), path);
        } else if (!action->shortcut().isEmpty()) {
            const int row = table.rowCount();
            table.insertRow(row);
            table.setItem(row, 0,
                          new QTableWidgetItem(action->shortcut().toString(QKeySequence::NativeText)));
            table.setItem(row, 1, new QTableWidgetItem(path));
        }
    }
}

} // namespace

ShortcutsDialog::ShortcutsDialog(const QMenuBar &menus, QWidget *parent)
    : QDialog(parent)
{
    setWindowTitle(tr("Keyboard Shortcuts"));
    setObjectName(QStringLiteral("shortcutsDialog"));
    auto *table = new QTableWidget(0, 2);
    table->setObjectName(QStringLiteral("shortcutsTable"));
    table->setHorizontalHeaderLabels({tr("Keys"), tr("Action")});
    table->verticalHeader()->hide();
    table->verticalHeader()->setDefaultSectionSize(fontMetrics().lineSpacing() * 3 / 2);
    table->horizontalHeader()->setStretchLastSection(true);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    addShortcuts(*table, menus.actions(), {});
    table->resizeColumnsToContents();

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(table);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 70, fontMetrics().lineSpacing() * 24);
}

} // namespace host

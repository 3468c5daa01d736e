#include "host/app/PluginManagerDialog.h"

#include "host/app/PluginCatalog.h"
#include "host/app/Theme.h"
#include "host/app/ViewerSettings.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QHeaderView>
#include <QLabel>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace host {

namespace {

enum Column { NameColumn, StateColumn, VersionColumn, ReasonColumn, PathColumn, ColumnCount };

/// Only plug-ins of this program can be switched.
bool isSwitchable(PluginState state)
{
    return state != PluginState::Foreign && state != PluginState::Invalid;
}

Theme::Accent accentOf(PluginState state)
{
    switch (state) {
    case PluginState::Loaded:
        return Theme::Accent::Good;
    case PluginState::Disabled:
    case PluginState::Foreign:
        return Theme::Accent::Muted;
    default:
        return Theme::Accent::Error;
    }
}

QString detailsOf(const PluginEntry &entry)
{
    QStringList lines;
    const auto add = [&lines](const QString &title, const QString &text) {
        if (!text.isEmpty()) {
            lines.append(QStringLiteral("<b>%1</b> %2").arg(title.toHtmlEscaped(), text.toHtmlEscaped()));
        }
    };
    add(PluginManagerDialog::tr("Description:"), entry.description);
    add(PluginManagerDialog::tr("Author:"), entry.author);
    add(PluginManagerDialog::tr("Web site:"), entry.website);
    add(PluginManagerDialog::tr("Reason:"), entry.reason);
    add(PluginManagerDialog::tr("File:"), QDir::toNativeSeparators(entry.path));
    return lines.join(QLatin1String("<br>"));
}

} // namespace

PluginManagerDialog::PluginManagerDialog(const PluginCatalog &catalog, ViewerSettings &settings,
                                         QWidget *parent)
    : QDialog(parent)
    , m_catalog(catalog)
    , m_settings(settings)
    , m_list(new QTreeWidget)
    , m_details(new QLabel)
    , m_hint(new QLabel)
{
    setWindowTitle(tr("Plug-ins"));
    setObjectName(QStringLiteral("pluginManager"));
    m_list->setObjectName(QStringLiteral("pluginList"));
    m_details->setObjectName(QStringLiteral("pluginDetails"));
    m_hint->setObjectName(QStringLiteral("pluginHint"));
    m_list->setHeaderLabels({tr("Plug-in"), tr("State"), tr("Version"), tr("Reason"), tr("File")});
    m_list->setRootIsDecorated(false);
    m_list->setAllColumnsShowFocus(true);
    m_details->setWordWrap(true);
    m_details->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_details->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_details->setMinimumHeight(fontMetrics().lineSpacing() * 6);
    m_hint->setText(m_catalog.entries().empty()
                        ? tr("No plug-in was found.")
                        : tr("A plug-in without its mark is not loaded at the next start."));

    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_details);
    layout->addWidget(m_hint);
    layout->addWidget(buttons);

    fillList();
    connect(m_list, &QTreeWidget::itemChanged, this, [this](const QTreeWidgetItem *item, int column) {
        if (column == NameColumn)
            storeSwitch(*item);
    });
    connect(m_list, &QTreeWidget::currentItemChanged, this, &PluginManagerDialog::showDetails);
    m_list->setCurrentItem(m_list->topLevelItem(0));
    resize(fontMetrics().averageCharWidth() * 130, fontMetrics().lineSpacing() * 24);
}

void PluginManagerDialog::fillList()
{
    const QStringList disabled = m_settings.disabledPlugins();
    for (const PluginEntry &entry : m_catalog.entries()) {
        auto *item = new QTreeWidgetItem(m_list);
        item->setText(NameColumn, entry.name.isEmpty() ? entry.fileName() : entry.name);
        item->setText(StateColumn, pluginStateName(entry.state));
        item->setText(VersionColumn, entry.version);
        item->setText(ReasonColumn, entry.reason);
        item->setText(PathColumn, QDir::toNativeSeparators(entry.path));
        for (int column = 0; column < ColumnCount; ++column)
            item->setToolTip(column, item->text(column));
        item->setForeground(StateColumn, Theme::accent(accentOf(entry.state), palette()));
        if (isSwitchable(entry.state)) {
            const bool enabled = !disabled.contains(entry.fileName());
            item->setCheckState(NameColumn, enabled ? Qt::Checked : Qt::Unchecked);
        }
    }
    for (const Column column : {NameColumn, StateColumn, VersionColumn})
        m_list->resizeColumnToContents(column);
    m_list->header()->resizeSection(ReasonColumn, fontMetrics().averageCharWidth() * 45);
}

void PluginManagerDialog::storeSwitch(const QTreeWidgetItem &item)
{
    const int row = m_list->indexOfTopLevelItem(const_cast<QTreeWidgetItem *>(&item));
    const PluginEntry &entry = m_catalog.entries().at(static_cast<std::size_t>(row));
    m_settings.setPluginEnabled(entry.fileName(), item.checkState(NameColumn) == Qt::Checked);
}

void PluginManagerDialog::showDetails()
{
    const int row = m_list->indexOfTopLevelItem(m_list->currentItem());
    if (row >= 0)
        m_details->setText(detailsOf(m_catalog.entries().at(static_cast<std::size_t>(row))));
}

} // namespace host

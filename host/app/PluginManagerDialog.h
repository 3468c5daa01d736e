#pragma once

#include <QDialog>

class QLabel;
class QTreeWidget;
class QTreeWidgetItem;

namespace host {

class PluginCatalog;
class ViewerSettings;

/// Every plug-in file that was found, what became of it and why, with a switch
/// for each that takes effect at the next start.
class PluginManagerDialog : public QDialog
{
    Q_OBJECT

public:
    /// \param catalog, settings outlive the dialog
    PluginManagerDialog(const PluginCatalog &catalog, ViewerSettings &settings, QWidget *parent = nullptr);

private:
    void fillList();
    void storeSwitch(const QTreeWidgetItem &item);
    void showDetails();

    const PluginCatalog &m_catalog;
    ViewerSettings &m_settings;
    QTreeWidget *m_list;
    QLabel *m_details;
    QLabel *m_hint;
};

} // namespace host

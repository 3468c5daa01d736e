#pragma once

#include <QWidget>

#include <memory>

class QAction;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPersistentModelIndex;
class QTableView;

namespace host {

class LogFilter;
class LogStore;

/// The log as a table, with filters. Follows the newest line until the user
/// scrolls up.
class LogWindow : public QWidget
{
    Q_OBJECT

public:
    /// \param store must outlive the window
    explicit LogWindow(LogStore &store, QWidget *parent = nullptr);
    ~LogWindow() override;

    /// To the clipboard: the selected lines, or all shown ones if none is.
    void copyLines() const;

protected:
    void changeEvent(QEvent *event) override;

private:
    void createTable();
    void createActions();
    void createControls();
    void connectScrolling();
    void fitRows();

    void beginUpdate();
    void endUpdate();
    void updateStatus();

    LogStore &m_store;
    LogFilter *m_filter;
    QTableView *m_table;
    QComboBox *m_levels;
    QLineEdit *m_search;
    QCheckBox *m_follow;
    QLabel *m_status;
    QAction *m_copy = nullptr;
    QAction *m_clear = nullptr;
    /// The line that stays on top while rows come and go, unless following.
    std::unique_ptr<QPersistentModelIndex> m_top;
};

} // namespace host

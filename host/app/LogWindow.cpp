#include "host/app/LogWindow.h"

#include "host/app/LogFilter.h"
#include "host/app/LogStore.h"
#include "host/app/Theme.h"

#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPersistentModelIndex>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QTableView>
#include <QToolButton>

namespace host {

namespace {

/// Colours a line by its level.
class LevelDelegate : public QStyledItemDelegate
{
public:
    using QStyledItemDelegate::QStyledItemDelegate;

protected:
    void initStyleOption(QStyleOptionViewItem *option, const QModelIndex &index) const override
    {
        QStyledItemDelegate::initStyleOption(option, index);
        const int level = index.data(LogStore::SeverityRole).toInt();
        if (level == severity(QtInfoMsg))
            return;
        const Theme::Accent accent = level == severity(QtDebugMsg)     ? Theme::Accent::Muted
                                     : level == severity(QtWarningMsg) ? Theme::Accent::Warning
                                                                       : Theme::Accent::Error;
        option->palette.setColor(QPalette::Text, Theme::accent(accent, option->palette));
        option->font.setBold(level == severity(QtFatalMsg));
    }
};

QToolButton *button(QAction *action, const char *name, QWidget *parent)
{
    auto *created = new QToolButton(parent);
    created->setObjectName(QLatin1String(name));
    created->setDefaultAction(action);
    created->setToolButtonStyle(Qt::ToolButtonTextOnly);
    return created;
}

} // namespace

LogWindow::LogWindow(LogStore &store, QWidget *parent)
    : QWidget(parent)
    , m_store(store)
    , m_filter(new LogFilter(store, this))
    , m_table(new QTableView(this))
    , m_levels(new QComboBox(this))
    , m_search(new QLineEdit(this))
    , m_follow(new QCheckBox(tr("&Follow"), this))
    , m_status(new QLabel(this))
{
    setWindowTitle(tr("Log"));
    createTable();
    createActions();
    createControls();
    connectScrolling();
    connect(&m_store, &LogStore::aboutToDeliver, this, &LogWindow::beginUpdate);
    connect(&m_store, &LogStore::delivered, this, &LogWindow::endUpdate);
    updateStatus();
}

LogWindow::~LogWindow()
{
    // The table is laid out once more when it goes with the rest of the widget.
    m_table->verticalScrollBar()->disconnect(this);
}

void LogWindow::createTable()
{
    m_table->setObjectName(QStringLiteral("logTable"));
    m_table->setModel(m_filter);
    m_table->setItemDelegate(new LevelDelegate(m_table));
    m_table->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    m_table->setWordWrap(false);
    // The reason stands at the end of a line, where it came from at its beginning.
    m_table->setTextElideMode(Qt::ElideMiddle);
    m_table->setShowGrid(false);
    m_table->setAlternatingRowColors(true);
    m_table->setTabKeyNavigation(false);
    m_table->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_table->setVerticalScrollMode(QAbstractItemView::ScrollPerItem);
    m_table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    m_table->verticalHeader()->hide();
    m_table->verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
    m_table->horizontalHeader()->setStretchLastSection(true);
    m_table->horizontalHeader()->setHighlightSections(false);
    m_table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    fitRows();
}

void LogWindow::fitRows()
{
    QFont bold = m_table->font(); // as fatal lines are
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    const int margin = 2 * metrics.horizontalAdvance(QLatin1Char('0'));
    m_table->verticalHeader()->setMinimumSectionSize(1);
    m_table->verticalHeader()->setDefaultSectionSize(metrics.height() + 2);
    const std::pair<int, QString> samples[] = {
        {LogStore::TimeColumn, QStringLiteral("00:00:00.000")},
        {LogStore::LevelColumn, QStringLiteral("Warning")},
        {LogStore::ThreadColumn, QStringLiteral("0x000000000000")},
        {LogStore::CategoryColumn, QStringLiteral("qt.category")},
    };
    for (const auto &[column, sample] : samples)
        m_table->setColumnWidth(column, metrics.horizontalAdvance(sample) + margin);
}

void LogWindow::createActions()
{
    m_copy = new QAction(tr("&Copy"), this);
    m_copy->setShortcut(QKeySequence::Copy);
    // Other parts of the main window copy as well.
    m_copy->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    m_copy->setToolTip(tr("Copy the selected lines, or all shown lines if none is selected"));
    connect(m_copy, &QAction::triggered, this, &LogWindow::copyLines);
    m_clear = new QAction(tr("C&lear"), this);
    m_clear->setToolTip(tr("Remove all lines"));
    connect(m_clear, &QAction::triggered, &m_store, &LogStore::clear);
    addAction(m_copy);
    m_table->addAction(m_copy);
    m_table->addAction(m_clear);
}

void LogWindow::createControls()
{
    m_levels->setObjectName(QStringLiteral("logLevels"));
    m_levels->addItem(tr("All"), severity(QtDebugMsg));
    m_levels->addItem(tr("Information and worse"), severity(QtInfoMsg));
    m_levels->addItem(tr("Warnings and worse"), severity(QtWarningMsg));
    m_levels->addItem(tr("Critical and worse"), severity(QtCriticalMsg));
    m_search->setObjectName(QStringLiteral("logSearch"));
    m_search->setPlaceholderText(tr("Show only lines with this text"));
    m_search->setClearButtonEnabled(true);
    m_follow->setObjectName(QStringLiteral("logFollow"));
    m_follow->setChecked(true);
    m_follow->setToolTip(tr("Keep the newest line in view"));
    m_status->setObjectName(QStringLiteral("logStatus"));
    m_status->setTextFormat(Qt::PlainText);

    const auto filter = [this](auto apply) {
        beginUpdate();
        apply();
        endUpdate();
    };
    connect(m_levels, QOverload<int>::of(&QComboBox::currentIndexChanged), this, [this, filter] {
        filter([this] { m_filter->setMinimumSeverity(m_levels->currentData().toInt()); });
    });
    connect(m_search, &QLineEdit::textChanged, this,
            [this, filter](const QString &text) { filter([this, &text] { m_filter->setText(text); }); });

    auto *controls = new QHBoxLayout;
    controls->addWidget(m_levels);
    controls->addWidget(m_search, 1);
    controls->addWidget(m_follow);
    controls->addWidget(button(m_copy, "btnCopyLog", this));
    controls->addWidget(button(m_clear, "btnClearLog", this));
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->setSpacing(4);
    layout->addLayout(controls);
    layout->addWidget(m_table, 1);
    layout->addWidget(m_status);
}

void LogWindow::connectScrolling()
{
    const QScrollBar *bar = m_table->verticalScrollBar();
    // The table adapts the bar only when it is laid out, after all changes of a
    // batch: what comes in between is the user's.
    connect(bar, &QScrollBar::valueChanged, this,
            [this, bar](int value) { m_follow->setChecked(value == bar->maximum()); });
    connect(bar, &QScrollBar::rangeChanged, this, [this] {
        if (m_follow->isChecked())
            m_table->scrollToBottom();
    });
    connect(m_follow, &QCheckBox::toggled, m_table, [this](bool follow) {
        if (follow)
            m_table->scrollToBottom();
    });
}

void LogWindow::beginUpdate()
{
    m_top.reset();
    if (!m_follow->isChecked())
        m_top = std::make_unique<QPersistentModelIndex>(m_table->indexAt(QPoint(0, 0)));
}

void LogWindow::endUpdate()
{
    if (m_follow->isChecked())
        m_table->scrollToBottom();
    else if (m_top && m_top->isValid())
        m_table->scrollTo(*m_top, QAbstractItemView::PositionAtTop);
    m_top.reset();
    updateStatus();
}

void LogWindow::updateStatus()
{
    const QLocale locale;
    QString text = tr("Lines: %1, shown: %2")
                       .arg(locale.toString(m_store.rowCount()), locale.toString(m_filter->rowCount()));
    if (m_store.dropped() > 0)
        text += QLatin1Char(' ') +
                tr("(too many to keep; oldest dropped: %1)").arg(locale.toString(m_store.dropped()));
    m_status->setText(text);
}

void LogWindow::copyLines() const
{
    std::vector<bool> chosen(static_cast<std::size_t>(m_filter->rowCount()),
                             !m_table->selectionModel()->hasSelection());
    for (const QItemSelectionRange &range : m_table->selectionModel()->selection())
        std::fill(chosen.begin() + range.top(), chosen.begin() + range.bottom() + 1, true);
    QStringList lines;
    for (int row = 0; row < m_filter->rowCount(); ++row) {
        if (chosen[static_cast<std::size_t>(row)])
            lines += wholeLine(m_store.line(m_filter->mapToSource(m_filter->index(row, 0)).row()));
    }
    if (!lines.isEmpty())
        QGuiApplication::clipboard()->setText(lines.join(QLatin1Char('\n')));
}

void LogWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::FontChange)
        fitRows();
    QWidget::changeEvent(event);
}

} // namespace host

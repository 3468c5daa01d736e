#include "host/app/LogStore.h"

#include <QDateTime>
#include <QMessageLogContext>
#include <QTextDocument>
#include <QThread>

#include <cstring>

namespace host {

namespace {

constexpr int deliveryPeriod = 100; // milliseconds
constexpr int toolTipCharacters = 2000;

/// Guards all below. Held while a message enters the store, so that no
/// handler is inside when a store goes.
std::mutex installMutex;
LogStore *installedStore = nullptr;
/// Stays set after uninstall(): a handler installed on top may still call ours.
QtMessageHandler previousHandler = nullptr;
/// The one that was on top at uninstall(): while it is there, ours is in its
/// chain and must not be put above it as well, which would close a circle.
QtMessageHandler handlerOnTop = nullptr;

QString toolTip(const QString &text)
{
    // Tool tips guess whether a text is rich; a message must not be taken for it.
    return Qt::convertFromPlainText(text.left(toolTipCharacters), Qt::WhiteSpacePre);
}

} // namespace

LogStore::LogStore(QObject *parent, const LogLimits &limits)
    : QAbstractTableModel(parent)
    , m_kept(limits)
    , m_waiting(limits)
{
    // Fetching instead of being told: a message may come from inside Qt while it
    // holds the lock that a posted event needs.
    connect(&m_timer, &QTimer::timeout, this, &LogStore::deliver);
    m_timer.start(deliveryPeriod);
}

LogStore::~LogStore()
{
    uninstall();
}

bool LogStore::install()
{
    const std::lock_guard lock(installMutex);
    if (installedStore)
        return installedStore == this;
    installedStore = this;
    const QtMessageHandler before = qInstallMessageHandler(&LogStore::handle);
    if (handlerOnTop && before == handlerOnTop)
        qInstallMessageHandler(before);
    else if (before != &LogStore::handle)
        previousHandler = before;
    handlerOnTop = nullptr;
    return true;
}

void LogStore::uninstall()
{
    const std::lock_guard lock(installMutex);
    if (installedStore != this)
        return;
    installedStore = nullptr;
    const QtMessageHandler current = qInstallMessageHandler(previousHandler);
    if (current != &LogStore::handle) {
        qInstallMessageHandler(current);
        handlerOnTop = current;
    }
}

void LogStore::handle(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    LogLine line;
    line.time = QDateTime::currentMSecsSinceEpoch();
    line.level = type;
    line.thread = reinterpret_cast<quintptr>(QThread::currentThreadId());
    if (context.category && std::strcmp(context.category, "default") != 0)
        line.category = QString::fromUtf8(context.category);
    line.text = text;

    QtMessageHandler previous = nullptr;
    {
        const std::lock_guard lock(installMutex);
        if (installedStore)
            installedStore->enter(std::move(line));
        previous = previousHandler;
    }
    // Without the lock: it may log as well, or end the program.
    if (previous)
        previous(type, context, text);
}

void LogStore::enter(LogLine line)
{
    const std::lock_guard lock(m_waitingMutex);
    m_waiting.append(std::move(line));
}

void LogStore::deliver()
{
    LogBuffer batch = [this] {
        const std::lock_guard lock(m_waitingMutex);
        return m_waiting.take();
    }();
    if (batch.size() == 0)
        return;
    Q_EMIT aboutToDeliver();
    if (const int excess = m_kept.excess(batch)) {
        beginRemoveRows({}, 0, excess - 1);
        m_kept.dropOldest(excess);
        endRemoveRows();
    }
    beginInsertRows({}, m_kept.size(), m_kept.size() + batch.size() - 1);
    m_kept.append(std::move(batch));
    endInsertRows();
    Q_EMIT delivered();
}

void LogStore::clear()
{
    Q_EMIT aboutToDeliver();
    beginResetModel();
    {
        const std::lock_guard lock(m_waitingMutex);
        m_waiting.clear();
    }
    m_kept.clear();
    endResetModel();
    Q_EMIT delivered();
}

int LogStore::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_kept.size();
}

int LogStore::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant LogStore::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    const LogLine &line = m_kept.at(index.row());
    if (role == SeverityRole)
        return severity(line.level);
    if (role == Qt::ToolTipRole && index.column() == TextColumn)
        return toolTip(line.text);
    if (role == Qt::ToolTipRole && index.column() == TimeColumn)
        return QDateTime::fromMSecsSinceEpoch(line.time).toString(Qt::ISODateWithMs);
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case TimeColumn:
        return QDateTime::fromMSecsSinceEpoch(line.time).toString(QStringLiteral("HH:mm:ss.zzz"));
    case LevelColumn:
        return levelName(line.level);
    case ThreadColumn:
        return threadName(line.thread);
    case CategoryColumn:
        return rowText(line.category);
    default:
        return rowText(line.text);
    }
}

QVariant LogStore::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return QAbstractTableModel::headerData(section, orientation, role);
    switch (section) {
    case TimeColumn:
        return tr("Time");
    case LevelColumn:
        return tr("Level");
    case ThreadColumn:
        return tr("Thread");
    case CategoryColumn:
        return tr("Category");
    default:
        return tr("Message");
    }
}

} // namespace host

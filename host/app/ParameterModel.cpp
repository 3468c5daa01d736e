#include "host/app/ParameterModel.h"

#include "host/app/RowMerge.h"
#include "host/core/HostCore.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/ZuApi.h"

#include <QFont>

#include <algorithm>
#include <limits>
#include <utility>

namespace host {

namespace {

bool same(const ParameterChoice &a, const ParameterChoice &b)
{
    return a.name == b.name && a.value == b.value;
}

bool same(const ParameterDescription &a, const ParameterDescription &b)
{
    return a.name == b.name && a.group == b.group && a.unit == b.unit && a.minimum == b.minimum &&
           a.maximum == b.maximum && a.writable == b.writable &&
           std::equal(a.choices.begin(), a.choices.end(), b.choices.begin(), b.choices.end(),
                      [](const auto &c, const auto &d) { return same(c, d); });
}

} // namespace

ParameterModel::ParameterModel(QObject *parent)
    : QAbstractItemModel(parent)
{
}

ParameterModel::~ParameterModel() = default;

void ParameterModel::setCamera(ZUCORE_HANDLE hCam)
{
    beginResetModel();
    m_camera = hCam;
    m_groups = readGroups();
    endResetModel();
}

void ParameterModel::setEditable(bool editable)
{
    m_editable = editable;
}

void ParameterModel::refresh()
{
    RowChanges changes;
    changes.beginInsert = [this](int row) { beginInsertRows({}, row, row); };
    changes.endInsert = [this] { endInsertRows(); };
    changes.beginRemove = [this](int row) { beginRemoveRows({}, row, row); };
    changes.endRemove = [this] { endRemoveRows(); };
    mergeRows(
        m_groups, readGroups(), changes, [](const auto &a, const auto &b) { return a->name == b->name; },
        [this](int row, std::unique_ptr<Group> &&group) { updateGroup(row, std::move(group->items)); });
}

void ParameterModel::updateGroup(int row, std::vector<Item> now)
{
    const QModelIndex parent = index(row, 0);
    RowChanges changes;
    changes.beginInsert = [&](int item) { beginInsertRows(parent, item, item); };
    changes.endInsert = [&] { endInsertRows(); };
    changes.beginRemove = [&](int item) { beginRemoveRows(parent, item, item); };
    changes.endRemove = [&] { endRemoveRows(); };
    mergeRows(
        m_groups[static_cast<std::size_t>(row)]->items, std::move(now), changes,
        [](const Item &a, const Item &b) { return a.description.name == b.description.name; },
        [&](int item, Item &&contents) { updateItem(parent, item, std::move(contents)); });
}

void ParameterModel::updateItem(const QModelIndex &parent, int row, Item now)
{
    Item &shown = m_groups[static_cast<std::size_t>(parent.row())]->items[static_cast<std::size_t>(row)];
    // An unnecessary change would overwrite what the user types just now.
    if (shown.value == now.value && same(shown.description, now.description))
        return;
    shown = std::move(now);
    Q_EMIT dataChanged(index(row, 0, parent), index(row, ColumnCount - 1, parent));
}

ParameterModel::Groups ParameterModel::readGroups() const
{
    Groups groups;
    for (ParameterDescription &description : HostCore::instance().parameters(m_camera)) {
        const QString name = QString::fromStdString(description.group);
        auto group =
            std::find_if(groups.begin(), groups.end(), [&](const auto &g) { return g->name == name; });
        if (group == groups.end())
            group = groups.insert(groups.end(), std::make_unique<Group>(Group{name, {}}));
        const std::optional<qlonglong> value = readValue(description.name);
        (*group)->items.push_back({std::move(description), value});
    }
    return groups;
}

std::optional<qlonglong> ParameterModel::readValue(const std::string &name) const
{
    // Negative values can be had with 32 bits only, large ones with 64 only.
    int value = 0;
    if (zuApi_GetParamInt(m_camera, name.c_str(), value, nullptr))
        return value;
    unsigned long long wide = 0;
    if (zuApi_GetParamInt64(m_camera, name.c_str(), wide, nullptr))
        return static_cast<qlonglong>(wide);
    return std::nullopt;
}

const ParameterModel::Item *ParameterModel::item(const QModelIndex &index) const
{
    const auto *group = static_cast<const Group *>(index.internalPointer());
    return group ? &group->items[static_cast<std::size_t>(index.row())] : nullptr;
}

const ParameterDescription *ParameterModel::description(const QModelIndex &index) const
{
    const Item *found = index.isValid() ? item(index) : nullptr;
    return found ? &found->description : nullptr;
}

QModelIndex ParameterModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    if (!parent.isValid())
        return createIndex(row, column);
    return createIndex(row, column, m_groups[static_cast<std::size_t>(parent.row())].get());
}

QModelIndex ParameterModel::parent(const QModelIndex &index) const
{
    if (!index.isValid() || !index.internalPointer())
        return {};
    const auto group = std::find_if(m_groups.begin(), m_groups.end(),
                                    [&](const auto &g) { return g.get() == index.internalPointer(); });
    return group == m_groups.end() ? QModelIndex()
                                   : createIndex(static_cast<int>(group - m_groups.begin()), 0);
}

int ParameterModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_groups.size());
    if (parent.internalPointer() || parent.column() != 0)
        return 0;
    return static_cast<int>(m_groups[static_cast<std::size_t>(parent.row())]->items.size());
}

int ParameterModel::columnCount(const QModelIndex &) const
{
    return ColumnCount;
}

Qt::ItemFlags ParameterModel::flags(const QModelIndex &index) const
{
    Qt::ItemFlags flags = QAbstractItemModel::flags(index);
    const ParameterDescription *found = description(index);
    if (found && found->writable && m_editable && index.column() == Value)
        flags |= Qt::ItemIsEditable;
    return flags;
}

QVariant ParameterModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Item *found = item(index);
    if (!found)
        return groupData(index, role);
    if (role == Qt::ToolTipRole)
        return toolTip(*found);
    if (role == Qt::EditRole && index.column() == Value)
        return found->value ? QVariant(*found->value) : QVariant();
    if (role != Qt::DisplayRole)
        return {};
    switch (index.column()) {
    case Name:
        return QString::fromStdString(found->description.name);
    case Value:
        return valueText(*found);
    case Unit:
        return QString::fromStdString(found->description.unit);
    default:
        return {};
    }
}

QVariant ParameterModel::groupData(const QModelIndex &index, int role) const
{
    if (role == Qt::FontRole) {
        QFont bold;
        bold.setBold(true);
        return bold;
    }
    if (role == Qt::DisplayRole && index.column() == Name)
        return m_groups[static_cast<std::size_t>(index.row())]->name;
    return {};
}

QString ParameterModel::valueText(const Item &item)
{
    return item.value ? valueText(item.description, *item.value) : tr("unreadable");
}

QString ParameterModel::valueText(const ParameterDescription &description, qlonglong value)
{
    for (const ParameterChoice &choice : description.choices) {
        if (choice.value == value)
            return QString::fromStdString(choice.name);
    }
    return QString::number(value);
}

QString ParameterModel::toolTip(const Item &item)
{
    const ParameterDescription &description = item.description;
    QString name = QString::fromStdString(description.name);
    if (!description.writable)
        return tr("%1\nRead only").arg(name);
    if (!description.choices.empty())
        return name;
    const QString unit = QString::fromStdString(description.unit);
    return tr("%1\n%2 to %3 %4", "name, smallest and largest value, unit")
        .arg(name)
        .arg(qlonglong{description.minimum})
        .arg(qlonglong{description.maximum})
        .arg(unit)
        .trimmed();
}

QVariant ParameterModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    switch (section) {
    case Name:
        return tr("Parameter");
    case Value:
        return tr("Value");
    case Unit:
        return tr("Unit");
    default:
        return {};
    }
}

bool ParameterModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !(flags(index) & Qt::ItemIsEditable))
        return false;
    bool isNumber = false;
    const qlonglong number = value.toLongLong(&isNumber);
    if (!isNumber)
        return false;
    const Item &changed = *item(index);
    if (changed.value == number)
        return true;
    const bool ok =
        std::in_range<int>(number) &&
        zuApi_SetParamInt(m_camera, changed.description.name.c_str(), static_cast<int>(number), nullptr);
    QString problem;
    if (!ok) {
        problem = tr("The camera refused %1 = %2.")
                      .arg(QString::fromStdString(changed.description.name),
                           valueText(changed.description, number));
        if (CxCameraManager::instance()->isCameraRunning(m_camera))
            problem += QLatin1Char(' ') + tr("Stop the acquisition first.");
        qWarning("%s", qUtf8Printable(problem));
    }
    refresh();
    Q_EMIT written(problem);
    return ok;
}

} // namespace host

#pragma once

#include "host/core/CameraDevice.h"
#include "zuCore/ZuCoreGlobal.h"

#include <QAbstractItemModel>

#include <memory>
#include <optional>

namespace host {

/// The parameters of one camera as a tree of groups, with the values read last.
/// GUI thread.
class ParameterModel : public QAbstractItemModel
{
    Q_OBJECT

public:
    enum Column { Name, Value, Unit, ColumnCount };

    explicit ParameterModel(QObject *parent = nullptr);
    ~ParameterModel() override;

    /// Reads the camera's parameters; null: no camera, no rows.
    void setCamera(ZUCORE_HANDLE hCam);

    /// While not editable nothing is written, whatever a view tries.
    void setEditable(bool editable);

    /// Reads all from the camera again. Rows of parameters that stay, stay.
    void refresh();

    /// Null for a group.
    const ParameterDescription *description(const QModelIndex &index) const;

    QModelIndex index(int row, int column, const QModelIndex &parent = {}) const override;
    QModelIndex parent(const QModelIndex &index) const override;
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    /// Qt::EditRole of a value is a number (qlonglong), invalid when it cannot
    /// be read.
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;
    /// Writes a number to the camera, then reads all parameters again: others may
    /// depend on this one.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;

Q_SIGNALS:
    /// After every write.
    /// \param problem for the user; empty when the camera took the value
    void written(const QString &problem);

private:
    struct Item
    {
        ParameterDescription description;
        std::optional<qlonglong> value; ///< not set: cannot be read
    };

    struct Group
    {
        QString name;
        std::vector<Item> items;
    };
    using Groups = std::vector<std::unique_ptr<Group>>;

    Groups readGroups() const;
    std::optional<qlonglong> readValue(const std::string &name) const;
    void updateGroup(int row, std::vector<Item> now);
    void updateItem(const QModelIndex &parent, int row, Item now);
    const Item *item(const QModelIndex &index) const;
    QVariant groupData(const QModelIndex &index, int role) const;

    static QString valueText(const Item &item);
    static QString valueText(const ParameterDescription &description, qlonglong value);
    static QString toolTip(const Item &item);

    ZUCORE_HANDLE m_camera = nullptr;
    bool m_editable = true;
    Groups m_groups; ///< an item's index carries the address of its group
};

} // namespace host

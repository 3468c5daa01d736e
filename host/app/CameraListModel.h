#pragma once

#include "host/core/HostCore.h"

#include <QAbstractTableModel>

namespace host {

class CameraControl;

/// The cameras that are plugged in, with their state. GUI thread.
class CameraListModel : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, State, ColumnCount };
    enum class CameraState { Available, Open, Acquiring, Measured };
    Q_ENUM(CameraState)

    /// \param control outlives the model
    explicit CameraListModel(CameraControl &control, QObject *parent = nullptr);

    /// Looks at the core's cameras anew. Rows of cameras that stay, stay.
    void refresh();

    /// As the core sees it now, also just before a refresh; the row's camera as
    /// it was listed when it is gone.
    HostCore::Camera camera(int row) const;
    CameraState state(const HostCore::Camera &camera) const;

    /// How messages name a camera.
    static QString displayName(const DeviceInfo &info);

    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

private:
    /// A camera as it was shown last.
    struct Row
    {
        HostCore::Camera camera;
        CameraState state = CameraState::Available;
    };

    void update(int row, Row now);
    QString toolTip(const Row &row) const;

    CameraControl &m_control;
    std::vector<Row> m_rows;
};

} // namespace host

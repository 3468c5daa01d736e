#include "host/app/CameraListModel.h"

#include "host/app/CameraControl.h"
#include "host/app/RowMerge.h"
#include "host/app/Theme.h"

#include <QGuiApplication>

#include <tuple>

namespace host {

namespace {

auto contents(const HostCore::Camera &camera)
{
    return std::tie(camera.info.modelName, camera.info.serialNumber, camera.info.userId, camera.handle,
                    camera.acquiring);
}

QString stateText(CameraListModel::CameraState state)
{
    switch (state) {
    case CameraListModel::CameraState::Available:
        return CameraListModel::tr("Available");
    case CameraListModel::CameraState::Open:
        return CameraListModel::tr("Open");
    case CameraListModel::CameraState::Acquiring:
        return CameraListModel::tr("Acquiring");
    case CameraListModel::CameraState::Measured:
        return CameraListModel::tr("Measured");
    }
    return {};
}

QString stateExplanation(CameraListModel::CameraState state)
{
    switch (state) {
    case CameraListModel::CameraState::Available:
        return CameraListModel::tr("plugged in, not open");
    case CameraListModel::CameraState::Open:
        return CameraListModel::tr("open");
    case CameraListModel::CameraState::Acquiring:
        return CameraListModel::tr("open and acquiring");
    case CameraListModel::CameraState::Measured:
        return CameraListModel::tr("measured by a plug-in, which drives it until the measurement ends");
    }
    return {};
}

QColor stateColour(CameraListModel::CameraState state)
{
    const QPalette palette = QGuiApplication::palette();
    switch (state) {
    case CameraListModel::CameraState::Available:
        return Theme::accent(Theme::Accent::Muted, palette);
    case CameraListModel::CameraState::Acquiring:
        return Theme::accent(Theme::Accent::Good, palette);
    case CameraListModel::CameraState::Measured:
        return Theme::accent(Theme::Accent::Warning, palette);
    default:
        return palette.color(QPalette::Text);
    }
}

QString identity(const DeviceInfo &info)
{
    const QString serial = QString::fromStdString(info.serialNumber);
    const QString userId = QString::fromStdString(info.userId);
    if (serial.isEmpty() || userId.isEmpty())
        return serial + userId;
    return CameraListModel::tr("%1 (%2)", "serial number (user id)").arg(serial, userId);
}

} // namespace

CameraListModel::CameraListModel(CameraControl &control, QObject *parent)
    : QAbstractTableModel(parent)
    , m_control(control)
{
}

void CameraListModel::refresh()
{
    std::vector<Row> now;
    for (HostCore::Camera &camera : HostCore::instance().cameras()) {
        const CameraState cameraState = state(camera);
        now.push_back({std::move(camera), cameraState});
    }
    RowChanges changes;
    changes.beginInsert = [this](int row) { beginInsertRows({}, row, row); };
    changes.endInsert = [this] { endInsertRows(); };
    changes.beginRemove = [this](int row) { beginRemoveRows({}, row, row); };
    changes.endRemove = [this] { endRemoveRows(); };
    mergeRows(
        m_rows, std::move(now), changes,
        [](const Row &a, const Row &b) { return a.camera.info.id == b.camera.info.id; },
        [this](int row, Row &&camera) { update(row, std::move(camera)); });
}

void CameraListModel::update(int row, Row now)
{
    Row &shown = m_rows[static_cast<std::size_t>(row)];
    if (shown.state == now.state && contents(shown.camera) == contents(now.camera))
        return;
    shown = std::move(now);
    Q_EMIT dataChanged(index(row, 0), index(row, ColumnCount - 1));
}

HostCore::Camera CameraListModel::camera(int row) const
{
    const HostCore::Camera &listed = m_rows[static_cast<std::size_t>(row)].camera;
    for (HostCore::Camera &camera : HostCore::instance().cameras()) {
        if (camera.info.id == listed.info.id)
            return std::move(camera);
    }
    return {listed.info, nullptr, false};
}

CameraListModel::CameraState CameraListModel::state(const HostCore::Camera &camera) const
{
    if (!camera.handle)
        return CameraState::Available;
    if (!m_control.isEnabled(camera.handle))
        return CameraState::Measured;
    return camera.acquiring ? CameraState::Acquiring : CameraState::Open;
}

QString CameraListModel::displayName(const DeviceInfo &info)
{
    return tr("%1 %2", "model, serial number").arg(QString::fromStdString(info.modelName), identity(info));
}

int CameraListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int CameraListModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QVariant CameraListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Row &row = m_rows[static_cast<std::size_t>(index.row())];
    if (role == Qt::ToolTipRole)
        return toolTip(row);
    if (index.column() == State && role == Qt::ForegroundRole)
        return stateColour(row.state);
    if (role != Qt::DisplayRole)
        return {};
    if (index.column() == State)
        return stateText(row.state);
    return tr("%1\n%2", "model, serial number")
        .arg(QString::fromStdString(row.camera.info.modelName), identity(row.camera.info));
}

QString CameraListModel::toolTip(const Row &row) const
{
    const DeviceInfo &info = row.camera.info;
    return tr("Model: %1\nSerial number: %2\nUser id: %3\nState: %4")
        .arg(QString::fromStdString(info.modelName), QString::fromStdString(info.serialNumber),
             QString::fromStdString(info.userId), stateExplanation(row.state));
}

QVariant CameraListModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return section == State ? tr("State") : tr("Camera");
}

} // namespace host

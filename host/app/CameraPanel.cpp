#include "host/app/CameraPanel.h"

#include "host/app/CameraControl.h"
#include "host/app/CameraListModel.h"
#include "zuCore/CxCameraManager.h"
#include "zuCore/CxCameraParameters.h"

#include <QAction>
#include <QGridLayout>
#include <QHeaderView>
#include <QLabel>
#include <QToolButton>
#include <QTreeView>
#include <QVBoxLayout>

#include <utility>

namespace host {

namespace {

QToolButton *buttonFor(QAction *action, const QString &name)
{
    auto *button = new QToolButton;
    button->setObjectName(name);
    button->setDefaultAction(action);
    button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    return button;
}

} // namespace

CameraPanel::CameraPanel(CameraControl &control, QWidget *parent)
    : QWidget(parent)
    , m_control(control)
    , m_model(new CameraListModel(control, this))
{
    buildActions();
    buildWidgets();
    connectSources();
    refresh();
}

void CameraPanel::buildActions()
{
    m_open = addCameraAction(QStringLiteral("actionOpenCamera"), tr("&Open"), tr("Open the selected camera"),
                             QKeySequence(QStringLiteral("Ctrl+O")), &CameraPanel::openSelected);
    m_close =
        addCameraAction(QStringLiteral("actionCloseCamera"), tr("&Close"), tr("Close the selected camera"),
                        QKeySequence(QStringLiteral("Ctrl+W")), &CameraPanel::closeSelected);
    m_start = addCameraAction(QStringLiteral("actionStartAcquisition"), tr("&Start"),
                              tr("Start the acquisition of the selected camera and show its pictures"),
                              QKeySequence(QStringLiteral("F5")), &CameraPanel::startSelected);
    m_stop = addCameraAction(QStringLiteral("actionStopAcquisition"), tr("S&top"),
                             tr("Stop the acquisition of the selected camera"),
                             QKeySequence(QStringLiteral("Shift+F5")), &CameraPanel::stopSelected);
}

QAction *CameraPanel::addCameraAction(const QString &name, const QString &text, const QString &toolTip,
                                      const QKeySequence &shortcut, void (CameraPanel::*slot)())
{
    auto *action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    action->setToolTip(tr("%1 (%2)", "what a button does, its shortcut")
                           .arg(toolTip, shortcut.toString(QKeySequence::NativeText)));
    action->setStatusTip(toolTip);
    connect(action, &QAction::triggered, this, slot);
    addAction(action);
    return action;
}

void CameraPanel::buildWidgets()
{
    m_list = new QTreeView;
    m_list->setObjectName(QStringLiteral("cameraList"));
    m_list->setModel(m_model);
    m_list->setRootIsDecorated(false);
    m_list->setUniformRowHeights(true);
    m_list->setAllColumnsShowFocus(true);
    m_list->setContextMenuPolicy(Qt::ActionsContextMenu);
    m_list->addActions(cameraActions());
    m_list->header()->setStretchLastSection(false);
    m_list->header()->setSectionResizeMode(CameraListModel::Name, QHeaderView::Stretch);
    m_list->header()->setSectionResizeMode(CameraListModel::State, QHeaderView::ResizeToContents);

    m_message = new QLabel;
    m_message->setObjectName(QStringLiteral("cameraMessage"));
    m_message->setWordWrap(true);
    m_message->hide();

    auto *buttons = new QHBoxLayout;
    buttons->addWidget(buttonFor(m_open, QStringLiteral("btnOpenCamera")));
    buttons->addWidget(buttonFor(m_close, QStringLiteral("btnCloseCamera")));
    buttons->addWidget(buttonFor(m_start, QStringLiteral("btnStartAcquisition")));
    buttons->addWidget(buttonFor(m_stop, QStringLiteral("btnStopAcquisition")));

    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_list);
    layout->addWidget(m_message);
    layout->addLayout(buttons);
}

void CameraPanel::connectSources()
{
    const auto refreshed = [this] { refresh(); };
    CxCameraManager *manager = CxCameraManager::instance();
    connect(&HostCore::instance(), &HostCore::camerasChanged, this, refreshed);
    // A camera that closes is no longer listed as open, but that is announced
    // only when it has closed.
    connect(manager, &CxCameraManager::cameraClosed, this, refreshed);
    connect(&HostCore::instance(), &HostCore::cameraLost, this, &CameraPanel::tellLoss);
    connect(&m_control, &CameraControl::enabledChanged, this, refreshed);
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &CameraPanel::showSelection);
    // Not QTreeView::activated: that is the Return key, too, and on some
    // platforms a single click.
    connect(m_list, &QTreeView::doubleClicked, this, [this] {
        if (m_open->isEnabled()) // trigger() does not ask
            m_open->trigger();
    });
}

HostCore::Camera CameraPanel::selected() const
{
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? m_model->camera(current.row()) : HostCore::Camera();
}

ZUCORE_HANDLE CameraPanel::selectedCamera() const
{
    return selected().handle;
}

QStringList CameraPanel::openCameraIds() const
{
    QStringList ids;
    for (const HostCore::Camera &camera : HostCore::instance().cameras()) {
        if (camera.handle)
            ids.append(QString::fromStdString(camera.info.id));
    }
    return ids;
}

void CameraPanel::openCameras(const QStringList &deviceIds)
{
    for (const QString &id : deviceIds) {
        bool isPluggedIn = false;
        for (const HostCore::Camera &camera : HostCore::instance().cameras()) {
            if (QString::fromStdString(camera.info.id) != id)
                continue;
            isPluggedIn = true;
            if (!camera.handle)
                open(camera.info);
        }
        if (!isPluggedIn)
            qWarning("Camera %s is not plugged in", qUtf8Printable(id));
    }
}

void CameraPanel::openAll()
{
    for (const HostCore::Camera &camera : HostCore::instance().cameras()) {
        if (!camera.handle)
            open(camera.info);
    }
}

QList<QAction *> CameraPanel::cameraActions() const
{
    return {m_open, m_close, m_start, m_stop};
}

void CameraPanel::open(const DeviceInfo &info)
{
    if (!HostCore::instance().open(info.id)) {
        tell(tr("Camera %1 cannot be opened.").arg(CameraListModel::displayName(info)));
        return;
    }
    for (int row = 0; row < m_model->rowCount() && !selectedCamera(); ++row) {
        if (m_model->camera(row).info.id == info.id)
            m_list->setCurrentIndex(m_model->index(row, 0));
    }
}

void CameraPanel::openSelected()
{
    tell({});
    open(selected().info);
}

void CameraPanel::closeSelected()
{
    tell({});
    HostCore::instance().close(selected().handle);
}

void CameraPanel::startSelected()
{
    tell({});
    const HostCore::Camera camera = selected();
    if (!HostCore::instance().startAcquisition(camera.handle))
        tell(tr("Camera %1 does not start.").arg(CameraListModel::displayName(camera.info)));
}

void CameraPanel::stopSelected()
{
    tell({});
    const HostCore::Camera camera = selected();
    if (!HostCore::instance().stopAcquisition(camera.handle))
        tell(tr("Camera %1 reported an error while it stopped.")
                 .arg(CameraListModel::displayName(camera.info)));
}

void CameraPanel::refresh()
{
    // The selection moves while rows go; only where it ends matters.
    m_refreshing = true;
    m_model->refresh();
    if (!m_list->currentIndex().isValid() && m_model->rowCount() > 0)
        m_list->setCurrentIndex(m_model->index(0, 0));
    m_refreshing = false;
    showSelection();
}

void CameraPanel::showSelection()
{
    if (m_refreshing)
        return;
    const HostCore::Camera camera = selected();
    const bool isFree = camera.handle && m_control.isEnabled(camera.handle);
    m_open->setEnabled(!camera.info.id.empty() && !camera.handle);
    m_close->setEnabled(isFree);
    m_start->setEnabled(isFree && !camera.acquiring);
    m_stop->setEnabled(isFree && camera.acquiring);
    if (std::exchange(m_announced, camera.handle) != camera.handle)
        Q_EMIT selectedCameraChanged(camera.handle);
}

void CameraPanel::tellLoss(ZUCORE_HANDLE hCam)
{
    const CxCameraParameters *parameters = CxCameraManager::instance()->cameraParameters(hCam);
    if (!parameters)
        return;
    const CxCameraInfo info = parameters->cameraInfo();
    tell(tr("Camera %1 %2 was lost.").arg(info.modelName, info.serialNumber));
}

void CameraPanel::tell(const QString &problem)
{
    m_message->setText(problem);
    m_message->setVisible(!problem.isEmpty());
    if (!problem.isEmpty())
        qWarning("%s", qUtf8Printable(problem));
    Q_EMIT problemTold(problem);
}

} // namespace host

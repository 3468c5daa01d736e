#pragma once

#include "host/core/HostCore.h"

#include <QWidget>

class QAction;
class QLabel;
class QTreeView;

namespace host {

class CameraControl;
class CameraListModel;

/// The list of the cameras that are plugged in, with the actions that open,
/// close, start and stop the selected one. GUI thread.
class CameraPanel : public QWidget
{
    Q_OBJECT

public:
    /// \param control outlives the panel
    explicit CameraPanel(CameraControl &control, QWidget *parent = nullptr);

    /// Handle of the selected camera; null when none is selected or it is not open.
    ZUCORE_HANDLE selectedCamera() const;

    /// Ids of the open cameras, in the list's order.
    QStringList openCameraIds() const;

    /// Opens those of the cameras that are plugged in; a line in the log for
    /// each that is not or that refuses.
    void openCameras(const QStringList &deviceIds);
    void openAll();

    /// Open, close, start, stop, for a menu. They belong to the panel, act on
    /// the selected camera and are enabled when they make sense.
    QList<QAction *> cameraActions() const;

Q_SIGNALS:
    /// Another camera is selected, or the selected one was opened or closed.
    /// \param hCam as selectedCamera()
    void selectedCameraChanged(ZUCORE_HANDLE hCam);

    /// What the panel tells the user changed; empty: it is over.
    void problemTold(const QString &problem);

private:
    void buildActions();
    void buildWidgets();
    void connectSources();
    QAction *addCameraAction(const QString &name, const QString &text, const QString &toolTip,
                             const QKeySequence &shortcut, void (CameraPanel::*slot)());

    /// The selected camera as the core sees it now; without an id when there is none.
    HostCore::Camera selected() const;
    void openSelected();
    void closeSelected();
    void startSelected();
    void stopSelected();
    /// Selects the camera, too, unless an open one is.
    void open(const DeviceInfo &info);

    void refresh();
    void showSelection();
    void tellLoss(ZUCORE_HANDLE hCam);
    /// A failure, in the panel and in the log; an empty text hides the last one.
    void tell(const QString &problem);

    CameraControl &m_control;
    CameraListModel *m_model;
    QTreeView *m_list = nullptr;
    QLabel *m_message = nullptr;
    QAction *m_open = nullptr;
    QAction *m_close = nullptr;
    QAction *m_start = nullptr;
    QAction *m_stop = nullptr;
    bool m_refreshing = false;
    ZUCORE_HANDLE m_announced = nullptr; ///< what selectedCameraChanged said last
};

} // namespace host

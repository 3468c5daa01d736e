#pragma once

#include "zuCore/ZuCoreGlobal.h"

#include <QWidget>

class QLabel;
class QToolButton;
class QTreeView;

namespace host {

class CameraControl;
class ParameterModel;

/// The parameters of one camera in their groups, to look at and to change. GUI
/// thread.
class ParameterPanel : public QWidget
{
    Q_OBJECT

public:
    /// \param control outlives the panel
    explicit ParameterPanel(CameraControl &control, QWidget *parent = nullptr);

    /// Null: no camera.
    void setCamera(ZUCORE_HANDLE hCam);

    QSize sizeHint() const override;

private:
    void buildWidgets();
    void connectSources();
    void refresh(ZUCORE_HANDLE hCam);
    void forget(ZUCORE_HANDLE hCam);
    void showState();
    void openGroups(int first, int last);

    CameraControl &m_control;
    ParameterModel *m_model;
    QTreeView *m_tree = nullptr;
    QLabel *m_status = nullptr;
    QToolButton *m_read = nullptr;
    QString m_problem; ///< of the last write; empty: it succeeded
    ZUCORE_HANDLE m_camera = nullptr;
};

} // namespace host

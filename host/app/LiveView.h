#pragma once

#include "host/app/PictureGrabber.h"
#include "zuCore/ZuCoreGlobal.h"

#include <QTimer>
#include <QWidget>

namespace host {

class CameraControl;

/// The live picture of one camera while the host acquires from it, with size
/// and frame rate in a line below; otherwise a text that says why there is
/// none. GUI thread.
class LiveView : public QWidget
{
    Q_OBJECT

public:
    /// \param control outlives the view
    explicit LiveView(CameraControl &control, QWidget *parent = nullptr);
    ~LiveView() override;

    /// Null: no camera. Returns at once, whatever the previous camera does.
    void setCamera(ZUCORE_HANDLE hCam);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    /// What stands in the picture's place; empty while there is one.
    QString notice() const;
    /// Size and rate of the picture; empty while there is none.
    QString caption() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void connectSources();
    /// Starts or ends the grabbing, as the camera's state demands.
    void follow();
    void clear();
    void release(ZUCORE_HANDLE hCam);
    void takePicture();
    void showRate();
    bool isLive() const;
    void tellShownSize();
    QRect pictureArea() const;
    int captionHeight() const;

    CameraControl &m_control;
    PictureGrabber m_grabber;
    QTimer m_rateTimer;
    ZUCORE_HANDLE m_camera = nullptr;
    Picture m_picture; ///< the last one of m_camera; its problem may be a later one
    double m_rate = 0; ///< frames a second
    int m_damaged = 0; ///< frames
};

} // namespace host

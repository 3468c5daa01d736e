#include "host/app/LiveView.h"

#include "host/app/CameraControl.h"
#include "zuCore/CxCameraManager.h"

#include <QLocale>
#include <QPainter>
#include <QResizeEvent>

#include <utility>

namespace host {

namespace {

constexpr int rateIntervalMs = 500;
constexpr int margin = 4;

QRect centred(QSize size, const QRect &area)
{
    QRect rect(QPoint(), size.scaled(area.size(), Qt::KeepAspectRatio));
    rect.moveCenter(area.center());
    return rect;
}

} // namespace

LiveView::LiveView(CameraControl &control, QWidget *parent)
    : QWidget(parent)
    , m_control(control)
{
    setObjectName(QStringLiteral("liveView"));
    m_rateTimer.setInterval(rateIntervalMs);
    connect(&m_rateTimer, &QTimer::timeout, this, &LiveView::showRate);
    connect(&m_grabber, &PictureGrabber::pictureReady, this, &LiveView::takePicture);
    connectSources();
}

LiveView::~LiveView() = default;

void LiveView::connectSources()
{
    CxCameraManager *manager = CxCameraManager::instance();
    connect(manager, &CxCameraManager::acquisitionStarted, this, &LiveView::follow);
    connect(manager, &CxCameraManager::acquisitionFinished, this, &LiveView::release);
    connect(manager, &CxCameraManager::cameraClosed, this, &LiveView::release);
    connect(manager, &CxCameraManager::imageFormatChanged, &m_grabber, &PictureGrabber::forgetFormat);
    connect(&m_control, &CameraControl::enabledChanged, this, [this](ZUCORE_HANDLE hCam, bool enabled) {
        if (!enabled)
            m_grabber.release(hCam);
        follow();
    });
}

void LiveView::setCamera(ZUCORE_HANDLE hCam)
{
    if (m_camera == hCam)
        return;
    m_camera = hCam;
    m_grabber.grab(nullptr);
    clear();
    follow();
}

void LiveView::release(ZUCORE_HANDLE hCam)
{
    m_grabber.release(hCam);
    follow();
}

bool LiveView::isLive() const
{
    return m_camera && CxCameraManager::instance()->isCameraRunning(m_camera) &&
           m_control.isEnabled(m_camera);
}

void LiveView::follow()
{
    if (isLive()) {
        m_grabber.grab(m_camera);
        m_rateTimer.start();
    } else {
        m_grabber.grab(nullptr);
        m_rateTimer.stop();
        clear();
    }
    update();
}

void LiveView::clear()
{
    m_picture = Picture();
    m_rate = 0;
    m_damaged = 0;
}

void LiveView::takePicture()
{
    std::optional<Picture> picture = m_grabber.takePicture();
    if (!picture || !isLive())
        return;
    tellShownSize(); // the screen may be another one
    const bool isFirst = m_picture.image.isNull();
    if (picture->image.isNull() && !isFirst)
        m_picture.problem = picture->problem; // under the last picture
    else
        m_picture = std::move(*picture);
    if (isFirst)
        showRate();
    update();
}

void LiveView::showRate()
{
    m_rate = m_grabber.frameRate();
    m_damaged = m_grabber.damagedFrames();
    update();
}

QString LiveView::notice() const
{
    if (!m_camera || !CxCameraManager::instance()->openedCameras().contains(m_camera))
        return tr("No open camera is selected.");
    if (!m_control.isEnabled(m_camera))
        return tr("A plug-in measures with this camera.\nIts picture returns when the measurement ends.");
    if (!CxCameraManager::instance()->isCameraRunning(m_camera))
        return tr("The camera does not acquire.\nStart the acquisition to see its picture.");
    if (!m_picture.image.isNull())
        return {};
    return m_picture.problem.isEmpty() ? tr("Waiting for the first picture…") : m_picture.problem;
}

QString LiveView::caption() const
{
    if (!notice().isEmpty())
        return {};
    if (!m_picture.problem.isEmpty())
        return m_picture.problem;
    const QLocale locale;
    QString text = tr("%1 × %2 pixels, %3 frames/s")
                       .arg(m_picture.size.width())
                       .arg(m_picture.size.height())
                       .arg(locale.toString(m_rate, 'f', 1));
    if (m_damaged > 0)
        text += tr(", %n damaged", "frames", m_damaged);
    return text;
}

QSize LiveView::sizeHint() const
{
    return {640, 360};
}

QSize LiveView::minimumSizeHint() const
{
    return {160, 120};
}

int LiveView::captionHeight() const
{
    return fontMetrics().height() + 2 * margin;
}

QRect LiveView::pictureArea() const
{
    return rect().adjusted(margin, margin, -margin, -captionHeight());
}

void LiveView::tellShownSize()
{
    m_grabber.setShownSize((QSizeF(pictureArea().size()) * devicePixelRatioF()).toSize());
}

void LiveView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    tellShownSize();
}

void LiveView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::WindowText));
    const QString text = notice();
    if (!text.isEmpty()) {
        painter.drawText(rect().adjusted(margin, margin, -margin, -margin),
                         Qt::AlignCenter | Qt::TextWordWrap, text);
        return;
    }
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(centred(m_picture.size, pictureArea()), m_picture.image);
    const QRect line(0, height() - captionHeight(), width(), captionHeight());
    painter.drawText(line.adjusted(margin, 0, -margin, 0), Qt::AlignCenter,
                     fontMetrics().elidedText(caption(), Qt::ElideRight, width() - 2 * margin));
}

} // namespace host

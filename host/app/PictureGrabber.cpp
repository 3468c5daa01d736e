#include "host/app/PictureGrabber.h"

#include <QMetaObject>

#include <algorithm>
#include <utility>

namespace host {

namespace {

/// Short, because the next camera waits for it.
constexpr std::chrono::milliseconds captureTimeout{250};
/// After a failure. Also gives whoever stops the camera the time to call
/// release() before the next capture begins to wait in vain.
constexpr std::chrono::milliseconds retryPause{100};
/// Without a frame; slow cameras are no failure.
constexpr std::chrono::seconds patience{2};

constexpr std::chrono::nanoseconds pictureInterval =
    std::chrono::nanoseconds(std::chrono::seconds(1)) / PicturePace::PicturesPerSecond;

using SteadyClock = std::chrono::steady_clock;

} // namespace

bool PicturePace::isDue(Time now)
{
    if (now < m_next)
        return false;
    // From one due time to the next: with a camera of 40 frames a second, "a
    // while after the last picture" would leave out every other frame.
    m_next = std::max(m_next + pictureInterval, now);
    return true;
}

PictureGrabber::PictureGrabber(QObject *parent)
    : QObject(parent)
    , m_worker([this] { run(); })
{
}

PictureGrabber::~PictureGrabber()
{
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
    }
    m_worker.join();
}

void PictureGrabber::grab(ZUCORE_HANDLE hCam)
{
    const std::lock_guard lock(m_mutex);
    if (m_job.camera != hCam)
        startJob(hCam);
}

void PictureGrabber::release(ZUCORE_HANDLE hCam)
{
    std::unique_lock lock(m_mutex);
    if (hCam && m_job.camera == hCam)
        startJob(nullptr);
    m_changed.wait(lock, [&] { return !hCam || m_used != hCam; });
}

/// With the mutex held.
void PictureGrabber::startJob(ZUCORE_HANDLE hCam)
{
    m_job.camera = hCam;
    ++m_job.number;
    m_rate.clear();
    m_lastFrame.reset();
    m_damagedFrames = 0;
    m_picture.reset();
    m_changed.notify_all();
}

void PictureGrabber::forgetFormat()
{
    const std::lock_guard lock(m_mutex);
    ++m_job.formatNumber;
}

void PictureGrabber::setShownSize(QSize size)
{
    const std::lock_guard lock(m_mutex);
    m_shownSize = size;
}

std::optional<Picture> PictureGrabber::takePicture()
{
    const std::lock_guard lock(m_mutex);
    m_announced = false;
    return std::exchange(m_picture, std::nullopt);
}

double PictureGrabber::frameRate() const
{
    const std::lock_guard lock(m_mutex);
    return m_rate.value(SteadyClock::now());
}

int PictureGrabber::damagedFrames() const
{
    const std::lock_guard lock(m_mutex);
    return m_damagedFrames;
}

void PictureGrabber::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_ending || m_job.camera; });
        if (m_ending)
            return;
        const Job job = m_job;
        m_used = job.camera;
        lock.unlock();
        const bool captured = work(job);
        lock.lock();
        m_used = nullptr;
        m_changed.notify_all();
        if (!captured)
            m_changed.wait_for(lock, retryPause, [&] { return !isCurrent(job); });
    }
}

/// One capture; false when it failed.
bool PictureGrabber::work(const Job &job)
{
    if (m_formatJob.number != job.number || m_formatJob.formatNumber != job.formatNumber) {
        if (m_formatJob.number != job.number)
            m_pace = PicturePace(); // the first picture of a camera is always shown
        m_format = readPictureFormat(job.camera);
        m_formatJob = job;
    }
    ZU_IMG frame{};
    frame.size = sizeof frame;
    const Time begin = SteadyClock::now();
    const bool captured = zuApi_GetImage(job.camera, captureTimeout.count(), &frame, nullptr, true);
    const Time end = SteadyClock::now();
    if (!captured) {
        noteFailure(job, begin, end);
        return false;
    }
    noteSuccess(job, end);
    if (m_pace.isDue(end)) {
        QSize shownSize;
        {
            const std::lock_guard lock(m_mutex);
            shownSize = m_shownSize;
        }
        deliver(job, convertPicture(frame, m_format, shownSize));
    }
    return true;
}

void PictureGrabber::noteSuccess(const Job &job, Time time)
{
    const std::lock_guard lock(m_mutex);
    if (!isCurrent(job))
        return;
    m_rate.add(time);
    m_lastFrame = time;
}

void PictureGrabber::noteFailure(const Job &job, Time begin, Time end)
{
    {
        const std::lock_guard lock(m_mutex);
        if (!isCurrent(job))
            return;
        // Without a frame a capture fails no earlier than after the time-out,
        // except for a stop, which soon ends the job as well.
        if (end - begin < captureTimeout)
            ++m_damagedFrames;
        if (m_lastFrame && end - *m_lastFrame < patience)
            return;
    }
    Picture none;
    none.problem = tr("No frame can be captured from the camera. Trying again.");
    deliver(job, std::move(none));
}

void PictureGrabber::deliver(const Job &job, Picture picture)
{
    const std::lock_guard lock(m_mutex);
    if (!isCurrent(job))
        return;
    m_picture = std::move(picture);
    if (!std::exchange(m_announced, true))
        QMetaObject::invokeMethod(this, &PictureGrabber::pictureReady, Qt::QueuedConnection);
}

} // namespace host

#pragma once

#include "host/app/FrameRate.h"
#include "host/app/PictureFormat.h"
#include "zuCore/ZuCoreGlobal.h"

#include <QObject>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>

namespace host {

/// When to make a frame ready for the screen, so that it happens often enough
/// to look alive and no faster.
class PicturePace
{
public:
    using Time = std::chrono::steady_clock::time_point;

    static constexpr int PicturesPerSecond = 30;

    /// Whether the frame that came at `now` is to be shown.
    bool isDue(Time now);

private:
    Time m_next;
};

/// Captures frames of one camera at a time on a thread of its own and hands
/// the newest one, ready to be painted, to the thread that it was made on. All
/// functions are that thread's, which needs an event loop.
class PictureGrabber : public QObject
{
    Q_OBJECT

public:
    explicit PictureGrabber(QObject *parent = nullptr);
    ~PictureGrabber() override;

    /// Captures from this camera from now on, which acquires; null: from none.
    /// Returns at once: a capture from the previous one may go on until its
    /// time-out, but its frame is dropped.
    void grab(ZUCORE_HANDLE hCam);

    /// Returns once the camera is out of use, and captures from it no more. To
    /// be called when the camera has stopped, which ends a capture, or else
    /// after the time-out at most.
    void release(ZUCORE_HANDLE hCam);

    /// The format of the camera's frames changed: look again.
    void forgetFormat();

    /// Device pixels that a picture fills on the screen.
    void setShownSize(QSize size);

    /// The newest picture since the last call. One without an image says why
    /// there is none: it cannot be shown, or no frame came for a while.
    std::optional<Picture> takePicture();

    /// Of the present camera, skipped frames included.
    double frameRate() const;

    /// How many frames of the present camera arrived damaged.
    int damagedFrames() const;

Q_SIGNALS:
    /// There may be something to take. Not emitted again until it was taken.
    void pictureReady();

private:
    using Time = std::chrono::steady_clock::time_point;

    /// What the worker does next; copied for use without the lock.
    struct Job
    {
        ZUCORE_HANDLE camera = nullptr;
        unsigned int number = 0;       ///< a new one for each grab()
        unsigned int formatNumber = 0; ///< a new one for each forgetFormat()
    };

    void run();
    bool work(const Job &job);
    void noteSuccess(const Job &job, Time time);
    void noteFailure(const Job &job, Time begin, Time end);
    void deliver(const Job &job, Picture picture);
    void startJob(ZUCORE_HANDLE hCam);
    bool isCurrent(const Job &job) const { return m_job.number == job.number && !m_ending; }

    mutable std::mutex m_mutex; ///< guards all below; not held while a camera is used
    std::condition_variable m_changed;
    Job m_job;
    ZUCORE_HANDLE m_used = nullptr; ///< the camera that the worker uses
    bool m_ending = false;
    QSize m_shownSize;
    FrameRate m_rate;
    std::optional<Time> m_lastFrame; ///< of the job
    int m_damagedFrames = 0;         ///< of the job
    std::optional<Picture> m_picture;
    bool m_announced = false;

    /// The worker's own.
    PictureFormat m_format;
    Job m_formatJob; ///< which the format was read for
    PicturePace m_pace;

    std::thread m_worker; ///< last: it uses the rest
};

} // namespace host

#pragma once

#include "host/core/CameraBackend.h"

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

/// A camera that does what a test tells it and remembers what it was asked.
/// For all threads, like every device.
class FakeCamera : public host::CameraDevice
{
public:
    explicit FakeCamera(const std::string &id);

    // The test's side.
    void setValue(const std::string &name, std::int64_t value);
    std::int64_t value(const std::string &name) const;
    void setMaximum(const std::string &name, std::int64_t value);
    void describe(const host::ParameterDescription &description);
    void failReads(const std::string &name);
    void failWrites(const std::string &name);
    void limit(const std::string &name, std::int64_t largest); ///< larger values are written as this one
    void setInfo(const host::DeviceInfo &info);
    void failOpen(bool fail);
    void failStart(bool fail);
    void failStop(bool fail);
    void plug(bool connected); ///< plugging in starts a new connection
    void pushFrame(const ZU_IMG &frame);
    /// Stops the threads that come to an operation, "capture" or "write", until
    /// release().
    void hold(const std::string &operation);
    void awaitHeld(); ///< blocks until hold() has stopped a thread
    void release();

    bool isOpen() const;
    bool isStreaming() const;
    /// Blocks until a thread waits in captureImage.
    void awaitCapture();
    /// Everything that changed something or tried to, in order: "open",
    /// "start", "write gain=3", ...
    std::vector<std::string> log() const;
    void clearLog();

    // The device's side.
    host::DeviceInfo info() const override;
    bool isConnected() const override;
    unsigned int connectionCount() const override;
    Opening open() override;
    void close() override;
    std::vector<host::ParameterDescription> parameters() const override;
    bool readParameter(std::string_view name, std::int64_t &value) override;
    bool readMaximum(std::string_view name, std::int64_t &value) override;
    bool writeParameter(std::string_view name, std::int64_t value) override;
    bool isSettable(std::string_view name, std::int64_t value) override;
    bool startAcquisition() override;
    bool stopAcquisition() override;
    bool captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image) override;

private:
    void passHold(std::unique_lock<std::mutex> &lock, std::string_view operation);

    mutable std::mutex m_mutex; ///< guards all below
    std::condition_variable m_changed;
    host::DeviceInfo m_info;
    std::map<std::string, std::int64_t, std::less<>> m_values;
    std::map<std::string, std::int64_t, std::less<>> m_maxima;
    std::map<std::string, std::int64_t, std::less<>> m_limits;
    std::vector<host::ParameterDescription> m_descriptions;
    std::set<std::string, std::less<>> m_failingReads;
    std::set<std::string, std::less<>> m_failingWrites;
    std::vector<ZU_IMG> m_frames;
    std::vector<std::string> m_log;
    unsigned int m_connectionCount = 1;
    Opening m_opening = 0;       ///< the last one
    unsigned int m_endCount = 0; ///< stops and closes so far
    int m_waiting = 0;           ///< captures
    int m_held = 0;
    std::string m_heldOperation;
    bool m_connected = true;
    bool m_open = false;
    bool m_streaming = false;
    bool m_failOpen = false;
    bool m_failStart = false;
    bool m_failStop = false;
};

/// The fake cameras that are plugged in. The test keeps `cameras`; the back end
/// itself belongs to the core.
class FakeBackend : public host::CameraBackend
{
public:
    using Cameras = std::vector<std::shared_ptr<FakeCamera>>;

    explicit FakeBackend(std::shared_ptr<Cameras> cameras);
    std::vector<std::shared_ptr<host::CameraDevice>> devices() override;

private:
    std::shared_ptr<Cameras> m_cameras;
};

/// Hands the core a back end with these cameras; more can be put into the list
/// later.
std::shared_ptr<FakeBackend::Cameras> plugIn(const FakeBackend::Cameras &cameras);

#include "tests/host/core/FakeCamera.h"

#include "host/core/HostCore.h"

#include <algorithm>
#include <utility>

using Lock = std::unique_lock<std::mutex>;

FakeCamera::FakeCamera(const std::string &id)
    : m_info{id, "Model " + id, "SN-" + id, ""}
{
}

void FakeCamera::setValue(const std::string &name, std::int64_t value)
{
    const Lock lock(m_mutex);
    m_values[name] = value;
}

std::int64_t FakeCamera::value(const std::string &name) const
{
    const Lock lock(m_mutex);
    return m_values.at(name);
}

void FakeCamera::setMaximum(const std::string &name, std::int64_t value)
{
    const Lock lock(m_mutex);
    m_maxima[name] = value;
}

void FakeCamera::describe(const host::ParameterDescription &description)
{
    const Lock lock(m_mutex);
    m_descriptions.push_back(description);
}

void FakeCamera::failReads(const std::string &name)
{
    const Lock lock(m_mutex);
    m_failingReads.insert(name);
}

void FakeCamera::failWrites(const std::string &name)
{
    const Lock lock(m_mutex);
    m_failingWrites.insert(name);
}

void FakeCamera::limit(const std::string &name, std::int64_t largest)
{
    const Lock lock(m_mutex);
    m_limits[name] = largest;
}

void FakeCamera::setInfo(const host::DeviceInfo &info)
{
    const Lock lock(m_mutex);
    m_info = info;
}

void FakeCamera::failOpen(bool fail)
{
    const Lock lock(m_mutex);
    m_failOpen = fail;
}

void FakeCamera::failStart(bool fail)
{
    const Lock lock(m_mutex);
    m_failStart = fail;
}

void FakeCamera::failStop(bool fail)
{
    const Lock lock(m_mutex);
    m_failStop = fail;
}

void FakeCamera::plug(bool connected)
{
    const Lock lock(m_mutex);
    if (connected && !m_connected)
        ++m_connectionCount;
    if (!connected)
        m_open = m_streaming = false;
    m_connected = connected;
}

void FakeCamera::pushFrame(const ZU_IMG &frame)
{
    const Lock lock(m_mutex);
    m_frames.push_back(frame);
    m_changed.notify_all();
}

void FakeCamera::hold(const std::string &operation)
{
    const Lock lock(m_mutex);
    m_heldOperation = operation;
}

void FakeCamera::awaitHeld()
{
    Lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_held > 0; });
}

void FakeCamera::release()
{
    const Lock lock(m_mutex);
    m_heldOperation.clear();
    m_changed.notify_all();
}

void FakeCamera::passHold(Lock &lock, std::string_view operation)
{
    if (m_heldOperation != operation)
        return;
    ++m_held;
    m_changed.notify_all();
    m_changed.wait(lock, [&] { return m_heldOperation != operation; });
    --m_held;
}

bool FakeCamera::isOpen() const
{
    const Lock lock(m_mutex);
    return m_open;
}

bool FakeCamera::isStreaming() const
{
    const Lock lock(m_mutex);
    return m_streaming;
}

void FakeCamera::awaitCapture()
{
    Lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_waiting > 0; });
}

std::vector<std::string> FakeCamera::log() const
{
    const Lock lock(m_mutex);
    return m_log;
}

void FakeCamera::clearLog()
{
    const Lock lock(m_mutex);
    m_log.clear();
}

host::DeviceInfo FakeCamera::info() const
{
    const Lock lock(m_mutex);
    return m_info;
}

bool FakeCamera::isConnected() const
{
    const Lock lock(m_mutex);
    return m_connected;
}

unsigned int FakeCamera::connectionCount() const
{
    const Lock lock(m_mutex);
    return m_connectionCount;
}

host::CameraDevice::Opening FakeCamera::open()
{
    const Lock lock(m_mutex);
    m_log.push_back("open");
    m_open = m_connected && !m_failOpen;
    m_changed.notify_all();
    return m_open ? ++m_opening : 0;
}

void FakeCamera::close()
{
    const Lock lock(m_mutex);
    m_log.push_back("close");
    m_open = m_streaming = false;
    ++m_endCount;
    m_changed.notify_all();
}

std::vector<host::ParameterDescription> FakeCamera::parameters() const
{
    const Lock lock(m_mutex);
    return m_descriptions;
}

bool FakeCamera::readParameter(std::string_view name, std::int64_t &value)
{
    const Lock lock(m_mutex);
    const auto it = m_values.find(name);
    if (!m_open || it == m_values.end() || m_failingReads.count(name) != 0)
        return false;
    value = it->second;
    return true;
}

bool FakeCamera::readMaximum(std::string_view name, std::int64_t &value)
{
    const Lock lock(m_mutex);
    const auto it = m_maxima.find(name);
    if (!m_open || it == m_maxima.end())
        return false;
    value = it->second;
    return true;
}

bool FakeCamera::writeParameter(std::string_view name, std::int64_t value)
{
    Lock lock(m_mutex);
    passHold(lock, "write");
    m_log.push_back("write " + std::string(name) + "=" + std::to_string(value));
    const auto it = m_values.find(name);
    if (!m_open || it == m_values.end() || m_failingWrites.count(name) != 0)
        return false;
    const auto limited = m_limits.find(name);
    it->second = limited == m_limits.end() ? value : std::min(value, limited->second);
    return true;
}

bool FakeCamera::isSettable(std::string_view name, std::int64_t value)
{
    const Lock lock(m_mutex);
    const auto it = m_maxima.find(name);
    return m_open && it != m_maxima.end() && value <= it->second;
}

bool FakeCamera::startAcquisition()
{
    const Lock lock(m_mutex);
    m_log.push_back("start");
    if (!m_open || m_streaming || m_failStart)
        return false;
    m_streaming = true;
    m_changed.notify_all();
    return true;
}

bool FakeCamera::stopAcquisition()
{
    const Lock lock(m_mutex);
    m_log.push_back("stop");
    const bool ok = m_streaming && !m_failStop;
    m_streaming = false;
    ++m_endCount;
    m_changed.notify_all();
    return ok;
}

bool FakeCamera::captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image)
{
    Lock lock(m_mutex);
    passHold(lock, "capture");
    const unsigned int endsBefore = m_endCount;
    const auto isOver = [&] { return m_endCount != endsBefore || m_opening != opening; };
    ++m_waiting;
    m_changed.notify_all();
    m_changed.wait_until(lock, std::chrono::steady_clock::now() + timeout,
                         [&] { return isOver() || (m_streaming && !m_frames.empty()); });
    --m_waiting;
    if (isOver() || !m_streaming || m_frames.empty())
        return false;
    image = m_frames.front();
    m_frames.erase(m_frames.begin());
    return true;
}

FakeBackend::FakeBackend(std::shared_ptr<Cameras> cameras)
    : m_cameras(std::move(cameras))
{
}

std::vector<std::shared_ptr<host::CameraDevice>> FakeBackend::devices()
{
    std::vector<std::shared_ptr<host::CameraDevice>> devices;
    for (const auto &camera : *m_cameras) {
        if (camera->isConnected())
            devices.push_back(camera);
    }
    return devices;
}

std::shared_ptr<FakeBackend::Cameras> plugIn(const FakeBackend::Cameras &cameras)
{
    const auto list = std::make_shared<FakeBackend::Cameras>(cameras);
    host::HostCore::instance().addBackend(std::make_unique<FakeBackend>(list));
    return list;
}

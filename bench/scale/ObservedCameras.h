#pragma once

#include "bench/scale/Milliseconds.h"
#include "host/core/CameraBackend.h"
#include "host/core/simulation/SimulationBackend.h"

#include <atomic>

namespace scale {

/// A simulated camera that takes the time of its captures.
class ObservedCamera : public host::CameraDevice
{
public:
    explicit ObservedCamera(std::shared_ptr<host::SimulatedCamera> camera);

    const host::SimulatedCamera &simulated() const { return *m_camera; }

    /// Processor time spent in captures: what the simulation costs the thread
    /// that takes the frames. Any thread, as the next two.
    double captureSeconds() const { return static_cast<double>(m_captureNanoseconds.load()) * 1e-9; }
    /// Longest time, in milliseconds, from a frame's hand-over to the call for
    /// the next one: for so long was the thread busy with it or kept from it.
    double longestAbsence() const { return static_cast<double>(m_longestAbsence.load()) * 1e-6; }
    void resetAbsence() { m_longestAbsence = 0; }

    host::DeviceInfo info() const override { return m_camera->info(); }
    bool isConnected() const override { return m_camera->isConnected(); }
    unsigned int connectionCount() const override { return m_camera->connectionCount(); }
    Opening open() override { return m_camera->open(); }
    void close() override { m_camera->close(); }
    std::vector<host::ParameterDescription> parameters() const override { return m_camera->parameters(); }
    bool readParameter(std::string_view name, std::int64_t &value) override
    {
        return m_camera->readParameter(name, value);
    }
    bool readMaximum(std::string_view name, std::int64_t &value) override
    {
        return m_camera->readMaximum(name, value);
    }
    bool writeParameter(std::string_view name, std::int64_t value) override
    {
        return m_camera->writeParameter(name, value);
    }
    bool isSettable(std::string_view name, std::int64_t value) override
    {
        return m_camera->isSettable(name, value);
    }
    bool startAcquisition() override;
    bool stopAcquisition() override { return m_camera->stopAcquisition(); }
    bool captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image) override;

private:
    std::shared_ptr<host::SimulatedCamera> m_camera;
    std::atomic<std::int64_t> m_captureNanoseconds{0};
    std::atomic<std::int64_t> m_longestAbsence{0}; ///< nanoseconds
    /// When the last frame was handed over; 0: none yet. The capturing thread's.
    std::atomic<std::int64_t> m_handedOver{0};
};

/// A scenario's cameras in real time, observed.
class ObservedBackend : public host::CameraBackend
{
public:
    explicit ObservedBackend(const host::Scenario &scenario);

    std::vector<std::shared_ptr<host::CameraDevice>> devices() override;
    const std::vector<std::shared_ptr<ObservedCamera>> &cameras() const { return m_cameras; }

private:
    host::SimulationBackend m_simulation;
    std::vector<std::shared_ptr<ObservedCamera>> m_cameras;
};

} // namespace scale

#pragma once

#include "host/core/simulation/FreeRunningClock.h"
#include "host/core/simulation/SimulatedCamera.h"
#include "measurement/CameraLineData.h"

#include <memory>

/// One simulated camera, opened in the real host library and measured by a real
/// engine, in a virtual time that passes as fast as the frames are read.
class SimulatedRig
{
public:
    explicit SimulatedRig(const host::CameraSettings &settings, std::uint64_t seed = 1);
    ~SimulatedRig();

    /// Measures until that much camera time has passed and every frame that
    /// arrived until then is stored.
    bool measure(double seconds, unsigned int sampleInterval = 4096);

    /// The model's statistics over everything that was stored.
    bool calculateStatistics(bool resetBufferLevel);

    const host::SimulatedCamera &camera() const { return *m_camera; }
    ZUCORE_HANDLE handle() const { return m_line.cameraHandle; }
    CxCameraLineData &line() { return m_line; }

private:
    std::shared_ptr<host::FreeRunningClock> m_clock;
    std::shared_ptr<host::SimulatedCamera> m_camera;
    CxCameraLineData m_line;
};

#include "tests/integration/SimulatedRig.h"

#include "host/core/HostCore.h"
#include "host/core/simulation/SimulationBackend.h"

#include <thread>

SimulatedRig::SimulatedRig(const host::CameraSettings &settings, std::uint64_t seed)
    : m_clock(std::make_shared<host::FreeRunningClock>(0))
{
    host::Scenario scenario;
    scenario.seed = seed;
    scenario.cameras = {settings};
    auto backend = std::make_unique<host::SimulationBackend>(scenario, m_clock);
    m_camera = backend->cameras().front();
    host::HostCore &core = host::HostCore::instance();
    core.addBackend(std::move(backend));
    m_line.cameraHandle = core.open(m_camera->info().id);
}

SimulatedRig::~SimulatedRig()
{
    host::HostCore::instance().shutDown();
}

bool SimulatedRig::measure(double seconds, unsigned int sampleInterval)
{
    if (!m_line.startMeasurement(sampleInterval, 100'000'000))
        return false;
    const bool reached = m_clock->runUntil(static_cast<host::Ticks>(seconds * host::TicksPerSecond));
    // The capture that waits for a later frame must fail, but only when the
    // engine will not capture again.
    std::thread releaser([this] {
        while (!m_line.stopRequested)
            std::this_thread::yield();
        m_clock->release();
    });
    const bool stopped = m_line.stopMeasurement();
    releaser.join();
    return reached && stopped;
}

bool SimulatedRig::calculateStatistics(bool resetBufferLevel)
{
    if (m_line.frames.isEmpty())
        return false;
    const auto origin = TimestampOriginCamera;
    const CxCameraLineData::CxFrameData &last = *m_line.frames.last();
    const long long end = last.frameTimestamp(origin) + last.sampleSpan / host::TicksPerMicrosecond + 1;
    return m_line.calculateStatisticsThroughput(m_line.frames.first()->frameTimestamp(origin), end, origin,
                                                resetBufferLevel);
}

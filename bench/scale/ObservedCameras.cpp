#include "bench/scale/ObservedCameras.h"

#include "host/core/simulation/RealTimeClock.h"

#include <ctime>
#include <utility>

namespace scale {

namespace {

std::int64_t nanoseconds(clockid_t clock)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

ObservedCamera::ObservedCamera(std::shared_ptr<host::SimulatedCamera> camera)
    : m_camera(std::move(camera))
{
}

bool ObservedCamera::startAcquisition()
{
    m_handedOver = 0;
    return m_camera->startAcquisition();
}

bool ObservedCamera::captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image)
{
    const std::int64_t last = m_handedOver.load();
    const std::int64_t absence = nanoseconds(CLOCK_MONOTONIC) - last;
    if (last != 0 && absence > m_longestAbsence.load())
        m_longestAbsence = absence;
    const std::int64_t begin = nanoseconds(CLOCK_THREAD_CPUTIME_ID);
    const bool captured = m_camera->captureImage(opening, timeout, image);
    m_captureNanoseconds += nanoseconds(CLOCK_THREAD_CPUTIME_ID) - begin;
    m_handedOver = nanoseconds(CLOCK_MONOTONIC);
    return captured;
}

ObservedBackend::ObservedBackend(const host::Scenario &scenario)
    : m_simulation(scenario, std::make_shared<host::RealTimeClock>())
{
    for (const auto &camera : m_simulation.cameras())
        m_cameras.push_back(std::make_shared<ObservedCamera>(camera));
}

std::vector<std::shared_ptr<host::CameraDevice>> ObservedBackend::devices()
{
    return {m_cameras.begin(), m_cameras.end()};
}

} // namespace scale

#include "host/core/simulation/FramePipeline.h"

#include <cmath>

namespace host {

TriggerSchedule::TriggerSchedule(double frameRate)
    : m_milliHertz(std::max<std::int64_t>(1, std::llround(frameRate * 1000.0)))
{
}

void TriggerSchedule::advance()
{
    ++m_index;
    const WideAmount numerator = static_cast<WideAmount>(m_index) * TicksPerSecond * 1000;
    m_next = static_cast<Ticks>((numerator + m_milliHertz - 1) / m_milliHertz);
}

} // namespace host

#include "host/core/simulation/SimulatedCamera.h"

#include "host/core/simulation/StallState.h"

#include <algorithm>
#include <limits>
#include <new>

namespace host {

namespace {

Ticks saturatingDeadline(Ticks now, std::chrono::milliseconds timeout)
{
    constexpr Ticks Latest = std::numeric_limits<Ticks>::max();
    const auto milliseconds = std::max<std::int64_t>(0, timeout.count());
    if (milliseconds > (Latest - now) / TicksPerMillisecond)
        return Latest;
    return now + milliseconds * TicksPerMillisecond;
}

std::size_t wordsFor(std::size_t bytes)
{
    return (bytes + sizeof(std::uint64_t) - 1) / sizeof(std::uint64_t);
}

} // namespace

SimulatedCamera::SimulatedCamera(CameraSettings settings, std::uint64_t seed, std::uint64_t cameraIndex,
                                 std::shared_ptr<Clock> clock)
    : m_settings(std::move(settings))
    , m_seed(seed)
    , m_index(cameraIndex)
    , m_link(m_settings, seed, cameraIndex)
    , m_clock(std::move(clock))
    , m_parameters(m_settings)
{
}

SimulatedCamera::~SimulatedCamera() = default;

DeviceInfo SimulatedCamera::info() const
{
    return {"simulated:" + m_settings.serial, m_settings.model, m_settings.serial, m_settings.name};
}

bool SimulatedCamera::isConnected() const
{
    const std::lock_guard lock(m_mutex);
    catchUp(m_clock->now());
    return m_plug != Plug::Out;
}

unsigned int SimulatedCamera::connectionCount() const
{
    const std::lock_guard lock(m_mutex);
    catchUp(m_clock->now());
    return m_connectionCount;
}

CameraDevice::Opening SimulatedCamera::open()
{
    const std::lock_guard lock(m_mutex);
    const Ticks now = m_clock->now();
    catchUp(now);
    if (m_plug == Plug::Out || m_open)
        return 0;
    m_open = true;
    if (!m_firstOpened)
        m_firstOpened = now;
    return ++m_opening;
}

void SimulatedCamera::close()
{
    const std::lock_guard lock(m_mutex);
    catchUp(m_clock->now());
    endStream();
    m_open = false;
    ++m_endCount;
    wakeCaptures();
}

std::vector<ParameterDescription> SimulatedCamera::parameters() const
{
    const std::lock_guard lock(m_mutex);
    if (!isUsable())
        return {};
    return m_parameters.describe();
}

bool SimulatedCamera::readParameter(std::string_view name, std::int64_t &value)
{
    const std::lock_guard lock(m_mutex);
    return isUsable() && m_parameters.read(name, counterLedger(), value);
}

bool SimulatedCamera::readMaximum(std::string_view name, std::int64_t &value)
{
    const std::lock_guard lock(m_mutex);
    return isUsable() && m_parameters.readMaximum(name, value);
}

bool SimulatedCamera::writeParameter(std::string_view name, std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    return isUsable() && m_parameters.write(name, value, m_stream != nullptr);
}

bool SimulatedCamera::isSettable(std::string_view name, std::int64_t value)
{
    const std::lock_guard lock(m_mutex);
    return isUsable() && m_parameters.isSettable(name, value, m_stream != nullptr);
}

bool SimulatedCamera::startAcquisition()
{
    const std::lock_guard lock(m_mutex);
    if (!isUsable() || m_stream)
        return false;
    try {
        const Ticks start = m_clock->now();
        auto stream = std::make_unique<Stream>(streamSettings(start), m_link);
        if (!allocateBuffer(stream->frameBytes()))
            return false;
        m_stream = std::move(stream);
        m_streamStart = start;
    } catch (const std::bad_alloc &) {
        return false;
    }
    wakeCaptures();
    return true;
}

bool SimulatedCamera::stopAcquisition()
{
    const std::lock_guard lock(m_mutex);
    if (!isUsable() || !m_stream)
        return false;
    endStream();
    ++m_endCount;
    wakeCaptures();
    return true;
}

bool SimulatedCamera::captureImage(Opening opening, std::chrono::milliseconds timeout, ZU_IMG &image)
{
    std::unique_lock lock(m_mutex);
    const Ticks deadline = saturatingDeadline(m_clock->now(), timeout);
    const std::uint64_t endCount = m_endCount;
    for (;;) {
        const Ticks now = m_clock->now();
        catchUp(now);
        if (m_endCount != endCount || m_opening != opening)
            return false;
        Ticks wake = deadline;
        const Ticks taken = pauseEnd(now);
        if (m_stream && taken > now) {
            wake = std::min(taken, deadline);
        } else if (m_stream) {
            const bool newest = m_parameters.value(ParameterId::RecentFrame) != 0;
            const auto fetched = m_stream->fetch(newest, {m_buffer.get(), m_bufferWords}, image);
            if (fetched != Stream::Fetch::Empty)
                return fetched == Stream::Fetch::Delivered;
            wake = m_streamStart + m_stream->nextArrival(deadline - m_streamStart);
        }
        if (now >= deadline)
            return false;
        const std::uint64_t seen = m_clock->raiseCount(m_interrupt);
        lock.unlock();
        const Clock::WaitEnd end = m_clock->waitUntil(wake, m_interrupt, seen);
        lock.lock();
        if (end == Clock::WaitEnd::Released)
            return false;
    }
}

Ledger SimulatedCamera::ledger() const
{
    const std::lock_guard lock(m_mutex);
    catchUp(m_clock->now());
    return currentLedger();
}

Ticks SimulatedCamera::acquisitionStart() const
{
    const std::lock_guard lock(m_mutex);
    return m_streamStart;
}

bool SimulatedCamera::isUsable() const
{
    catchUp(m_clock->now());
    return m_open;
}

Ticks SimulatedCamera::pauseEnd(Ticks now) const
{
    if (!m_stream)
        return now;
    Ticks end = now;
    for (const StallSettings &pause : m_settings.faults.hostPauses) {
        const StallState state = stallAt(pause, now - m_streamStart);
        if (state.active)
            end = std::max(end, m_streamStart + state.until);
    }
    return end;
}

void SimulatedCamera::catchUp(Ticks now) const
{
    unplugIfDue(now);
    if (m_stream)
        m_stream->advanceTo(now - m_streamStart);
}

void SimulatedCamera::unplugIfDue(Ticks now) const
{
    if (!m_settings.faults.unplug || !m_firstOpened)
        return;
    const UnplugSettings &unplug = *m_settings.faults.unplug;
    const Ticks out = *m_firstOpened + unplug.after;
    if (m_plug == Plug::In && now >= out) {
        if (m_stream)
            m_stream->advanceTo(out - m_streamStart);
        endStream();
        m_open = false;
        m_plug = Plug::Out;
    }
    if (m_plug == Plug::Out && unplug.backAfter && now >= *m_firstOpened + *unplug.backAfter) {
        m_plug = Plug::BackIn;
        ++m_connectionCount;
        m_parameters.reset();
        m_countersCleared = true;
        m_stampOrigin = *m_firstOpened + *unplug.backAfter;
    }
}

void SimulatedCamera::endStream() const
{
    if (!m_stream)
        return;
    m_lastLedger = m_stream->ledger();
    m_countersCleared = false;
    m_stream.reset();
}

void SimulatedCamera::wakeCaptures()
{
    m_clock->raise(m_interrupt);
}

bool SimulatedCamera::allocateBuffer(std::size_t bytes)
{
    const std::size_t words = wordsFor(bytes);
    if (words > m_bufferWords) {
        m_bufferWords = 0;
        m_buffer.reset();
        // Not zeroed: that would cost as much as a frame.
        m_buffer.reset(new (std::nothrow) std::uint64_t[words]);
        if (!m_buffer)
            return false;
        m_bufferWords = words;
    }
    return true;
}

StreamSettings SimulatedCamera::streamSettings(Ticks start)
{
    if (m_parameters.takeTimestampReset())
        m_stampOrigin = start;
    const auto value = [this](ParameterId id) { return static_cast<int>(m_parameters.value(id)); };
    StreamSettings settings;
    settings.seed = m_seed;
    settings.cameraIndex = m_index;
    settings.format = m_parameters.format();
    settings.width = value(ParameterId::Width);
    settings.height = value(ParameterId::Height);
    settings.bitDepth = value(ParameterId::OutputBitDepth);
    settings.packed = value(ParameterId::OutputBitPacking) != 0;
    settings.counterPattern = m_parameters.isCounterPattern();
    settings.content = m_parameters.pictureContent();
    settings.frameRate = m_settings.frameRate;
    settings.readoutRate = bytesPerSecond(m_settings.requiredMBps);
    settings.bufferBytes = m_settings.internalBufferBytes;
    settings.queueSize = static_cast<std::size_t>(value(ParameterId::BuffersQueueSize));
    settings.transportLoss = m_settings.faults.transportLoss;
    settings.captureFailureEvery = m_settings.faults.captureFailureEvery;
    settings.stampOffset = start - m_stampOrigin;
    return settings;
}

const Ledger &SimulatedCamera::counterLedger() const
{
    static const Ledger empty;
    return !m_stream && m_countersCleared ? empty : currentLedger();
}

const Ledger &SimulatedCamera::currentLedger() const
{
    return m_stream ? m_stream->ledger() : m_lastLedger;
}

} // namespace host

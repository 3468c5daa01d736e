#include "host/core/simulation/CameraParameterSet.h"

#include "host/core/simulation/LinkModel.h"
#include "host/core/simulation/ParameterTable.h"

#include <algorithm>
#include <cmath>

namespace host {

namespace {

constexpr std::int64_t TransportRegisterMaximum = 65535;
constexpr std::int64_t CounterMaximum = 0x7fffffff; // read as a 32-bit integer

void makeReadOnly(ParameterDescription &description, std::int64_t value)
{
    description.writable = false;
    description.minimum = value;
    description.maximum = value;
}

bool isAllowed(const ParameterDescription &description, std::int64_t value)
{
    if (!description.writable)
        return false;
    if (description.choices.empty())
        return value >= description.minimum && value <= description.maximum;
    return std::ranges::any_of(description.choices,
                               [value](const ParameterChoice &choice) { return choice.value == value; });
}

template <typename Range, typename Value> bool contains(const Range &range, const Value &value)
{
    return std::ranges::find(range, value) != std::ranges::end(range);
}

} // namespace

CameraParameterSet::CameraParameterSet(const CameraSettings &settings)
    : m_settings(settings)
{
    reset();
}

void CameraParameterSet::reset()
{
    for (std::size_t i = 0; i < m_values.size(); ++i)
        m_values[i] = parameterTableEntry(static_cast<ParameterId>(i)).initial;
    store(ParameterId::Width, m_settings.width);
    store(ParameterId::Height, m_settings.height);
    store(ParameterId::BuffersQueueSize,
          std::min<std::int64_t>(value(ParameterId::BuffersQueueSize), m_settings.buffersQueueMax));
    m_patterns.fill(0);
    m_frameBufferMode = ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED;
    m_transportRegister = ZU_DEVICE_REG_TRANSPORT_DEFAULT;
    m_timestampResetArmed = false;
}

std::vector<ParameterDescription> CameraParameterSet::describe() const
{
    std::vector<ParameterDescription> descriptions;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const auto id = static_cast<ParameterId>(i);
        if (!find(parameterTableEntry(id).name))
            continue;
        if (auto description = describe(id))
            descriptions.push_back(std::move(*description));
    }
    return descriptions;
}

bool CameraParameterSet::read(std::string_view name, const Ledger &ledger, std::int64_t &value) const
{
    const auto id = find(name);
    if (!id || !describe(*id))
        return false;
    const std::int64_t stored = storedValue(*id, ledger);
    if (fails(name, Access::Read, stored))
        return false;
    value = stored;
    return true;
}

bool CameraParameterSet::readMaximum(std::string_view name, std::int64_t &value) const
{
    const auto id = find(name);
    if (!id)
        return false;
    const auto description = describe(*id);
    if (!description)
        return false;
    std::int64_t maximum = description->maximum;
    if (!description->choices.empty())
        maximum = std::ranges::max(description->choices, {}, &ParameterChoice::value).value;
    if (fails(name, Access::Maximum, maximum))
        return false;
    value = maximum;
    return true;
}

bool CameraParameterSet::isSettable(std::string_view name, std::int64_t value, bool streaming) const
{
    const auto id = find(name);
    if (!id || (streaming && parameterTableEntry(*id).lockedWhileStreaming))
        return false;
    const auto description = describe(*id);
    return description && isAllowed(*description, value) && !fails(name, Access::Write, value);
}

bool CameraParameterSet::write(std::string_view name, std::int64_t value, bool streaming)
{
    if (!isSettable(name, value, streaming))
        return false;
    store(*find(name), value);
    return true;
}

bool CameraParameterSet::isCounterPattern() const
{
    return format() == ImageFormat::TransportData &&
           m_patterns[ZU_TESTPAT_GEN_FPGA] == ZU_TESTPAT_DEVICE_SPEC_COUNTER;
}

PictureContent CameraParameterSet::pictureContent() const
{
    // The later generator in the data's way covers the earlier one.
    for (const int generator : {ZU_TESTPAT_GEN_FPGA, 0}) {
        if (m_patterns[generator] == 1)
            return PictureContent::Black;
        if (m_patterns[generator] == 2)
            return PictureContent::White;
    }
    return PictureContent::Moving;
}

bool CameraParameterSet::takeTimestampReset()
{
    if (value(ParameterId::TimestampResetSource) != ZU_TS_RST_SOURCE_ACQUISITION)
        return false;
    if (value(ParameterId::TimestampResetMode) != ZU_TS_RST_MODE_ONCE)
        return true;
    return std::exchange(m_timestampResetArmed, false);
}

std::optional<ParameterId> CameraParameterSet::find(std::string_view name) const
{
    if (contains(m_settings.faults.missingParameters, name))
        return std::nullopt;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const auto id = static_cast<ParameterId>(i);
        if (name == parameterTableEntry(id).name)
            return id;
    }
    return std::nullopt;
}

std::optional<ParameterDescription> CameraParameterSet::describe(ParameterId id) const
{
    const ParameterTableEntry &entry = parameterTableEntry(id);
    ParameterDescription description{entry.name,    entry.group, entry.unit, entry.minimum,
                                     entry.maximum, true,        {}};
    for (const auto &[name, choice] : entry.choices)
        description.choices.push_back({name, choice});
    if (!describeSelected(id, description))
        return std::nullopt;
    return description;
}

/// Fills in what depends on the camera and its selectors; false when they
/// point at nothing.
bool CameraParameterSet::describeSelected(ParameterId id, ParameterDescription &description) const
{
    const auto drop = [&description](auto isUnwanted) {
        std::erase_if(description.choices,
                      [&](const ParameterChoice &choice) { return isUnwanted(choice.value); });
    };
    switch (id) {
    case ParameterId::Width:
        description.maximum = m_settings.width;
        return true;
    case ParameterId::Height:
        description.maximum = m_settings.height;
        return true;
    case ParameterId::BuffersQueueSize:
        description.maximum = m_settings.buffersQueueMax;
        return true;
    case ParameterId::TestPattern:
        if (value(ParameterId::TestPatternGeneratorSelector) != ZU_TESTPAT_GEN_FPGA)
            drop([](std::int64_t pattern) { return pattern == ZU_TESTPAT_DEVICE_SPEC_COUNTER; });
        return true;
    case ParameterId::DpUnitSelector:
        if (isMissing(FaultSettings::Unit::FrameBuffer))
            drop([](std::int64_t unit) { return unit == ZU_DP_UNIT_FRAMEBUF; });
        return true;
    case ParameterId::DeviceUnitSelector:
        drop([this](std::int64_t unit) {
            return (unit == ZU_DEVICE_UNIT_TRANSPORT && isMissing(FaultSettings::Unit::Transport)) ||
                   (unit == ZU_DEVICE_UNIT_SPEED && isMissing(FaultSettings::Unit::Speed));
        });
        return true;
    case ParameterId::CounterSelector:
        drop([this](std::int64_t counter) {
            return contains(m_settings.faults.unsupportedCounters, static_cast<int>(counter));
        });
        return true;
    case ParameterId::CounterValue:
        description.writable = false;
        return !contains(m_settings.faults.unsupportedCounters,
                         static_cast<int>(value(ParameterId::CounterSelector)));
    case ParameterId::DpParamValue:
        return describeProcessing(description);
    case ParameterId::DeviceUnitRegisterValue:
        return describeRegister(description);
    default:
        return true;
    }
}

bool CameraParameterSet::describeProcessing(ParameterDescription &description) const
{
    if (value(ParameterId::DpUnitSelector) != ZU_DP_UNIT_FRAMEBUF ||
        value(ParameterId::DpProcSelector) != ZU_DP_PROC_FRAMEBUF)
        return false;
    switch (value(ParameterId::DpParamSelector)) {
    case ZU_DP_PARAM_FRAMEBUF_MODE:
        description.choices = {{"Disabled", ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_DISABLED},
                               {"Enabled", ZU_DP_PARAM_VALUE_FRAMEBUF_MODE_ENABLED}};
        return true;
    case ZU_DP_PARAM_FRAMEBUF_SIZE:
        description.unit = std::string("B");
        makeReadOnly(description, m_settings.internalBufferBytes);
        return true;
    default:
        return false;
    }
}

bool CameraParameterSet::describeRegister(ParameterDescription &description) const
{
    const RegisterAddress address{value(ParameterId::DeviceUnitSelector),
                                  value(ParameterId::DeviceUnitRegisterSelector)};
    if (contains(m_settings.faults.missingRegisters, address))
        return false;
    if (address == RegisterAddress{ZU_DEVICE_UNIT_TRANSPORT, ZU_DEVICE_REG_TRANSPORT}) {
        description.maximum = TransportRegisterMaximum;
        return true;
    }
    if (address == RegisterAddress{ZU_DEVICE_UNIT_SPEED, ZU_DEVICE_REG_AVG_SPEED}) {
        description.unit = std::string("MB/s");
        makeReadOnly(description, std::llround(m_settings.requiredMBps));
        return true;
    }
    return false;
}

/// Only for a parameter that describe() knows.
std::int64_t CameraParameterSet::storedValue(ParameterId id, const Ledger &ledger) const
{
    switch (id) {
    case ParameterId::TestPattern:
        return m_patterns[static_cast<std::size_t>(value(ParameterId::TestPatternGeneratorSelector))];
    case ParameterId::DpParamValue:
        return value(ParameterId::DpParamSelector) == ZU_DP_PARAM_FRAMEBUF_MODE
                   ? m_frameBufferMode
                   : m_settings.internalBufferBytes;
    case ParameterId::DeviceUnitRegisterValue:
        return value(ParameterId::DeviceUnitSelector) == ZU_DEVICE_UNIT_TRANSPORT
                   ? m_transportRegister
                   : std::llround(m_settings.requiredMBps);
    case ParameterId::CounterValue:
        return std::min(CounterMaximum, ledger.counter(static_cast<ZU_COUNTER_SELECTOR>(
                                            value(ParameterId::CounterSelector))));
    default:
        return value(id);
    }
}

void CameraParameterSet::store(ParameterId id, std::int64_t value)
{
    switch (id) {
    case ParameterId::TestPattern:
        m_patterns[static_cast<std::size_t>(this->value(ParameterId::TestPatternGeneratorSelector))] = value;
        return;
    case ParameterId::DpParamValue:
        m_frameBufferMode = value;
        return;
    case ParameterId::DeviceUnitRegisterValue:
        m_transportRegister = value;
        return;
    case ParameterId::TimestampResetMode:
    case ParameterId::TimestampResetSource:
        m_timestampResetArmed = true;
        break;
    default:
        break;
    }
    m_values[static_cast<std::size_t>(id)] = value;
}

bool CameraParameterSet::fails(std::string_view name, Access access, std::int64_t value) const
{
    return std::ranges::any_of(m_settings.faults.failingParameters, [&](const FailingParameter &failing) {
        const bool matches =
            failing.access == access || (failing.access == Access::Both && access != Access::Maximum);
        return matches && failing.name == name && (!failing.value || *failing.value == value);
    });
}

bool CameraParameterSet::isMissing(FaultSettings::Unit unit) const
{
    return contains(m_settings.faults.missingUnits, unit);
}

} // namespace host

#pragma once

#include "host/core/CameraDevice.h"
#include "host/core/simulation/ImageFormat.h"
#include "host/core/simulation/Ledger.h"
#include "host/core/simulation/PicturePattern.h"
#include "host/core/simulation/Scenario.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace host {

/// All parameters that a simulated camera can have, in the order in which they
/// are shown.
enum class ParameterId {
    ImageDataFormat,
    Width,
    Height,
    OutputBitDepth,
    OutputBitPacking,
    BufferPolicy,
    RecentFrame,
    BuffersQueueSize,
    ColumnFpnCorrection,
    RowFpnCorrection,
    LutEnable,
    TestPatternGeneratorSelector,
    TestPattern,
    TimestampResetMode,
    TimestampResetSource,
    DpUnitSelector,
    DpProcSelector,
    DpParamSelector,
    DpParamValue,
    DeviceUnitSelector,
    DeviceUnitRegisterSelector,
    DeviceUnitRegisterValue,
    CounterSelector,
    CounterValue,
    Count,
};

/// Whether a camera can have a parameter of that name.
bool isParameterName(std::string_view name);

/// The parameters of one simulated camera with their values and faults. What a
/// selector points at keeps its own value. Not thread-safe: its camera locks.
class CameraParameterSet
{
public:
    explicit CameraParameterSet(const CameraSettings &settings);

    /// All values as after switching on.
    void reset();

    std::vector<ParameterDescription> describe() const;

    /// \param ledger what "counter_value" reports
    bool read(std::string_view name, const Ledger &ledger, std::int64_t &value) const;
    bool readMaximum(std::string_view name, std::int64_t &value) const;
    bool write(std::string_view name, std::int64_t value, bool streaming);
    bool isSettable(std::string_view name, std::int64_t value, bool streaming) const;

    /// The stored value, whatever the faults say.
    std::int64_t value(ParameterId id) const { return m_values[static_cast<std::size_t>(id)]; }

    ImageFormat format() const { return static_cast<ImageFormat>(value(ParameterId::ImageDataFormat)); }
    bool isCounterPattern() const;
    PictureContent pictureContent() const;

    /// Whether the acquisition that starts now restarts the time stamp.
    bool takeTimestampReset();

private:
    using Access = FailingParameter::Access;

    /// Nothing for a parameter that this camera lacks.
    std::optional<ParameterId> find(std::string_view name) const;
    /// Nothing where the selectors point at nothing.
    std::optional<ParameterDescription> describe(ParameterId id) const;
    bool describeSelected(ParameterId id, ParameterDescription &description) const;
    bool describeRegister(ParameterDescription &description) const;
    bool describeProcessing(ParameterDescription &description) const;
    std::int64_t storedValue(ParameterId id, const Ledger &ledger) const;
    void store(ParameterId id, std::int64_t value);
    bool fails(std::string_view name, Access access, std::int64_t value) const;
    bool isMissing(FaultSettings::Unit unit) const;

    const CameraSettings &m_settings;
    std::array<std::int64_t, static_cast<std::size_t>(ParameterId::Count)> m_values{};
    std::array<std::int64_t, 2> m_patterns{}; ///< of each generator
    std::int64_t m_frameBufferMode = 0;
    std::int64_t m_transportRegister = 0;
    bool m_timestampResetArmed = false;
};

} // namespace host

#pragma once

#include "host/core/simulation/Ticks.h"
#include "zuCore/ZuCoreGlobal.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A reduction of the link's rate that lasts `length` and, with a period above
/// 0, returns. All times count from the start of the acquisition.
struct StallSettings
{
    Ticks start = 0;
    Ticks period = 0; ///< 0: once
    Ticks length = 0;
    double depth = 1.0; ///< share of the rate that is missing; 1: the link stands still
};

/// Random change of the link's rate: in each slot of time the rate is the
/// nominal one times 1 ± at most `fraction`.
struct JitterSettings
{
    double fraction = 0.0;
    Ticks slot = TicksPerMillisecond;
};

/// A parameter that refuses although the camera has it.
struct FailingParameter
{
    enum class Access { Read, Write, Both, Maximum };

    std::string name;
    Access access = Access::Both;
    /// Set: fails only for this value, written or (when reading) stored.
    std::optional<std::int64_t> value;
};

struct RegisterAddress
{
    std::int64_t unit = 0;
    std::int64_t address = 0;

    friend bool operator==(const RegisterAddress &, const RegisterAddress &) = default;
};

/// When the cable is pulled; counted from the camera's first opening.
struct UnplugSettings
{
    Ticks after = 0;
    std::optional<Ticks> backAfter; ///< not set: it stays away
};

struct FaultSettings
{
    /// Parts of a camera that simpler models lack: their selector refuses.
    enum class Unit { FrameBuffer, Transport, Speed };

    std::vector<FailingParameter> failingParameters;
    std::vector<std::string> missingParameters;
    std::vector<Unit> missingUnits;
    std::vector<RegisterAddress> missingRegisters; ///< selectable, but without a value
    std::vector<int> unsupportedCounters;          ///< ZU_COUNTER_SELECTOR values
    double transportLoss = 0.0;                    ///< share of the frames lost between camera and host
    /// Times at which the busy host takes no frame, however many wait; the depth
    /// does not matter.
    std::vector<StallSettings> hostPauses;
    int captureFailureEvery = 0; ///< every n-th frame is damaged when fetched; 0: none
    std::optional<UnplugSettings> unplug;
};

/// One simulated camera. MB are 1 000 000 bytes.
struct CameraSettings
{
    std::string name; ///< the user id
    std::string model = "Simulated camera";
    std::string serial; ///< unique in the scenario
    int width = 2048;   ///< of the sensor, pixels
    int height = 2048;
    double frameRate = 40.0;     ///< triggers a second, kept to 0.001 Hz
    double requiredMBps = 360.0; ///< rate of the sensor's readout
    std::int64_t internalBufferBytes = std::int64_t{64} * 1024 * 1024;
    double linkMBps = 400.0;
    JitterSettings jitter;
    std::vector<StallSettings> stalls;
    int buffersQueueMax = 64; ///< frames the host can hold
    FaultSettings faults;
};

struct Scenario
{
    std::uint64_t seed = 1;
    std::vector<CameraSettings> cameras;
};

/// A scenario, or why there is none.
struct ScenarioResult
{
    std::optional<Scenario> scenario;
    std::string error; ///< "FILE:LINE:COLUMN: message"
};

/// Largest frame the simulation allocates, in bytes.
inline constexpr std::int64_t MaxFrameBytes = std::int64_t{1} << 30;

/// Reads a scenario file. Never throws; the size of the file, the number of
/// cameras and all sizes they ask for are bounded.
ZUCORE_EXPORT ScenarioResult loadScenario(const std::string &path);

/// The same for a text that is in memory already.
ZUCORE_EXPORT ScenarioResult parseScenario(std::string_view text, const std::string &fileName);

/// Names of the scenarios that come with the library.
ZUCORE_EXPORT std::vector<std::string> builtinScenarioNames();
ZUCORE_EXPORT ScenarioResult builtinScenario(const std::string &name);

/// A scenario that comes with the library or, when none has that name, a file.
ZUCORE_EXPORT ScenarioResult findScenario(const std::string &nameOrPath);

/// Cameras to try the program with: the first has a link that is faster than
/// it needs, the second the same with short stalls, then variants. At most 64.
ZUCORE_EXPORT Scenario defaultScenario(int cameraCount);

} // namespace host

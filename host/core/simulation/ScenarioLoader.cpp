#include "host/core/simulation/CameraParameterSet.h"
#include "host/core/simulation/ScenarioSchema.h"

#include <cerrno>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>

namespace host {

namespace {

using nlohmann::json;

constexpr std::size_t MaxFileBytes = std::size_t{1024} * 1024;
constexpr std::size_t MaxMessageBytes = 400;
constexpr std::size_t MaxPointerBytes = 200;
// Shorter ones would make the arithmetic of a frame arbitrarily long.
constexpr Ticks MinJitterSlot = 10 * TicksPerMicrosecond;
constexpr Ticks MinStallPeriod = 100 * TicksPerMicrosecond;

Ticks ticksAt(const json &object, const char *key)
{
    return std::llround(object.value(key, 0.0) * static_cast<double>(TicksPerMillisecond));
}

/// Turns a document that conforms to the schema into a scenario and checks
/// what a schema cannot express. Stops at the first problem.
class ScenarioReader
{
public:
    explicit ScenarioReader(const json &document)
        : m_document(document)
    {
    }

    std::optional<ScenarioProblem> problem;

    Scenario read()
    {
        Scenario scenario;
        scenario.seed = m_document.value("seed", std::uint64_t{1});
        const json &cameras = m_document.at("cameras");
        for (std::size_t i = 0; i < cameras.size(); ++i)
            scenario.cameras.push_back(readCamera(cameras[i], "/cameras/" + std::to_string(i)));
        return scenario;
    }

private:
    void report(const std::string &pointer, const std::string &message)
    {
        if (!problem)
            problem = ScenarioProblem{pointer, message, false};
    }

    CameraSettings readCamera(const json &camera, const std::string &pointer)
    {
        CameraSettings settings;
        settings.serial = camera.at("serial").get<std::string>();
        settings.model = camera.value("model", settings.model);
        settings.name = camera.value("name", settings.name);
        settings.width = camera.at("width").get<int>();
        settings.height = camera.at("height").get<int>();
        settings.frameRate = camera.at("frame_rate").get<double>();
        settings.requiredMBps = camera.at("required_MBps").get<double>();
        settings.internalBufferBytes = camera.at("internal_buffer_bytes").get<std::int64_t>();
        settings.linkMBps = camera.at("link_MBps").get<double>();
        settings.buffersQueueMax = camera.value("buffers_queue_max", settings.buffersQueueMax);
        if (!m_serials.insert(settings.serial).second)
            report(pointer + "/serial", "another camera has the serial number " + inQuotes(settings.serial));
        if (std::int64_t{settings.width} * settings.height > MaxFrameBytes / MaxBytesPerPixel)
            report(pointer + "/width", "a frame of width x height pixels would not fit into " +
                                           std::to_string(MaxFrameBytes) + " bytes");
        if (camera.contains("jitter"))
            settings.jitter = readJitter(camera.at("jitter"), pointer + "/jitter");
        if (camera.contains("stalls"))
            settings.stalls = readStalls(camera.at("stalls"), pointer + "/stalls");
        if (camera.contains("faults"))
            settings.faults = readFaults(camera.at("faults"), pointer + "/faults");
        return settings;
    }

    JitterSettings readJitter(const json &jitter, const std::string &pointer)
    {
        const JitterSettings settings{jitter.at("fraction").get<double>(), ticksAt(jitter, "slot_ms")};
        if (settings.slot < MinJitterSlot)
            report(pointer + "/slot_ms", "a slot must last at least 0.01 ms");
        return settings;
    }

    std::vector<StallSettings> readStalls(const json &stalls, const std::string &pointer)
    {
        std::vector<StallSettings> settings;
        for (std::size_t i = 0; i < stalls.size(); ++i)
            settings.push_back(readStall(stalls[i], pointer + "/" + std::to_string(i)));
        return settings;
    }

    StallSettings readStall(const json &stall, const std::string &pointer)
    {
        const StallSettings settings{ticksAt(stall, "start_ms"), ticksAt(stall, "period_ms"),
                                     ticksAt(stall, "length_ms"), stall.value("depth", 1.0)};
        if (stall.value("period_ms", 0.0) > 0.0 && settings.period < MinStallPeriod)
            report(pointer + "/period_ms", "a period must last at least 0.1 ms");
        else if (settings.period > 0 && settings.length > settings.period)
            report(pointer + "/length_ms", "a stall cannot last longer than its period");
        return settings;
    }

    FaultSettings readFaults(const json &faults, const std::string &pointer)
    {
        FaultSettings settings;
        settings.transportLoss = faults.value("transport_loss", 0.0);
        if (faults.contains("host_pauses"))
            settings.hostPauses = readStalls(faults.at("host_pauses"), pointer + "/host_pauses");
        settings.captureFailureEvery = faults.value("capture_failure_every", 0);
        settings.unsupportedCounters = faults.value("unsupported_counters", std::vector<int>{});
        settings.missingParameters = faults.value("missing_parameters", std::vector<std::string>{});
        for (std::size_t i = 0; i < settings.missingParameters.size(); ++i)
            checkName(settings.missingParameters[i], pointer + "/missing_parameters/" + std::to_string(i));
        for (const json &unit : faults.value("missing_units", json::array()))
            settings.missingUnits.push_back(unitByName(unit.get<std::string>()));
        for (const json &entry : faults.value("missing_registers", json::array()))
            settings.missingRegisters.push_back(
                {entry.at("unit").get<std::int64_t>(), entry.at("register").get<std::int64_t>()});
        const json failing = faults.value("failing_parameters", json::array());
        for (std::size_t i = 0; i < failing.size(); ++i)
            settings.failingParameters.push_back(
                readFailing(failing[i], pointer + "/failing_parameters/" + std::to_string(i)));
        if (faults.contains("unplug"))
            settings.unplug = readUnplug(faults.at("unplug"), pointer + "/unplug");
        return settings;
    }

    FailingParameter readFailing(const json &failing, const std::string &pointer)
    {
        FailingParameter parameter;
        parameter.name = failing.at("name").get<std::string>();
        checkName(parameter.name, pointer + "/name");
        const std::string access = failing.value("access", std::string("both"));
        if (access == "read")
            parameter.access = FailingParameter::Access::Read;
        else if (access == "write")
            parameter.access = FailingParameter::Access::Write;
        else if (access == "maximum")
            parameter.access = FailingParameter::Access::Maximum;
        if (failing.contains("value"))
            parameter.value = failing.at("value").get<std::int64_t>();
        return parameter;
    }

    UnplugSettings readUnplug(const json &unplug, const std::string &pointer)
    {
        UnplugSettings settings{ticksAt(unplug, "after_ms"), std::nullopt};
        if (unplug.contains("back_after_ms")) {
            settings.backAfter = ticksAt(unplug, "back_after_ms");
            if (*settings.backAfter <= settings.after)
                report(pointer + "/back_after_ms", "a camera cannot come back before it went");
        }
        return settings;
    }

    void checkName(const std::string &name, const std::string &pointer)
    {
        if (!isParameterName(name))
            report(pointer, "there is no parameter " + inQuotes(name));
    }

    static FaultSettings::Unit unitByName(const std::string &name)
    {
        if (name == "transport")
            return FaultSettings::Unit::Transport;
        return name == "speed" ? FaultSettings::Unit::Speed : FaultSettings::Unit::FrameBuffer;
    }

    const json &m_document;
    std::set<std::string> m_serials;
};

ScenarioResult failure(const std::string &fileName, TextPosition position, const std::string &message)
{
    return {std::nullopt, fileName + ":" + std::to_string(position.line) + ":" +
                              std::to_string(position.column) + ": " + printable(message, MaxMessageBytes)};
}

ScenarioResult failure(const std::string &fileName, std::string_view text, const JsonPositions &positions,
                       const ScenarioProblem &problem)
{
    const auto key = positions.keys.find(problem.pointer);
    const std::size_t offset =
        problem.atKey && key != positions.keys.end() ? key->second : positions.find(problem.pointer);
    const std::string place =
        problem.pointer.empty() ? "the document" : printable(problem.pointer, MaxPointerBytes);
    return failure(fileName, textPosition(text, offset), place + ": " + problem.message);
}

} // namespace

ScenarioResult parseScenario(std::string_view text, const std::string &fileName)
{
    if (text.size() > MaxFileBytes)
        return failure(fileName, {}, "larger than " + std::to_string(MaxFileBytes) + " bytes");
    const JsonPositions positions = locateJson(text);
    if (positions.problem)
        return failure(fileName, textPosition(text, positions.problem->offset), positions.problem->message);
    const json document = json::parse(text);
    if (const auto problem = validateScenarioDocument(document))
        return failure(fileName, text, positions, *problem);
    ScenarioReader reader(document);
    Scenario scenario = reader.read();
    if (reader.problem)
        return failure(fileName, text, positions, *reader.problem);
    return {std::move(scenario), {}};
}

ScenarioResult loadScenario(const std::string &path)
{
    // Reading a pipe or a device might never end.
    std::error_code ignored;
    const std::filesystem::file_status status = std::filesystem::status(path, ignored);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        return failure(path, {}, "cannot be read: not a regular file");
    std::ifstream file(path, std::ios::binary);
    std::string text(MaxFileBytes + 1, '\0');
    if (file)
        file.read(text.data(), static_cast<std::streamsize>(text.size()));
    if (!file.is_open() || file.bad())
        return failure(path, {}, std::string("cannot be read: ") + std::strerror(errno));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return parseScenario(text, path);
}

} // namespace host

#include "host/core/simulation/Scenario.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace host {

namespace {

constexpr int MaxCameras = 64;

QString scenarioFolder()
{
    return QStringLiteral(":/velmora/simulation/scenarios");
}

/// The variants after the first two cameras, over and over.
void vary(CameraSettings &camera, int index)
{
    switch (index % 6) {
    case 0:
        break;
    case 1:
        camera.name = "Short stalls";
        camera.stalls = {{4 * TicksPerMillisecond, 250 * TicksPerMillisecond, 6 * TicksPerMillisecond, 1.0}};
        camera.internalBufferBytes = std::int64_t{8} * 1024 * 1024;
        break;
    case 2:
        camera.name = "Slow link";
        camera.linkMBps = 300.0;
        break;
    case 3:
        camera.name = "Jitter";
        camera.jitter = {0.1, TicksPerMillisecond / 2};
        break;
    case 4:
        camera.name = "Lossy transport";
        camera.faults.transportLoss = 0.02;
        break;
    case 5:
        camera.name = "Full buffer";
        camera.linkMBps = 150.0;
        camera.internalBufferBytes = std::int64_t{16} * 1024 * 1024;
        break;
    }
}

} // namespace

std::vector<std::string> builtinScenarioNames()
{
    std::vector<std::string> names;
    for (const QString &file : QDir(scenarioFolder()).entryList(QDir::Files, QDir::Name))
        names.push_back(file.chopped(QLatin1String(".json").size()).toStdString());
    return names;
}

ScenarioResult builtinScenario(const std::string &name)
{
    const std::vector<std::string> names = builtinScenarioNames();
    if (std::ranges::find(names, name) == names.end())
        return {std::nullopt, name + ":1:1: there is no scenario of that name"};
    QFile file(scenarioFolder() + QLatin1Char('/') + QString::fromStdString(name) + QLatin1String(".json"));
    if (!file.open(QIODevice::ReadOnly))
        return {std::nullopt, name + ":1:1: cannot be read"};
    return parseScenario(file.readAll().toStdString(), name);
}

ScenarioResult findScenario(const std::string &nameOrPath)
{
    const std::vector<std::string> names = builtinScenarioNames();
    if (std::ranges::find(names, nameOrPath) != names.end())
        return builtinScenario(nameOrPath);
    return loadScenario(nameOrPath);
}

Scenario defaultScenario(int cameraCount)
{
    Scenario scenario;
    for (int i = 0; i < std::clamp(cameraCount, 0, MaxCameras); ++i) {
        CameraSettings camera;
        camera.name = "Steady link";
        camera.serial = "SIM-" + std::to_string(1001 + i);
        vary(camera, i);
        scenario.cameras.push_back(std::move(camera));
    }
    return scenario;
}

} // namespace host

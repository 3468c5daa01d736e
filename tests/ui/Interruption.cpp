#include "tests/ui/Interruption.h"

#include <utility>

namespace rig {

const char *const situationNames[SituationCount] = {"start",    "stop",    "start all",
                                                    "stop all", "failure", "failure of all"};

void refuse(MeasuringCameras &cameras, int camera)
{
    cameras.host.fail({scripted::Function::SetParamInt, "test_pattern", 11, cameras[camera]});
}

void prepare(MeasuringCameras &cameras, int situation)
{
    if (situation == Stop)
        cameras.clickMeasure(Beta);
    if (situation == StopAll)
        cameras.clickStartAll();
    if (situation == FailedStart || situation == FailedStartAll)
        refuse(cameras, Beta);
}

bool interrupt(MeasuringCameras &cameras, int situation, const std::function<void()> &event)
{
    const bool fails = situation == FailedStart || situation == FailedStartAll;
    bool hasHappened = false;
    const auto happen = [&] {
        if (!std::exchange(hasHappened, true))
            event();
    };
    if (fails)
        cameras.boxes.onModal = happen;
    Meanwhile meanwhile(fails ? "never shown" : "Beta", happen);
    if (situation == Start || situation == Stop || situation == FailedStart)
        cameras.clickMeasure(Beta);
    else
        cameras.clickStartAll();
    cameras.boxes.onModal = {};
    return hasHappened;
}

} // namespace rig

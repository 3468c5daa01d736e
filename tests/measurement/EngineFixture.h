#pragma once

#include "measurement/CameraLineData.h"
#include "tests/measurement/LogCapture.h"
#include "tests/scriptedhost/ScriptedHost.h"

#include <QStringList>

#include <functional>
#include <memory>

/// An engine on a scripted camera that has everything. Captures beyond those
/// that were delivered wait until the engine is asked to stop and then fail, so
/// that every run ends with exactly one failed capture.
class EngineFixture
{
public:
    EngineFixture();
    ~EngineFixture();

    /// Runs a measurement over that many frames of the image source.
    /// \return false when it does not start or end
    bool run(int frames, unsigned int interval, long long capacity);

    bool start(unsigned int interval = 512, long long capacity = 1000000);
    /// Delivers frames and waits until the engine has dealt with them.
    bool deliver(int frames);

    /// The camera functions called so far, as texts.
    QStringList calls() const;

    scripted::Host &host;
    ZUCORE_HANDLE camera;
    std::unique_ptr<CxCameraLineData> line;
    LogCapture log;
};

QStringList toStringList(const std::vector<std::string> &texts);

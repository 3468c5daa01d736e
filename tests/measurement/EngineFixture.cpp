#include "tests/measurement/EngineFixture.h"

EngineFixture::EngineFixture()
    : host(scripted::Host::instance())
{
    host.reset();
    camera = host.addCamera();
    line = std::make_unique<CxCameraLineData>();
    line->cameraHandle = camera;
    host.endCapturesWhen(camera, [engine = line.get()] { return engine->stopRequested.load(); });
}

EngineFixture::~EngineFixture()
{
    if (line)
        line->stopMeasurement();
}

bool EngineFixture::start(unsigned int interval, long long capacity)
{
    return line->startMeasurement(interval, capacity);
}

bool EngineFixture::deliver(int frames)
{
    host.deliver(camera, frames);
    return host.waitUntilStarved(camera);
}

bool EngineFixture::run(int frames, unsigned int interval, long long capacity)
{
    return start(interval, capacity) && deliver(frames) && line->stopMeasurement();
}

QStringList EngineFixture::calls() const
{
    return toStringList(host.cameraCalls());
}

QStringList toStringList(const std::vector<std::string> &texts)
{
    QStringList list;
    for (const std::string &text : texts)
        list.append(QString::fromStdString(text));
    return list;
}

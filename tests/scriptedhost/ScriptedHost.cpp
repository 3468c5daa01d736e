#include "tests/scriptedhost/ScriptedHostPrivate.h"

#include "zuCore/CxCameraManager.h"

#include <algorithm>

namespace scripted {

namespace {

using Values = std::map<std::string, long long>;

/// A camera that has every parameter of the contract, none of them at the value
/// that a measurement writes.
Values defaultValues()
{
    return {
        {"buffer_policy", 1},
        {"imgdataformat", 2},
        {"output_bit_depth", 8},
        {"output_bit_packing", 3},
        {"column_fpn_correction", 1},
        {"row_fpn_correction", 4},
        {"LUTEnable", 5},
        {"test_pattern_generator_selector", 6},
        {"test_pattern", 9},
        {"dp_unit_selector", 21},
        {"dp_proc_selector", 22},
        {"dp_param_selector", 23},
        {"dp_param_value[1,5,6]", 10},
        {"dp_param_value[1,5,7]", 67108864},
        {"device_unit_selector", 2},
        {"device_unit_register_selector", 77},
        {"device_unit_register_value[1,55]", 1},
        {"device_unit_register_value[8,4096]", 380},
        {"recent_frame", 1},
        {"buffers_queue_size", 14},
        {"buffers_queue_size:max", 64},
        {"counter_selector", 2},
        {"counter_value[0]", 0},
        {"counter_value[1]", 0},
        {"counter_value[2]", 0},
        {"counter_value[3]", 0},
        {"counter_value[4]", 0},
        {"counter_value[5]", 0},
        {"ts_rst_mode", 1},
        {"ts_rst_source", 0},
    };
}

QList<CxCameraParam::CxEnumItem> defaultFormats()
{
    return {{QStringLiteral("Mono8"), 0},
            {QStringLiteral("Mono16"), 1},
            {QStringLiteral("Raw8"), 2},
            {QStringLiteral("Raw16"), 3},
            {QStringLiteral("Transport data"), 7}};
}

} // namespace

Host &Host::instance()
{
    static Host host;
    return host;
}

Host::Host()
    : d(std::make_unique<Private>())
{
}

Host::~Host() = default;

void Host::reset()
{
    const std::lock_guard lock(d->mutex);
    // Handles go on counting: none is ever used for two cameras.
    d->handles += d->handles % 2;
    d->cameras.clear();
    d->opened.clear();
    d->failures.clear();
    d->calls.clear();
    d->observer.reset();
    d->version[0] = 9;
    d->version[1] = 8;
    d->version[2] = 7;
}

ZUCORE_HANDLE Host::addCamera(const CxCameraInfo &info)
{
    auto camera = std::make_unique<Camera>();
    camera->info = info;
    camera->values = defaultValues();
    camera->enumItems["imgdataformat"] = defaultFormats();
    camera->source = std::make_shared<ImageSource>(CounterFrames());

    const std::lock_guard lock(d->mutex);
    const std::uintptr_t number = 0x1000 + 0x10 * (d->handles++ ^ 1U);
    auto *handle = reinterpret_cast<ZUCORE_HANDLE>(number); // NOLINT(performance-no-int-to-ptr)
    d->cameras[handle] = std::move(camera);
    d->opened.push_back(handle);
    return handle;
}

ZUCORE_HANDLE Host::openCamera(const CxCameraInfo &info)
{
    ZUCORE_HANDLE camera = addCamera(info);
    Q_EMIT CxCameraManager::instance()->cameraOpened(camera);
    return camera;
}

void Host::closeCamera(ZUCORE_HANDLE handle)
{
    {
        const std::lock_guard lock(d->mutex);
        d->opened.erase(std::remove(d->opened.begin(), d->opened.end(), handle), d->opened.end());
    }
    Q_EMIT CxCameraManager::instance()->cameraClosed(handle);

    const std::lock_guard lock(d->mutex);
    if (Camera *camera = d->find(handle)) {
        camera->open = false;
        camera->streaming = false;
        camera->parameters.reset();
    }
    d->changed.notify_all();
}

void Host::setLost(ZUCORE_HANDLE handle, bool lost)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->lost = lost;
    d->changed.notify_all();
}

void Host::removeParameterSet(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->parameters.reset();
    d->cameras.at(handle)->hasParameterSet = false;
}

void Host::setHostAcquisition(ZUCORE_HANDLE handle, bool running)
{
    {
        const std::lock_guard lock(d->mutex);
        d->cameras.at(handle)->hostAcquires = running;
    }
    CxCameraManager *manager = CxCameraManager::instance();
    if (running)
        Q_EMIT manager->acquisitionStarted(handle);
    else
        Q_EMIT manager->acquisitionFinished(handle);
}

void Host::emitImageFormatChanged(ZUCORE_HANDLE handle)
{
    Q_EMIT CxCameraManager::instance()->imageFormatChanged(handle);
}

void Host::setVersion(int major, int minor, int build)
{
    const std::lock_guard lock(d->mutex);
    d->version[0] = major;
    d->version[1] = minor;
    d->version[2] = build;
}

void Host::setValue(ZUCORE_HANDLE handle, const std::string &name, long long value)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->values[name] = value;
}

long long Host::value(ZUCORE_HANDLE handle, const std::string &name) const
{
    const std::lock_guard lock(d->mutex);
    const Values &values = d->cameras.at(handle)->values;
    const auto found = values.find(name);
    return found == values.end() ? 0 : found->second;
}

void Host::removeValue(ZUCORE_HANDLE handle, const std::string &name)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->values.erase(name);
}

void Host::setEnumItems(ZUCORE_HANDLE handle, const std::string &name,
                        const QList<CxCameraParam::CxEnumItem> &items)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->enumItems[name] = items;
}

void Host::fail(const Failure &failure)
{
    const std::lock_guard lock(d->mutex);
    d->failures.push_back({failure});
}

void Host::clearFailures()
{
    const std::lock_guard lock(d->mutex);
    d->failures.clear();
}

std::vector<Call> Host::calls() const
{
    const std::lock_guard lock(d->mutex);
    return d->calls;
}

std::vector<std::string> Host::cameraCalls(ZUCORE_HANDLE camera) const
{
    std::vector<std::string> texts;
    for (const Call &call : calls()) {
        if (isCameraFunction(call.function) && (!camera || call.handle == camera))
            texts.push_back(call.text());
    }
    return texts;
}

void Host::clearCalls()
{
    const std::lock_guard lock(d->mutex);
    d->calls.clear();
}

void Host::record(Call call)
{
    const std::lock_guard lock(d->mutex);
    d->calls.push_back(std::move(call));
}

void Host::observe(std::function<void(const Call &)> observer)
{
    const std::lock_guard lock(d->mutex);
    d->observer = std::make_shared<std::function<void(const Call &)>>(std::move(observer));
}

} // namespace scripted

#include "tests/scriptedhost/ScriptedHostPrivate.h"

#include <cstring>

namespace scripted {

namespace {

/// The selectors that decide where a value goes.
std::vector<std::string> selectorsOf(const std::string &name)
{
    if (name == ZU_PRM_DP_PARAM_VALUE)
        return {ZU_PRM_DP_UNIT_SELECTOR, ZU_PRM_DP_PROC_SELECTOR, ZU_PRM_DP_PARAM_SELECTOR};
    if (name == ZU_PRM_DEVICE_UNIT_REGISTER_VALUE)
        return {ZU_PRM_DEVICE_UNIT_SELECTOR, ZU_PRM_DEVICE_UNIT_REGISTER_SELECTOR};
    if (name == ZU_PRM_COUNTER_VALUE)
        return {ZU_PRM_COUNTER_SELECTOR};
    return {};
}

bool endsWith(const std::string &text, const std::string &suffix)
{
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

/// What the contract asks of a record that is handed in for a capture.
bool isClean(const ZU_IMG &image)
{
    ZU_IMG expected;
    std::memset(&expected, 0, sizeof expected);
    expected.size = sizeof expected;
    return std::memcmp(&image, &expected, sizeof expected) == 0;
}

/// How long a starved capture of a camera without an end condition waits.
constexpr std::chrono::milliseconds unattendedWait{20};
constexpr std::chrono::milliseconds conditionPeriod{1};

} // namespace

std::string Camera::key(const std::string &name) const
{
    const std::vector<std::string> selectors = selectorsOf(name);
    if (selectors.empty())
        return name;
    std::string text = name;
    for (const std::string &selector : selectors) {
        const auto found = values.find(selector);
        text.append(text.size() == name.size() ? "[" : ",")
            .append(std::to_string(found == values.end() ? 0 : found->second));
    }
    return text.append("]");
}

Camera *Host::Private::find(ZUCORE_HANDLE handle) const
{
    const auto found = cameras.find(handle);
    return found == cameras.end() ? nullptr : found->second.get();
}

Camera *Host::Private::usable(ZUCORE_HANDLE handle)
{
    Camera *camera = find(handle);
    return camera && camera->open && !camera->lost ? camera : nullptr;
}

bool Host::Private::isToFail(const Call &call)
{
    bool hit = false;
    for (ArmedFailure &armed : failures) {
        const Failure &failure = armed.failure;
        const bool matches = (!failure.function || *failure.function == call.function) &&
                             (failure.name.empty() || failure.name == call.name) &&
                             (!failure.value || *failure.value == call.value) &&
                             (!failure.handle || failure.handle == call.handle);
        if (!matches)
            continue;
        ++armed.seen;
        hit = hit || failure.nth == 0 || failure.nth == armed.seen;
    }
    return hit;
}

void Host::Private::announce(const Call &call)
{
    std::shared_ptr<std::function<void(const Call &)>> told;
    {
        const std::lock_guard lock(mutex);
        told = observer;
    }
    if (told)
        (*told)(call);
}

bool Host::Private::read(Function function, void *handle, const char *name, bool wantsError, long long &value)
{
    Call call{function, handle, name};
    call.wantsError = wantsError;
    announce(call);
    const std::lock_guard lock(mutex);
    const Camera *camera = usable(handle);
    call.result = !isToFail(call) && camera;
    if (call.result) {
        const auto found = camera->values.find(camera->key(name));
        call.result = found != camera->values.end();
        if (call.result)
            call.value = value = found->second;
    }
    calls.push_back(call);
    return call.result;
}

bool Host::Private::write(void *handle, const char *name, int value, bool wantsError)
{
    Call call{Function::SetParamInt, handle, name, value};
    call.wantsError = wantsError;
    announce(call);
    const std::lock_guard lock(mutex);
    Camera *camera = usable(handle);
    call.result = !isToFail(call) && camera;
    if (call.result) {
        const bool question = endsWith(name, ZU_PRM_SUFFIX_SETTABLE);
        const std::string base =
            question ? call.name.substr(0, call.name.size() - std::strlen(ZU_PRM_SUFFIX_SETTABLE))
                     : call.name;
        const auto found = camera->values.find(camera->key(base));
        call.result = found != camera->values.end();
        if (call.result && !question)
            found->second = value;
    }
    calls.push_back(call);
    return call.result;
}

bool Host::Private::setStreaming(Function function, void *handle, bool on)
{
    Call call{function, handle};
    announce(call);
    const std::lock_guard lock(mutex);
    Camera *camera = usable(handle);
    call.result = !isToFail(call) && camera && !(on && camera->streaming);
    if (call.result) {
        camera->streaming = on;
        camera->released = false;
        changed.notify_all();
    }
    calls.push_back(call);
    return call.result;
}

bool Host::Private::waitForBudget(std::unique_lock<std::mutex> &lock, Camera &camera,
                                  std::chrono::milliseconds timeout)
{
    const auto deadline = std::chrono::steady_clock::now() +
                          (camera.endCondition ? timeout : std::min(timeout, unattendedWait));
    ++camera.waiting;
    changed.notify_all();
    const auto mayWait = [&camera] {
        return camera.budget == 0 && !camera.released && camera.streaming && camera.open && !camera.lost &&
               !(camera.endCondition && camera.endCondition());
    };
    while (mayWait() && std::chrono::steady_clock::now() < deadline)
        changed.wait_for(lock, conditionPeriod);
    --camera.waiting;
    return camera.budget > 0 && camera.streaming && camera.open && !camera.lost;
}

bool Host::Private::capture(void *handle, unsigned int timeoutMs, ZU_IMG &image, bool wantsError, bool flag)
{
    Call call{Function::GetImage, handle, {}, timeoutMs};
    announce(call);
    std::unique_lock lock(mutex);
    call.wantsError = wantsError;
    call.cleanRecord = isClean(image);
    call.flag = flag;
    Camera *camera = usable(handle);
    call.result = !isToFail(call) && camera &&
                  (camera->budget > 0 || waitForBudget(lock, *camera, std::chrono::milliseconds(timeoutMs)));
    if (!call.result) {
        // A caller that tries again at once must not spin.
        changed.wait_for(lock, conditionPeriod);
    } else {
        --camera->budget;
        const std::shared_ptr<ImageSource> source = camera->source;
        lock.unlock();
        call.result = (*source)(image);
        lock.lock();
    }
    calls.push_back(call);
    return call.result;
}

void Host::setImageSource(ZUCORE_HANDLE handle, ImageSource source)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->source = std::make_shared<ImageSource>(std::move(source));
}

void Host::deliver(ZUCORE_HANDLE handle, int frames)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->budget += frames;
    d->changed.notify_all();
}

void Host::endCapturesWhen(ZUCORE_HANDLE handle, std::function<bool()> condition)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->endCondition = std::move(condition);
    d->changed.notify_all();
}

void Host::releaseCaptures(ZUCORE_HANDLE handle)
{
    const std::lock_guard lock(d->mutex);
    d->cameras.at(handle)->released = true;
    d->changed.notify_all();
}

bool Host::waitUntilStarved(ZUCORE_HANDLE handle)
{
    std::unique_lock lock(d->mutex);
    const Camera &camera = *d->cameras.at(handle);
    return d->changed.wait_for(lock, std::chrono::seconds(30),
                               [&camera] { return camera.waiting > 0 && camera.budget == 0; });
}

bool Host::isStreaming(ZUCORE_HANDLE handle) const
{
    const std::lock_guard lock(d->mutex);
    return d->cameras.at(handle)->streaming;
}

bool CounterFrames::operator()(ZU_IMG &image)
{
    words.resize((std::size_t(width) * height * 2 + 7) / 8);
    unsigned long long stamp = firstStamp + frame * ticksPerFrame;
    for (unsigned long long &word : words) {
        word = stamp;
        stamp += ticksPerWord;
    }
    const std::uint64_t microseconds = firstMicroseconds + frame * microsecondsPerFrame;
    image.filledSize = std::uint32_t(words.size() * 8);
    image.data = words.data();
    image.width = width;
    image.height = height;
    image.frameNumber = firstFrameNumber + std::uint32_t(frame);
    image.timestampSeconds = std::uint32_t(microseconds / 1000000);
    image.timestampMicroseconds = std::uint32_t(microseconds % 1000000);
    ++frame;
    return true;
}

} // namespace scripted

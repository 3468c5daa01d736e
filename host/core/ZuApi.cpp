#include "zuCore/ZuApi.h"

#include "host/core/ApiError.h"
#include "host/core/CameraRegistry.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstring>
#include <thread>
#include <utility>

using host::ApiError;
using host::CameraRegistry;
using host::CameraSession;

namespace {

/// Smallest record that can carry a frame: all fields but the reserve.
constexpr std::uint32_t smallestRecord = offsetof(ZU_IMG, reserved);

bool finish(ApiError result, int *err)
{
    if (err)
        *err = static_cast<int>(result);
    return result == ApiError::None;
}

/// A parameter's name with the request that its suffix makes of it.
struct Request
{
    enum class Kind { Value, Maximum, Settable };

    explicit Request(const char *text)
        : name(text ? text : "")
    {
        if (takeSuffix(ZU_PRM_SUFFIX_MAX))
            kind = Kind::Maximum;
        else if (takeSuffix(ZU_PRM_SUFFIX_SETTABLE))
            kind = Kind::Settable;
    }

    std::string_view name;
    Kind kind = Kind::Value;

private:
    bool takeSuffix(std::string_view suffix)
    {
        if (!name.ends_with(suffix))
            return false;
        name.remove_suffix(suffix.size());
        return true;
    }
};

ApiError read(void *handle, const char *text, std::int64_t &value)
{
    const Request request(text);
    if (request.name.empty() || request.kind == Request::Kind::Settable)
        return ApiError::InvalidArgument;
    const auto session = CameraRegistry::instance().find(handle);
    if (!session)
        return ApiError::UnknownHandle;
    const bool ok = request.kind == Request::Kind::Maximum ? session->readMaximum(request.name, value)
                                                           : session->read(request.name, value);
    return ok ? ApiError::None : ApiError::Refused;
}

/// Reads into `value` unless the camera's value does not fit it.
template <typename Int> bool readInto(void *handle, const char *name, Int &value, int *err)
{
    std::int64_t wide = 0;
    ApiError result = read(handle, name, wide);
    if (result == ApiError::None && !std::in_range<Int>(wide))
        result = ApiError::ValueTooLarge;
    if (result == ApiError::None)
        value = static_cast<Int>(wide);
    return finish(result, err);
}

ApiError write(void *handle, const char *text, int value)
{
    const Request request(text);
    if (request.name.empty() || request.kind == Request::Kind::Maximum)
        return ApiError::InvalidArgument;
    const auto session = CameraRegistry::instance().find(handle);
    if (!session)
        return ApiError::UnknownHandle;
    const bool ok = request.kind == Request::Kind::Settable ? session->isSettable(request.name, value)
                                                            : session->write(request.name, value);
    return ok ? ApiError::None : ApiError::Refused;
}

ApiError capture(void *handle, std::chrono::milliseconds timeout, ZU_IMG *img)
{
    if (!img || img->size < smallestRecord)
        return ApiError::InvalidArgument;
    const auto session = CameraRegistry::instance().find(handle);
    if (!session) {
        std::this_thread::sleep_for(timeout);
        return ApiError::UnknownHandle;
    }
    ZU_IMG frame{};
    frame.size = sizeof frame;
    if (!session->capture(timeout, frame))
        return ApiError::NoImage;
    frame.size = img->size;
    std::memcpy(img, &frame, std::min<std::size_t>(img->size, sizeof frame));
    return ApiError::None;
}

} // namespace

bool zuApi_GetParamInt(void *handle, const char *name, int &value, int *err)
{
    return readInto(handle, name, value, err);
}

bool zuApi_GetParamInt64(void *handle, const char *name, unsigned long long &value, int *err)
{
    return readInto(handle, name, value, err);
}

bool zuApi_SetParamInt(void *handle, const char *name, int value, int *err)
{
    return finish(write(handle, name, value), err);
}

bool zuApi_StartAcquisition(void *handle)
{
    const auto session = CameraRegistry::instance().find(handle);
    return session && session->startStreaming(CameraSession::StreamOwner::Client);
}

bool zuApi_StopAcquisition(void *handle)
{
    const auto session = CameraRegistry::instance().find(handle);
    return session && session->stopStreaming(CameraSession::StreamOwner::Client);
}

bool zuApi_GetImage(void *handle, unsigned int timeoutMs, ZU_IMG *img, int *err, [[maybe_unused]] bool flag)
{
    return finish(capture(handle, std::chrono::milliseconds(timeoutMs), img), err);
}

void zuCoreVersion(int &major, int &minor, int &build)
{
    major = ZUCORE_VERSION_MAJOR;
    minor = ZUCORE_VERSION_MINOR;
    build = ZUCORE_VERSION_BUILD;
}

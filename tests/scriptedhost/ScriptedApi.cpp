#include "tests/scriptedhost/ScriptedHostPrivate.h"

using scripted::Function;

namespace {

scripted::Host::Private &host()
{
    return scripted::Host::instance().priv();
}

} // namespace

bool zuApi_GetParamInt(void *handle, const char *name, int &value, int *err)
{
    long long wide = 0;
    if (!host().read(Function::GetParamInt, handle, name, err != nullptr, wide))
        return false;
    value = static_cast<int>(wide);
    return true;
}

bool zuApi_GetParamInt64(void *handle, const char *name, unsigned long long &value, int *err)
{
    long long wide = 0;
    if (!host().read(Function::GetParamInt64, handle, name, err != nullptr, wide))
        return false;
    value = static_cast<unsigned long long>(wide);
    return true;
}

bool zuApi_SetParamInt(void *handle, const char *name, int value, int *err)
{
    return host().write(handle, name, value, err != nullptr);
}

bool zuApi_StartAcquisition(void *handle)
{
    return host().setStreaming(Function::StartAcquisition, handle, true);
}

bool zuApi_StopAcquisition(void *handle)
{
    return host().setStreaming(Function::StopAcquisition, handle, false);
}

bool zuApi_GetImage(void *handle, unsigned int timeoutMs, ZU_IMG *img, int *err, bool flag)
{
    return host().capture(handle, timeoutMs, *img, err != nullptr, flag);
}

void zuCoreVersion(int &major, int &minor, int &build)
{
    const std::lock_guard lock(host().mutex);
    major = host().version[0];
    minor = host().version[1];
    build = host().version[2];
}

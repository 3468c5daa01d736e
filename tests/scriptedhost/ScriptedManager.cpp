#include "tests/scriptedhost/ScriptedHostPrivate.h"

#include "zuCore/CxCameraManager.h"

#include <QMetaType>

using scripted::Call;
using scripted::Camera;
using scripted::Function;
using scripted::Host;

struct CxCameraManager::Private
{
};

struct CxCameraParam::Private
{
    ZUCORE_HANDLE camera;
    std::string name;
    int staged = 0;
    bool isStaged = false;
};

struct CxCameraParameters::Private
{
    ZUCORE_HANDLE camera;
    std::map<std::string, std::unique_ptr<CxCameraParam>> params{};
    std::vector<std::string> batch{};
};

CxValue::CxValue(int value)
    : m_value(value)
{
}

int CxValue::toInt() const
{
    return m_value;
}

CxCameraParam::CxCameraParam(std::unique_ptr<Private> data)
    : d(std::move(data))
{
}

CxCameraParam::~CxCameraParam() = default;

QList<CxCameraParam::CxEnumItem> CxCameraParam::enumItems() const
{
    Host &host = Host::instance();
    host.record({Function::EnumItems, d->camera, d->name});
    const std::lock_guard lock(host.priv().mutex);
    const Camera *camera = host.priv().find(d->camera);
    const auto found = camera->enumItems.find(d->name);
    return found == camera->enumItems.end() ? QList<CxEnumItem>() : found->second;
}

CxValue CxCameraParam::paramValue() const
{
    Host &host = Host::instance();
    const long long value = host.value(d->camera, d->name);
    host.record({Function::ParamValue, d->camera, d->name, value});
    return CxValue(static_cast<int>(value));
}

void CxCameraParam::setParamValue(const CxValue &value)
{
    Host::instance().record({Function::SetParamValue, d->camera, d->name, value.toInt()});
    d->staged = value.toInt();
    d->isStaged = true;
}

CxCameraParameters::CxCameraParameters(std::unique_ptr<Private> data)
    : d(std::move(data))
{
}

CxCameraParameters::~CxCameraParameters() = default;

CxCameraParam *CxCameraParameters::findParam(const QString &name, bool refresh)
{
    Host &host = Host::instance();
    const std::string key = name.toStdString();
    Call call{Function::FindParam, d->camera, key};
    call.flag = refresh;
    {
        const std::lock_guard lock(host.priv().mutex);
        call.result = host.priv().find(d->camera)->values.count(key) > 0;
    }
    host.record(call);
    if (!call.result)
        return nullptr;
    std::unique_ptr<CxCameraParam> &param = d->params[key];
    if (!param)
        param = std::make_unique<CxCameraParam>(
            std::unique_ptr<CxCameraParam::Private>(new CxCameraParam::Private{d->camera, key}));
    return param.get();
}

void CxCameraParameters::addParamCommitToBatch(const QString &name)
{
    Host::instance().record({Function::AddParamCommitToBatch, d->camera, name.toStdString()});
    d->batch.push_back(name.toStdString());
}

void CxCameraParameters::endCommitBatch(ExCommitRefreshGuiMode mode)
{
    Host::instance().record({Function::EndCommitBatch, d->camera, {}, mode});
    for (const std::string &name : d->batch) {
        const auto found = d->params.find(name);
        if (found == d->params.end() || !found->second->d->isStaged)
            continue;
        Host::instance().setValue(d->camera, name, found->second->d->staged);
        found->second->d->isStaged = false;
    }
    d->batch.clear();
}

CxCameraInfo CxCameraParameters::cameraInfo() const
{
    Host &host = Host::instance();
    host.record({Function::CameraInfo, d->camera});
    const std::lock_guard lock(host.priv().mutex);
    return host.priv().find(d->camera)->info;
}

CxCameraManager::CxCameraManager()
    : d(std::make_unique<Private>())
{
    // Signals that wait in a queue or in a spy need the type by its name.
    qRegisterMetaType<ZUCORE_HANDLE>("ZUCORE_HANDLE");
}

CxCameraManager::~CxCameraManager() = default;

CxCameraManager *CxCameraManager::instance()
{
    static CxCameraManager manager;
    return &manager;
}

QList<ZUCORE_HANDLE> CxCameraManager::openedCameras()
{
    Host &host = Host::instance();
    host.record({Function::OpenedCameras});
    const std::lock_guard lock(host.priv().mutex);
    QList<ZUCORE_HANDLE> handles;
    for (ZUCORE_HANDLE handle : host.priv().opened)
        handles.append(handle);
    return handles;
}

bool CxCameraManager::isCameraRunning(void *handle)
{
    Host &host = Host::instance();
    Call call{Function::IsCameraRunning, handle};
    {
        const std::lock_guard lock(host.priv().mutex);
        const Camera *camera = host.priv().find(handle);
        call.value = camera && camera->hostAcquires;
    }
    host.record(call);
    return call.value != 0;
}

CxCameraParameters *CxCameraManager::cameraParameters(void *handle)
{
    Host &host = Host::instance();
    const std::lock_guard lock(host.priv().mutex);
    Camera *camera = host.priv().find(handle);
    Call call{Function::CameraParameters, handle};
    call.result = camera && camera->open && camera->hasParameterSet;
    host.priv().calls.push_back(call);
    if (!call.result)
        return nullptr;
    if (!camera->parameters)
        camera->parameters = std::make_unique<CxCameraParameters>(
            std::unique_ptr<CxCameraParameters::Private>(new CxCameraParameters::Private{handle}));
    return camera->parameters.get();
}

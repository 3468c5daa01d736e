#include "host/core/CameraParametersPrivate.h"

#include "host/core/HostCore.h"

#include <QStringList>

#include <algorithm>
#include <utility>

CxCameraParameters::Private::Private(host::CameraSession *cameraSession)
    : session(cameraSession)
{
    for (host::ParameterDescription &description : session->device()->parameters()) {
        const QString name = QString::fromStdString(description.name);
        auto param = std::make_unique<CxCameraParam::Private>();
        param->session = session;
        param->description = std::move(description);
        params.emplace(name, std::make_unique<CxCameraParam>(std::move(param)));
    }
}

CxCameraParameters::CxCameraParameters(std::unique_ptr<Private> dd)
    : d(std::move(dd))
{
}

CxCameraParameters::~CxCameraParameters() = default;

CxCameraParam *CxCameraParameters::findParam(const QString &name, [[maybe_unused]] bool refresh)
{
    const auto it = d->params.find(name);
    return it == d->params.end() ? nullptr : it->second.get();
}

void CxCameraParameters::addParamCommitToBatch(const QString &name)
{
    const bool known = d->params.find(name) != d->params.end();
    if (known && std::find(d->batch.begin(), d->batch.end(), name) == d->batch.end())
        d->batch.push_back(name);
}

void CxCameraParameters::endCommitBatch(ExCommitRefreshGuiMode mode)
{
    QStringList written;
    for (const QString &name : std::exchange(d->batch, {})) {
        if (d->params.at(name)->d->commit())
            written.append(name);
    }
    if (mode == eCommitRefreshChanged && !written.isEmpty())
        Q_EMIT host::HostCore::instance().parametersChanged(d->session->handle(), written);
}

CxCameraInfo CxCameraParameters::cameraInfo() const
{
    const host::DeviceInfo info = d->session->device()->info();
    return {QString::fromStdString(info.modelName), QString::fromStdString(info.serialNumber),
            QString::fromStdString(info.userId)};
}

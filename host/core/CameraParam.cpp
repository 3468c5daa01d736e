#include "host/core/CameraParametersPrivate.h"

#include <QtGlobal>

#include <utility>

CxCameraParam::CxCameraParam(std::unique_ptr<Private> dd)
    : d(std::move(dd))
{
}

CxCameraParam::~CxCameraParam() = default;

QList<CxCameraParam::CxEnumItem> CxCameraParam::enumItems() const
{
    QList<CxEnumItem> items;
    for (const host::ParameterChoice &choice : d->description.choices) {
        if (std::in_range<int>(choice.value))
            items.append({QString::fromStdString(choice.name), static_cast<int>(choice.value)});
    }
    return items;
}

CxValue CxCameraParam::paramValue() const
{
    std::int64_t value = 0;
    const bool ok = d->session->read(d->description.name, value);
    return CxValue(ok && std::in_range<int>(value) ? static_cast<int>(value) : 0);
}

void CxCameraParam::setParamValue(const CxValue &value)
{
    d->staged = value.toInt();
}

bool CxCameraParam::Private::commit()
{
    const std::optional<int> value = std::exchange(staged, std::nullopt);
    if (!value)
        return false;
    if (session->write(description.name, *value))
        return true;
    qWarning("Camera %s refused %s = %d", session->device()->info().id.c_str(), description.name.c_str(),
             *value);
    return false;
}

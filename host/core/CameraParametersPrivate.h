#pragma once

#include "host/core/CameraSession.h"
#include "zuCore/CxCameraParam.h"
#include "zuCore/CxCameraParameters.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct Q_DECL_HIDDEN CxCameraParam::Private
{
    host::CameraSession *session = nullptr; ///< outlives the set
    host::ParameterDescription description;
    std::optional<int> staged;

    /// Writes the staged value, if there is one, and forgets it.
    /// \return whether something was written
    bool commit();
};

struct Q_DECL_HIDDEN CxCameraParameters::Private
{
    /// Takes over the device's parameters as they are now.
    explicit Private(host::CameraSession *cameraSession);

    host::CameraSession *session; ///< outlives the set
    std::map<QString, std::unique_ptr<CxCameraParam>> params;
    std::vector<QString> batch; ///< names of params, in the order of their adding
};
